// RichText.cpp -- the small language of formatted text that modules send, read into plain records
#include "toolkit/RichText.h"

#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace {

constexpr size_t GROUPS_MAX = 64;  // deeper groups are skipped
constexpr size_t COLORS_MAX = 256; // entries of the colour table
constexpr u32 HALF_POINTS_MIN = 8; // 4 points
constexpr u32 HALF_POINTS_MAX = 144;
constexpr u32 HALF_POINTS_FIRST = 24; // where the text names no size
constexpr i32 NUMBER_MAX = 1000000;   // digits beyond are read and do not count

enum class Destination { Text, Colors, LinkTarget, Skipped };

// What a group inherits, and what its end gives back.
struct GroupState {
    RichRun look; // text and link stay empty but for the link's target
    Destination eDestination = Destination::Text;
    u32 nUnicodeSkip = 1; // characters that stand in for one \u
};

struct RichReader {
    std::u16string_view text;
    size_t i = 0;
    GroupState now;
    std::vector<GroupState> aOuter;
    size_t nTooDeep = 0;          // open groups beyond GROUPS_MAX
    u32 nSkip = 0;                // stand-in characters still to pass over
    std::vector<u32> adwColor;    // 0x00BBGGRR
    std::vector<bool> abColorSet; // false: the window's own colour
    u32 dwColor = 0;              // the entry being read
    bool bColorSet = false;
    std::u16string target; // instruction of the field being read
    RichDocument doc = {{}};
};

struct Word {
    std::u16string_view name;
    i32 nValue;
    bool bValue;
};

bool IsLetter(char16_t ch)
{
    return (ch >= u'a' && ch <= u'z') || (ch >= u'A' && ch <= u'Z');
}

bool IsDigit(char16_t ch)
{
    return ch >= u'0' && ch <= u'9';
}

bool SameLook(const RichRun &a, const RichRun &b)
{
    const auto look = [](const RichRun &r) {
        return std::tie(r.link, r.nHalfPoints, r.dwColor, r.dwBack, r.bColor, r.bBack, r.bBold, r.bItalic,
                        r.bUnderline);
    };
    return look(a) == look(b);
}

// Control characters and those that text layouts keep for themselves are no text.
bool IsTextCharacter(char16_t ch)
{
    const bool bReserved = (ch >= 0xFDD0 && ch <= 0xFDEF) || ch >= 0xFFFC || ch == 0x2028 || ch == 0x2029;
    return (ch >= 0x20 || ch == u'\t') && !bReserved;
}

void AddToText(RichReader *prr, std::u16string_view piece)
{
    if (!std::all_of(piece.begin(), piece.end(), IsTextCharacter))
        return;
    std::vector<RichRun> &aRun = prr->doc.back().aRun;
    if (aRun.empty() || !SameLook(aRun.back(), prr->now.look))
        aRun.push_back(prr->now.look);
    aRun.back().text += piece;
}

// "HYPERLINK" and a target, which may stand in quotes.
std::u16string LinkTargetOf(std::u16string_view instruction)
{
    constexpr std::u16string_view KEYWORD = u"HYPERLINK";
    const size_t iWord = FindNoCase(instruction, KEYWORD);
    if (iWord == instruction.npos)
        return {};
    std::u16string_view rest = instruction.substr(iWord + KEYWORD.size());
    const size_t iStart = rest.find_first_not_of(u" \"");
    if (iStart == rest.npos)
        return {};
    rest = rest.substr(iStart);
    return std::u16string(rest.substr(0, rest.find_first_of(u" \"")));
}

void EndColor(RichReader *prr)
{
    if (prr->adwColor.size() < COLORS_MAX) {
        prr->adwColor.push_back(prr->dwColor);
        prr->abColorSet.push_back(prr->bColorSet);
    }
    prr->dwColor = 0;
    prr->bColorSet = false;
}

void AddCharacters(RichReader *prr, std::u16string_view piece)
{
    if (prr->nSkip) {
        prr->nSkip--;
        return;
    }
    if (prr->now.eDestination == Destination::Text)
        AddToText(prr, piece);
    else if (prr->now.eDestination == Destination::LinkTarget)
        prr->target += piece;
    else if (prr->now.eDestination == Destination::Colors && piece == u";")
        EndColor(prr);
}

void SetColorPart(RichReader *prr, i32 nValue, u32 nShift)
{
    if (prr->now.eDestination != Destination::Colors)
        return;
    prr->dwColor = (prr->dwColor & ~(0xFFu << nShift)) | (static_cast<u32>(std::clamp(nValue, 0, 255)) << nShift);
    prr->bColorSet = true;
}

