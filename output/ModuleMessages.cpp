// ModuleMessages.cpp -- texts that modules show: the mailbox, and the colours that stand in them as numbers
#include "output/ModuleMessages.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <mutex>

namespace {

constexpr size_t COLOR_FIELDS = 9;
constexpr size_t FIELD_WIDTH_MAX = 16;

std::mutex csMailbox;
char16_t szWaiting[MESSAGE_CHARS]; // guarded by csMailbox, as is the flag
bool bWaiting = false;

u32 Part(u32 dwColor, u32 iPart)
{
    return (dwColor >> (8 * iPart)) & 0xFF;
}

struct Field {
    size_t cch = 0;      // length with the percent sign; 0: no field
    size_t nWidth = 0;   // smallest number of characters
    bool bZeros = false; // fill with zeros
    bool bLeft = false;
};

// text begins with a percent sign.
Field ReadField(std::u16string_view text)
{
    Field field;
    size_t i = 1;
    for (; i < text.size() && std::u16string_view(u"-+ #0").find(text[i]) != text.npos; i++) {
        field.bZeros |= text[i] == u'0';
        field.bLeft |= text[i] == u'-';
    }
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; i++)
        field.nWidth = std::min(field.nWidth * 10 + static_cast<size_t>(text[i] - u'0'), FIELD_WIDTH_MAX);
    while (i < text.size() && (text[i] == u'l' || text[i] == u'h'))
        i++;
    if (i < text.size() && (text[i] == u'd' || text[i] == u'i' || text[i] == u'u'))
        field.cch = i + 1;
    return field;
}

void AppendNumber(std::u16string *pText, u32 dw, const Field &field)
{
    std::u16string digits = FromUtf8(std::to_string(dw));
    const size_t nFill = field.nWidth > digits.size() ? field.nWidth - digits.size() : 0;
    if (field.bLeft)
        digits.append(nFill, u' ');
    else
        digits.insert(0, nFill, field.bZeros ? u'0' : u' ');
    *pText += digits;
}

} // namespace

u32 ShowModuleMessage(const char16_t *pszText)
{
    const u32 cch = pszText ? TextLength(pszText, MESSAGE_CHARS - 1) : 0;
    const std::lock_guard lock(csMailbox);
    CopyText(szWaiting, {pszText ? pszText : u"", cch});
    bWaiting = true;
    return 1;
}

u32 TakeModuleMessage(char16_t (&szText)[MESSAGE_CHARS])
{
    ASSERT_MAIN_THREAD();
    const std::lock_guard lock(csMailbox);
    if (!bWaiting)
        return 0;
    CopyText(szText, szWaiting);
    bWaiting = false;
    return 1;
}

u32 HighlightOf(u32 dwTextColor)
{
    const auto brighter = [](u32 dwPart) { return std::min(dwPart * 3 / 2, 255u); };
    return brighter(Part(dwTextColor, 1)) | (brighter(Part(dwTextColor, 0)) << 8) |
           (brighter(Part(dwTextColor, 2)) << 16);
}

std::u16string ExpandColorFields(std::u16string_view text, u32 dwBackColor, u32 dwTextColor)
{
    const u32 adwColor[3] = {dwBackColor, dwTextColor, HighlightOf(dwTextColor)};
    std::u16string expanded;
    size_t iField = 0;
    for (size_t i = 0; i < text.size();) {
        const Field field = text[i] == u'%' ? ReadField(text.substr(i)) : Field{};
        if (field.cch && iField < COLOR_FIELDS) {
            AppendNumber(&expanded, Part(adwColor[iField / 3], static_cast<u32>(iField % 3)), field);
            iField++;
            i += field.cch;
        } else {
            expanded += text[i];
            i += text.substr(i, 2) == u"%%" ? 2 : 1;
        }
    }
    return expanded;
}
