// XmlText.h -- reader and writer of the tag format that all text files of the program share
//
// One header line, then elements of an open tag, text or further elements, and a close tag. There are no attributes,
// entities or comments, and nothing is escaped. The reader looks for the tags it is asked for and for nothing else, so
// files with unknown tags still load. Tag names are compared without regard to case.
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>
#include <vector>

constexpr u32 XML_LEVELS = 32;            // the document and 31 nested tags
constexpr u32 XML_TAG_CHARS = 64;         // the terminating 0 included
constexpr u32 XML_NUMBER_CHARS = 68;      // of a value's text, what a number is read from
constexpr size_t XML_TEXT_MAX = 16000000; // characters of a document, both ways

// One "<name>" or "</name>" of a document being read, for the search.
struct XmlTagPlace {
    u32 dwHash;    // of the folded name
    u32 iOpen;     // place of its "<"
    u32 iValueEnd; // place of the next "<", or the end of the text
};

// A document being written or read. Belongs to one thread. The pointers go into sText.
struct XmlContext {
    u32 nDepth;                                 // current level; 0 is the document
    char16_t aszTag[XML_LEVELS][XML_TAG_CHARS]; // name of the tag at each level; "BASE" at level 0 on reading
    const char16_t *apStart[XML_LEVELS];        // reading: first character inside the tag
    const char16_t *apEnd[XML_LEVELS];          // reading: its closing tag; never below apStart
    std::u16string sText;
    std::vector<XmlTagPlace> places; // reading: sorted by hash, name and place
    size_t cchTextLeft;              // reading: what XmlReadText still hands out
    u32 bBroken;                     // writing: something did not fit; the document will not be saved
};

// A new document with the header line; null when out of memory. Free with XmlClose.
XmlContext *XmlCreate();
// Each of these returns 0 when the tag is no name of 1 to 63 characters without "<" and ">", at the limit of levels, or
// at the limit of the text; the document then refuses to be saved, since a part of it would be missing.
u32 XmlBeginTag(XmlContext *pxc, std::u16string_view tag);
u32 XmlEndTag(XmlContext *pxc); // 0 at level 0, where it writes nothing
u32 XmlWriteInt(XmlContext *pxc, std::u16string_view tag, i32 nValue);
u32 XmlWriteInt(XmlContext *pxc, std::u16string_view tag, u32 dwValue); // as the i32 with the same bits
u32 XmlWriteFloat(XmlContext *pxc, std::u16string_view tag, f32 fValue);
// The text stands as it is, up to a 0 character. A "<" in it cuts the value on reading.
u32 XmlWriteString(XmlContext *pxc, std::u16string_view tag, std::u16string_view text);
// The document up to its last ">", as it goes to a file or to the clipboard. Empty when it is not complete.
std::u16string_view XmlDocumentText(const XmlContext *pxc);
// Writes the file in one piece, with a zero byte behind the last ">". Non-zero on success; on failure the old file
// stands as it was and *psWhy (may be null) tells the user why.
u32 XmlSaveFile(const XmlContext *pxc, std::u16string_view path, std::string *psWhy = nullptr);

// A reader over the file, or over a text. Null if the file cannot be read or is larger than any document can be; *psWhy
// then says why (null: standard error does), but for a file that is simply not there. Anything else gives a context,
// if one in which every lookup fails. Free with XmlClose.
XmlContext *XmlOpenFile(std::u16string_view path, std::string *psWhy = nullptr);
XmlContext *XmlOpenBytes(std::string_view bytes);
XmlContext *XmlOpenText(std::u16string text);
// Goes down into the first such tag in the range of the current level, children included. 0, and no change, if there is
// none or at the limit of levels.
u32 XmlEnterTag(XmlContext *pxc, std::u16string_view tag);
void XmlLeaveTag(XmlContext *pxc); // no effect at level 0
// Each finds the first such tag in the range of the current level, children included. Non-zero if found; the target is
// untouched otherwise. A value that is no number reads as 0, one outside the type as the nearest number of the type.
u32 XmlReadInt(XmlContext *pxc, std::u16string_view tag, i32 *pnValue);
u32 XmlReadInt(XmlContext *pxc, std::u16string_view tag, u32 *pdwValue);
u32 XmlReadFloat(XmlContext *pxc, std::u16string_view tag, f32 *pfValue);
// Cuts the value to cch characters, the terminating 0 included.
u32 XmlReadString(XmlContext *pxc, std::u16string_view tag, char16_t *pszValue, u32 cch);
template <u32 N> u32 XmlReadString(XmlContext *pxc, std::u16string_view tag, char16_t (&szValue)[N])
{
    return XmlReadString(pxc, tag, szValue, N);
}
// The value as it stands in the document, up to a 0 character; valid until XmlClose. For values without a limit of
// their own: in all, a context hands out a few times the length of its document, more than anyone needs who reads each
// value once. In a hostile document, in which one long value lies inside everything, it counts as absent from then on.
u32 XmlReadText(XmlContext *pxc, std::u16string_view tag, std::u16string_view *pValue);

// Frees a context of either kind; null is fine.
void XmlClose(XmlContext *pxc);

// The text of a float in a document, at sz without a 0; returns its length. And what reading it gives back.
u32 XmlFloatText(f32 fValue, char (&sz)[XML_NUMBER_CHARS]);
f32 XmlStoredFloat(f32 fValue);

// A tag with a number behind it, such as Plane0. nNumber in decimal.
std::u16string NumberedTag(std::u16string_view word, u32 nNumber);