void UseColor(const RichReader &rr, const Word &word, u32 *pdwColor, bool *pbColor)
{
    const auto i = static_cast<size_t>(std::max(word.nValue, 0));
    *pbColor = i < rr.adwColor.size() && rr.abColorSet[i];
    *pdwColor = *pbColor ? rr.adwColor[i] : 0;
}

bool IsOn(const Word &word)
{
    return !word.bValue || word.nValue != 0;
}

void EndParagraph(RichReader *prr)
{
    if (prr->now.eDestination != Destination::Text)
        return;
    const RichAlign eAlign = prr->doc.back().eAlign;
    prr->doc.push_back({{}, eAlign});
}

void SetSize(RichReader *prr, const Word &word)
{
    prr->now.look.nHalfPoints = word.bValue && word.nValue > 0
                                    ? std::clamp(static_cast<u32>(word.nValue), HALF_POINTS_MIN, HALF_POINTS_MAX)
                                    : HALF_POINTS_FIRST;
}

void ReadUnicode(RichReader *prr, const Word &word)
{
    const auto ch = static_cast<char16_t>(word.nValue);
    if (!prr->nSkip)
        AddCharacters(prr, {&ch, 1});
    prr->nSkip = prr->now.nUnicodeSkip;
}

void ResetLook(RichReader *prr)
{
    const std::u16string link = prr->now.look.link;
    prr->now.look = {};
    prr->now.look.nHalfPoints = HALF_POINTS_FIRST;
    prr->now.look.link = link;
}

void EnterDestination(RichReader *prr, Destination e)
{
    if (prr->now.eDestination != Destination::Skipped)
        prr->now.eDestination = e;
}

struct WordRow {
    std::u16string_view name;
    void (*pfn)(RichReader *prr, const Word &word);
};

void Skip(RichReader *prr, const Word &)
{
    EnterDestination(prr, Destination::Skipped);
}

