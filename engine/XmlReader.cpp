// XmlReader.cpp -- finds tags inside a stack of nested ranges
//
// A lookup answers as a plain text search for "<name>" from the start of the range would. It does not search, though:
// a table of all tags, sorted by name and place, is made once, so that a file costs its size and each lookup a few
// steps, whatever stands in the file.
#include "engine/XmlText.h"

#include "platform/Text.h"
#include "platform/WholeFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <locale.h>
#include <new>
#include <stdlib.h>

namespace {

constexpr u64 FILE_BYTES_MAX = 3 * XML_TEXT_MAX + 1; // a document in UTF-8 with its zero byte
constexpr size_t TEXT_READINGS = 8;                  // times the length of a document
constexpr u32 NAME_MAX_CHARS = XML_TAG_CHARS;        // a name of 63 characters and the "/" of its closing tag

using Text = std::u16string_view;

struct NameHash {
    u32 dw = 2166136261u;
    void Add(char16_t ch)
    {
        dw = (dw ^ FoldCase(ch)) * 16777619u;
    }
};

u32 HashName(Text name)
{
    NameHash hash;
    for (char16_t ch : name)
        hash.Add(ch);
    return hash.dw;
}

// Below 0, 0 or above 0, by folded characters.
int CompareNames(Text a, Text b)
{
    const size_t cch = std::min(a.size(), b.size());
    for (size_t i = 0; i < cch; i++) {
        const int n = FoldCase(a[i]) - FoldCase(b[i]);
        if (n != 0)
            return n;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size();
}

Text NameAt(Text text, const XmlTagPlace &place)
{
    const Text rest = text.substr(place.iOpen + 1, NAME_MAX_CHARS + 1);
    return rest.substr(0, rest.find(u'>'));
}

// Collects every "<name>" whose name has a legal length. The text between a "<" and the next one is looked at once.
void CollectPlaces(Text text, std::vector<XmlTagPlace> *pPlaces)
{
    size_t iOpen = text.find(u'<');
    while (iOpen != text.npos) {
        NameHash hash;
        size_t i = iOpen + 1;
        const size_t iLimit = std::min(text.size(), i + NAME_MAX_CHARS + 1);
        for (; i < iLimit && text[i] != u'<' && text[i] != u'>'; i++)
            hash.Add(text[i]);
        const bool bTag = i < iLimit && text[i] == u'>' && i > iOpen + 1;
        const size_t iNext = text.find(u'<', i);
        if (bTag)
            pPlaces->push_back({hash.dw, static_cast<u32>(iOpen), static_cast<u32>(std::min(iNext, text.size()))});
        iOpen = iNext;
    }
}

// Sorts by hash, name and place. The places come in order, and a stable sort keeps it; only where different names
// share a hash do names have to be compared.
void SortPlaces(Text text, std::vector<XmlTagPlace> *pPlaces)
{
    std::stable_sort(pPlaces->begin(), pPlaces->end(),
                     [](const XmlTagPlace &a, const XmlTagPlace &b) { return a.dwHash < b.dwHash; });
    const auto differ = [text](const XmlTagPlace &a, const XmlTagPlace &b) {
        return CompareNames(NameAt(text, a), NameAt(text, b)) != 0;
    };
    for (auto it = pPlaces->begin(); it != pPlaces->end();) {
        const auto itEnd =
            std::find_if(it, pPlaces->end(), [&](const XmlTagPlace &p) { return p.dwHash != it->dwHash; });
        if (std::adjacent_find(it, itEnd, differ) != itEnd)
            std::stable_sort(it, itEnd, [text](const XmlTagPlace &a, const XmlTagPlace &b) {
                return CompareNames(NameAt(text, a), NameAt(text, b)) < 0;
            });
        it = itEnd;
    }
}

size_t SkipHeader(Text text)
{
    const size_t iLine = text.find_first_of(u"\r\n");
    const size_t iFirst = iLine == text.npos ? text.npos : text.find_first_not_of(u"\t \r\n", iLine);
    return std::min(iFirst, text.size());
}

// The first "<name>" that lies wholly between two places of the text, or null.
const XmlTagPlace *FindPlace(const XmlContext *pxc, Text name, const char16_t *pFrom, const char16_t *pTo)
{
    const Text text = pxc->sText;
    const u32 dwHash = HashName(name);
    const u32 iFrom = static_cast<u32>(pFrom - text.data());
    const auto it = std::partition_point(pxc->places.begin(), pxc->places.end(), [&](const XmlTagPlace &place) {
        if (place.dwHash != dwHash)
            return place.dwHash < dwHash;
        const int n = CompareNames(NameAt(text, place), name);
        return n != 0 ? n < 0 : place.iOpen < iFrom;
    });
    if (it == pxc->places.end() || it->dwHash != dwHash || CompareNames(NameAt(text, *it), name) != 0)
        return nullptr;
    return it->iOpen + name.size() + 2 <= static_cast<size_t>(pTo - text.data()) ? &*it : nullptr;
}

bool TagIsValid(Text tag)
{
    return !tag.empty() && tag.size() < XML_TAG_CHARS;
}

const XmlTagPlace *FindTag(const XmlContext *pxc, Text tag)
{
    if (!TagIsValid(tag))
        return nullptr;
    return FindPlace(pxc, tag, pxc->apStart[pxc->nDepth], pxc->apEnd[pxc->nDepth]);
}

bool FindValue(const XmlContext *pxc, Text tag, Text *pValue)
{
    const XmlTagPlace *pPlace = FindTag(pxc, tag);
    if (!pPlace)
        return false;
    const size_t iValue = pPlace->iOpen + tag.size() + 2;
    *pValue = Text(pxc->sText).substr(iValue, pPlace->iValueEnd - iValue);
    return true;
}

// The beginning of a value as a C string; what is no ASCII ends it.
std::array<char, XML_NUMBER_CHARS + 1> NumberText(Text value)
{
    std::array<char, XML_NUMBER_CHARS + 1> az{};
    for (size_t i = 0; i < std::min<size_t>(value.size(), XML_NUMBER_CHARS) && value[i] < 0x80; i++)
        az[i] = static_cast<char>(value[i]);
    return az;
}

i32 ParseInt(Text value)
{
    const auto az = NumberText(value);
    const long long n = strtoll(az.data(), nullptr, 10);
    return static_cast<i32>(std::clamp<long long>(n, std::numeric_limits<i32>::min(), std::numeric_limits<i32>::max()));
}

// Independent of the locale of the process, in which the decimal point may be a comma.
f32 ParseFloat(const char *pszValue)
{
    static const locale_t loc = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    constexpr double dMax = std::numeric_limits<f32>::max();
    const double d = strtod_l(pszValue, nullptr, loc);
    return std::isnan(d) ? 0.0f : static_cast<f32>(std::clamp(d, -dMax, dMax));
}

} // namespace

XmlContext *XmlOpenText(std::u16string text)
{
    if (text.size() > XML_TEXT_MAX + 1)
        return nullptr;
    XmlContext *pxc = new (std::nothrow) XmlContext{};
    if (!pxc)
        return nullptr;
    pxc->sText = std::move(text);
    pxc->cchTextLeft = TEXT_READINGS * pxc->sText.size();
    CopyText(pxc->aszTag[0], u"BASE");
    pxc->apStart[0] = pxc->sText.data() + SkipHeader(pxc->sText);
    pxc->apEnd[0] = pxc->sText.data() + pxc->sText.size();
    CollectPlaces(pxc->sText, &pxc->places);
    SortPlaces(pxc->sText, &pxc->places);
    return pxc;
}

XmlContext *XmlOpenBytes(std::string_view bytes)
{
    return bytes.size() > FILE_BYTES_MAX ? nullptr : XmlOpenText(FromUtf8(bytes));
}

XmlContext *XmlOpenFile(std::u16string_view path, std::string *psWhy)
{
    std::string bytes, sWhy;
    const u32 bRead = ReadWholeFile(path, FILE_BYTES_MAX, &bytes, &sWhy);
    XmlContext *pxc = bRead ? XmlOpenBytes(bytes) : nullptr;
    if (bRead && !pxc)
        sWhy = ToUtf8(path) + ": larger than the " + std::to_string(XML_TEXT_MAX) +
               " characters that such a file can have";
    if (!sWhy.empty() && psWhy)
        *psWhy = sWhy;
    else if (!sWhy.empty())
        std::fprintf(stderr, "%s\n", sWhy.c_str());
    return pxc;
}

u32 XmlEnterTag(XmlContext *pxc, std::u16string_view tag)
{
    const XmlTagPlace *pOpen = pxc->nDepth + 1 < XML_LEVELS ? FindTag(pxc, tag) : nullptr;
    if (!pOpen)
        return 0;
    // The closing tag counts from the start of the parent's range, not from the open tag: one that stands before the
    // open tag leaves nothing inside.
    const char16_t *pText = pxc->sText.data();
    const char16_t *pTextEnd = pText + pxc->sText.size();
    const char16_t *pParentEnd = pxc->apEnd[pxc->nDepth];
    const XmlTagPlace *pClose = FindPlace(pxc, u"/" + std::u16string(tag), pxc->apStart[pxc->nDepth],
                                          pParentEnd < pTextEnd ? pParentEnd + 1 : pTextEnd);
    const u32 n = ++pxc->nDepth;
    CopyText(pxc->aszTag[n], tag);
    pxc->apStart[n] = pText + pOpen->iOpen + tag.size() + 2;
    pxc->apEnd[n] = pClose ? std::max(pText + pClose->iOpen, pxc->apStart[n]) : pxc->apStart[n];
    return 1;
}

void XmlLeaveTag(XmlContext *pxc)
{
    if (pxc->nDepth > 0)
        pxc->nDepth--;
}

u32 XmlReadInt(XmlContext *pxc, std::u16string_view tag, i32 *pnValue)
{
    Text value;
    if (!FindValue(pxc, tag, &value))
        return 0;
    *pnValue = ParseInt(value);
    return 1;
}

u32 XmlReadInt(XmlContext *pxc, std::u16string_view tag, u32 *pdwValue)
{
    i32 nValue = 0;
    if (!XmlReadInt(pxc, tag, &nValue))
        return 0;
    *pdwValue = static_cast<u32>(nValue);
    return 1;
}

u32 XmlReadFloat(XmlContext *pxc, std::u16string_view tag, f32 *pfValue)
{
    Text value;
    if (!FindValue(pxc, tag, &value))
        return 0;
    *pfValue = ParseFloat(NumberText(value).data());
    return 1;
}

u32 XmlReadText(XmlContext *pxc, std::u16string_view tag, std::u16string_view *pValue)
{
    Text value;
    if (!FindValue(pxc, tag, &value) || value.size() > pxc->cchTextLeft)
        return 0;
    pxc->cchTextLeft -= value.size();
    *pValue = value.substr(0, value.find(u'\0'));
    return 1;
}

u32 XmlReadString(XmlContext *pxc, std::u16string_view tag, char16_t *pszValue, u32 cch)
{
    Text value;
    if (!FindValue(pxc, tag, &value))
        return 0;
    value = value.substr(0, cch);
    value = value.substr(0, value.find(u'\0'));
    if (value.size() == cch && cch > 1 && (value[cch - 2] & 0xFC00) == 0xD800)
        value.remove_suffix(2); // the cut would leave half a character
    CopyText(pszValue, cch, value);
    return 1;
}

f32 XmlStoredFloat(f32 fValue)
{
    char sz[XML_NUMBER_CHARS];
    const u32 cch = XmlFloatText(fValue, sz);
    sz[cch] = 0;
    return ParseFloat(sz);
}

void XmlClose(XmlContext *pxc)
{
    delete pxc;
}
