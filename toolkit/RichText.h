// RichText.h -- the small language of formatted text that modules send, read into plain records
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>
#include <vector>

enum class RichAlign : u32 { Left, Center, Right };

// A piece of text of one look. Colours are 0x00BBGGRR.
struct RichRun {
    std::u16string text; // "\t" is a tab
    std::u16string link; // target; empty: none
    u32 nHalfPoints = 0; // size of the font; 0: the window's own font, which is bold
    u32 dwColor = 0;     // of the text, if bColor
    u32 dwBack = 0;      // behind the text, if bBack
    bool bColor = false;
    bool bBack = false;
    bool bBold = false;
    bool bItalic = false;
    bool bUnderline = false;
    bool operator==(const RichRun &) const = default;
};

struct RichParagraph {
    std::vector<RichRun> aRun;
    RichAlign eAlign = RichAlign::Left;
    bool operator==(const RichParagraph &) const = default;
};

using RichDocument = std::vector<RichParagraph>;

// Whether the text calls itself rich text, that is, begins with "{\rtf".
bool IsRichText(std::u16string_view text);
// Reads the subset: groups, paragraphs and lines, bold, italic, underline, size, colour table, text and background
// colour, alignment, tabs, \u and \' escapes, named dashes and quotes, hyperlinks. Everything else is skipped. Any text
// is accepted: a group that is not closed ends with the text, the text ends with a brace too many. Time and memory are
// linear in the text. [any-thread]
RichDocument ReadRichText(std::u16string_view text);
// One paragraph a line, without any look of its own.
RichDocument ReadPlainText(std::u16string_view text);
// Makes links of the addresses that stand in the text ("http://", "https://", "ftp://", "mailto:", "www.").
void MarkLinks(RichDocument *pDoc);
// The text alone, a line feed between paragraphs.
std::u16string TextOf(const RichDocument &doc);
