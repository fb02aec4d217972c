// XmlWriter.cpp -- appends indented tags to a document and saves it
#include "engine/XmlText.h"

#include "platform/AtomicFile.h"
#include "platform/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>

namespace {

constexpr std::u16string_view HEADER = u"<?xml version=\"1.0\"?>\n";

bool TagIsValid(std::u16string_view tag)
{
    return !tag.empty() && tag.size() < XML_TAG_CHARS && tag.find_first_of(u"<>") == tag.npos;
}

u32 Fail(XmlContext *pxc)
{
    pxc->bBroken = 1;
    return 0;
}

// One whole line or nothing. An empty value with bLeaf 0 writes the line of a branch.
u32 WriteLine(XmlContext *pxc, std::u16string_view open, std::u16string_view tag, std::u16string_view value, bool bLeaf)
{
    const size_t cch = pxc->nDepth + open.size() + 2 * tag.size() + value.size() + 5;
    if (!TagIsValid(tag) || value.size() > XML_TEXT_MAX || pxc->sText.size() + cch > XML_TEXT_MAX)
        return Fail(pxc);
    std::u16string &s = pxc->sText;
    s.append(pxc->nDepth, u'\t').append(open).append(tag).append(u">");
    if (bLeaf)
        s.append(value).append(u"</").append(tag).append(u">");
    s.push_back(u'\n');
    return 1;
}

u32 WriteAscii(XmlContext *pxc, std::u16string_view tag, std::string_view digits)
{
    char16_t szValue[XML_NUMBER_CHARS];
    std::copy(digits.begin(), digits.end(), szValue);
    return WriteLine(pxc, u"<", tag, {szValue, digits.size()}, true);
}

// The format has no text for what is no number; the nearest finite one stays stable over loading and saving.
f32 ToFinite(f32 fValue)
{
    constexpr f32 fMax = std::numeric_limits<f32>::max();
    return std::isnan(fValue) ? 0.0f : std::clamp(fValue, -fMax, fMax);
}

} // namespace

XmlContext *XmlCreate()
{
    XmlContext *pxc = new (std::nothrow) XmlContext{};
    if (pxc)
        pxc->sText = HEADER;
    return pxc;
}

u32 XmlBeginTag(XmlContext *pxc, std::u16string_view tag)
{
    if (pxc->nDepth + 1 >= XML_LEVELS)
        return Fail(pxc);
    if (!WriteLine(pxc, u"<", tag, {}, false))
        return 0;
    CopyText(pxc->aszTag[++pxc->nDepth], tag);
    return 1;
}

u32 XmlEndTag(XmlContext *pxc)
{
    if (pxc->nDepth == 0)
        return 0;
    const char16_t *pszTag = pxc->aszTag[pxc->nDepth--];
    return WriteLine(pxc, u"</", pszTag, {}, false);
}

u32 XmlWriteInt(XmlContext *pxc, std::u16string_view tag, i32 nValue)
{
    char sz[16];
    return WriteAscii(pxc, tag, {sz, std::to_chars(sz, sz + sizeof sz, nValue).ptr});
}

u32 XmlWriteInt(XmlContext *pxc, std::u16string_view tag, u32 dwValue)
{
    return XmlWriteInt(pxc, tag, static_cast<i32>(dwValue));
}

u32 XmlWriteFloat(XmlContext *pxc, std::u16string_view tag, f32 fValue)
{
    char sz[XML_NUMBER_CHARS];
    return WriteAscii(pxc, tag, {sz, XmlFloatText(fValue, sz)});
}

u32 XmlFloatText(f32 fValue, char (&sz)[XML_NUMBER_CHARS])
{
    const auto end = std::to_chars(sz, sz + sizeof sz, ToFinite(fValue), std::chars_format::fixed, 6);
    return static_cast<u32>(end.ptr - sz);
}

u32 XmlWriteString(XmlContext *pxc, std::u16string_view tag, std::u16string_view text)
{
    return WriteLine(pxc, u"<", tag, text.substr(0, text.find(u'\0')), true);
}

std::u16string_view XmlDocumentText(const XmlContext *pxc)
{
    const std::u16string_view text = pxc->sText;
    if (pxc->bBroken || pxc->nDepth != 0)
        return {};
    return text.substr(0, text.rfind(u'>') + 1);
}

u32 XmlSaveFile(const XmlContext *pxc, std::u16string_view path, std::string *psWhy)
{
    const std::u16string_view text = XmlDocumentText(pxc);
    if (text.empty()) {
        if (psWhy)
            *psWhy = "Cannot save " + ToUtf8(path) + ": the contents are larger than such a file can hold.";
        return 0;
    }
    std::string bytes = ToUtf8(text);
    bytes.push_back('\0');
    return SaveFileAtomically(path, bytes, psWhy);
}

std::u16string NumberedTag(std::u16string_view word, u32 nNumber)
{
    char sz[16];
    const std::string_view digits(sz, std::to_chars(sz, sz + sizeof sz, nNumber).ptr);
    return std::u16string(word) + std::u16string(digits.begin(), digits.end());
}