// clang-format off
constexpr WordRow asWord[] = {
    {u"par", [](RichReader *prr, const Word &) { EndParagraph(prr); }},
    {u"line", [](RichReader *prr, const Word &) { EndParagraph(prr); }},
    {u"tab", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\t"); }},
    {u"b", [](RichReader *prr, const Word &w) { prr->now.look.bBold = IsOn(w); }},
    {u"i", [](RichReader *prr, const Word &w) { prr->now.look.bItalic = IsOn(w); }},
    {u"ul", [](RichReader *prr, const Word &w) { prr->now.look.bUnderline = IsOn(w); }},
    {u"ulnone", [](RichReader *prr, const Word &) { prr->now.look.bUnderline = false; }},
    {u"fs", SetSize},
    {u"cf", [](RichReader *prr, const Word &w) { UseColor(*prr, w, &prr->now.look.dwColor, &prr->now.look.bColor); }},
    {u"highlight", [](RichReader *prr, const Word &w) { UseColor(*prr, w, &prr->now.look.dwBack, &prr->now.look.bBack); }},
    {u"cb", [](RichReader *prr, const Word &w) { UseColor(*prr, w, &prr->now.look.dwBack, &prr->now.look.bBack); }},
    {u"plain", [](RichReader *prr, const Word &) { ResetLook(prr); }},
    {u"pard", [](RichReader *prr, const Word &) { prr->doc.back().eAlign = RichAlign::Left; }},
    {u"ql", [](RichReader *prr, const Word &) { prr->doc.back().eAlign = RichAlign::Left; }},
    {u"qc", [](RichReader *prr, const Word &) { prr->doc.back().eAlign = RichAlign::Center; }},
    {u"qr", [](RichReader *prr, const Word &) { prr->doc.back().eAlign = RichAlign::Right; }},
    {u"u", ReadUnicode},
    {u"uc", [](RichReader *prr, const Word &w) { prr->now.nUnicodeSkip = w.bValue ? static_cast<u32>(std::clamp(w.nValue, 0, 16)) : 1; }},
    {u"red", [](RichReader *prr, const Word &w) { SetColorPart(prr, w.nValue, 0); }},
    {u"green", [](RichReader *prr, const Word &w) { SetColorPart(prr, w.nValue, 8); }},
    {u"blue", [](RichReader *prr, const Word &w) { SetColorPart(prr, w.nValue, 16); }},
    {u"emdash", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u2014"); }},
    {u"endash", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u2013"); }},
    {u"bullet", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u2022"); }},
    {u"lquote", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u2018"); }},
    {u"rquote", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u2019"); }},
    {u"ldblquote", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u201C"); }},
    {u"rdblquote", [](RichReader *prr, const Word &) { AddCharacters(prr, u"\u201D"); }},
    {u"colortbl", [](RichReader *prr, const Word &) { EnterDestination(prr, Destination::Colors); }},
    {u"fldinst", [](RichReader *prr, const Word &) { prr->target.clear(); EnterDestination(prr, Destination::LinkTarget); }},
    {u"fldrslt", [](RichReader *prr, const Word &) { prr->now.look.link = LinkTargetOf(prr->target); }},
    {u"fonttbl", Skip}, {u"stylesheet", Skip}, {u"info", Skip}, {u"pict", Skip}, {u"object", Skip}, {u"header", Skip},
    {u"footer", Skip}, {u"footnote", Skip}, {u"listtable", Skip}, {u"generator", Skip}, {u"filetbl", Skip},
};
// clang-format on

void ObeyWord(RichReader *prr, const Word &word)
{
    const auto *pRow =
        std::find_if(std::begin(asWord), std::end(asWord), [&](const WordRow &r) { return r.name == word.name; });
    if (pRow != std::end(asWord))
        pRow->pfn(prr, word);
}

// Behind the backslash stands a letter. A blank behind the word belongs to it.
Word ReadWord(RichReader *prr)
{
    const std::u16string_view text = prr->text;
    const size_t iStart = prr->i;
    while (prr->i < text.size() && IsLetter(text[prr->i]))
        prr->i++;
    Word word = {text.substr(iStart, prr->i - iStart), 0, false};
    const bool bMinus = prr->i + 1 < text.size() && text[prr->i] == u'-' && IsDigit(text[prr->i + 1]);
    if (bMinus)
        prr->i++;
    for (; prr->i < text.size() && IsDigit(text[prr->i]); prr->i++) {
        word.bValue = true;
        if (word.nValue < NUMBER_MAX)
            word.nValue = word.nValue * 10 + (text[prr->i] - u'0');
    }
    if (bMinus)
        word.nValue = -word.nValue;
    if (prr->i < text.size() && text[prr->i] == u' ')
        prr->i++;
    return word;
}

i32 HexDigit(char16_t ch)
{
    const char16_t chLow = FoldCase(ch);
    if (IsDigit(chLow))
        return chLow - u'0';
    return chLow >= u'a' && chLow <= u'f' ? chLow - u'a' + 10 : -1;
}

// \'hh: a byte of the 8-bit text of the format's time.
void ReadHex(RichReader *prr)
{
    if (prr->text.size() - prr->i < 2)
        return;
    const i32 nHigh = HexDigit(prr->text[prr->i]), nLow = HexDigit(prr->text[prr->i + 1]);
    if (nHigh < 0 || nLow < 0)
        return;
    prr->i += 2;
    const char ch = static_cast<char>(nHigh * 16 + nLow);
    AddCharacters(prr, FromUtf8({&ch, 1}));
}

void ReadEscape(RichReader *prr)
{
    if (prr->i >= prr->text.size())
        return;
    if (IsLetter(prr->text[prr->i])) {
        ObeyWord(prr, ReadWord(prr));
        return;
    }
    const char16_t ch = prr->text[prr->i++];
    switch (ch) {
    case u'\'':
        ReadHex(prr);
        break;
    case u'*': // a destination that may be skipped; the one that is read names itself next
        if (prr->text.substr(prr->i, 8) != u"\\fldinst")
            EnterDestination(prr, Destination::Skipped);
        break;
    case u'~':
        AddCharacters(prr, u"\u00A0");
        break;
    case u'_':
        AddCharacters(prr, u"\u2011");
        break;
    case u'\n':
    case u'\r':
        EndParagraph(prr);
        break;
    case u'\\':
    case u'{':
    case u'}':
        AddCharacters(prr, {&ch, 1});
        break;
    default:
        break;
    }
}

void OpenGroup(RichReader *prr)
{
    prr->nSkip = 0;
    if (prr->aOuter.size() < GROUPS_MAX)
        prr->aOuter.push_back(prr->now);
    else
        prr->nTooDeep++;
}

// False: this brace ends the text.
bool CloseGroup(RichReader *prr)
{
    prr->nSkip = 0;
    if (prr->nTooDeep) {
        prr->nTooDeep--;
        return true;
    }
    if (prr->aOuter.empty())
        return false;
    prr->now = prr->aOuter.back();
    prr->aOuter.pop_back();
    return !prr->aOuter.empty();
}

// Inside a group that is too deep only its end matters.
void PassOver(RichReader *prr, char16_t ch)
{
    if (ch == u'{')
        OpenGroup(prr);
    else if (ch == u'}')
        CloseGroup(prr);
    else if (ch == u'\\')
        prr->i++;
}

// False: the text ends here.
bool ReadNext(RichReader *prr)
{
    const char16_t ch = prr->text[prr->i++];
    if (prr->nTooDeep) {
        PassOver(prr, ch);
        return true;
    }
    switch (ch) {
    case u'{':
        OpenGroup(prr);
        return true;
    case u'}':
        return CloseGroup(prr);
    case u'\\':
        ReadEscape(prr);
        return true;
    case u'\n':
    case u'\r':
        return true;
    default:
        AddCharacters(prr, {&ch, 1});
        return true;
    }
}

constexpr std::u16string_view LINK_STARTS[] = {u"http://", u"https://", u"ftp://", u"mailto:", u"www."};

bool EndsLink(char16_t ch)
{
    return ch <= u' ' || ch == u'"' || ch == u'<' || ch == u'>' || ch == 0x00A0;
}

// Place and length of the first address in the text; length 0: none.
size_t FindAddress(std::u16string_view text, size_t iFrom, size_t *pcch)
{
    for (size_t i = iFrom; i < text.size(); i++) {
        if (i > 0 && !EndsLink(text[i - 1]) && text[i - 1] != u'(')
            continue;
        for (const std::u16string_view start : LINK_STARTS) {
            if (!EqualNoCase(text.substr(i, start.size()), start))
                continue;
            size_t iEnd = i + start.size();
            while (iEnd < text.size() && !EndsLink(text[iEnd]))
                iEnd++;
            while (iEnd > i + start.size() && std::u16string_view(u".,;:!?)'").find(text[iEnd - 1]) != text.npos)
                iEnd--;
            if (iEnd > i + start.size()) {
                *pcch = iEnd - i;
                return i;
            }
        }
    }
    *pcch = 0;
    return text.size();
}

RichRun PieceOf(const RichRun &run, size_t iStart, size_t cch)
{
    RichRun piece = run;
    piece.text = run.text.substr(iStart, cch);
    return piece;
}

void SplitAtAddresses(const RichRun &run, std::vector<RichRun> *paTo)
{
    size_t iDone = 0;
    while (iDone < run.text.size()) {
        size_t cch = 0;
        const size_t iLink = FindAddress(run.text, iDone, &cch);
        if (iLink > iDone)
            paTo->push_back(PieceOf(run, iDone, iLink - iDone));
        if (cch) {
            paTo->push_back(PieceOf(run, iLink, cch));
            paTo->back().link = paTo->back().text;
        }
        iDone = iLink + cch;
    }
}

} // namespace

bool IsRichText(std::u16string_view text)
{
    return text.starts_with(u"{\\rtf");
}

RichDocument ReadRichText(std::u16string_view text)
{
    RichReader reader;
    reader.text = text;
    ResetLook(&reader);
    while (reader.i < text.size() && ReadNext(&reader)) {
    }
    if (reader.doc.size() > 1 && reader.doc.back().aRun.empty())
        reader.doc.pop_back(); // the mark behind the last paragraph
    return std::move(reader.doc);
}

RichDocument ReadPlainText(std::u16string_view text)
{
    RichDocument doc;
    for (size_t i = 0; i <= text.size();) {
        size_t iEnd = std::min(text.find(u'\n', i), text.size());
        std::u16string_view line = text.substr(i, iEnd - i);
        if (!line.empty() && line.back() == u'\r')
            line.remove_suffix(1);
        doc.emplace_back();
        if (!line.empty()) {
            doc.back().aRun.emplace_back();
            std::copy_if(line.begin(), line.end(), std::back_inserter(doc.back().aRun.back().text), IsTextCharacter);
        }
        i = iEnd + 1;
    }
    return doc;
}

void MarkLinks(RichDocument *pDoc)
{
    for (RichParagraph &paragraph : *pDoc) {
        std::vector<RichRun> aRun;
        for (const RichRun &run : paragraph.aRun) {
            if (run.link.empty())
                SplitAtAddresses(run, &aRun);
            else
                aRun.push_back(run);
        }
        paragraph.aRun = std::move(aRun);
    }
}

std::u16string TextOf(const RichDocument &doc)
{
    std::u16string text;
    for (size_t i = 0; i < doc.size(); i++) {
        if (i)
            text += u'\n';
        for (const RichRun &run : doc[i].aRun)
            text += run.text;
    }
    return text;
}
