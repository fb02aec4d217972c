// RichText_fuzz.cpp -- the message reader on hostile text
#include "output/ModuleMessages.h"
#include "toolkit/RichText.h"

#include "platform/Assert.h"
#include "platform/Text.h"

#include <string>

namespace {

bool IsPlainCharacter(char16_t ch)
{
    return (ch >= 0x20 || ch == u'\t') && ch != 0xFDD0 && ch != 0xFFFC;
}

void CheckDocument(const RichDocument &doc, size_t cchMax)
{
    size_t cch = 0;
    for (const RichParagraph &paragraph : doc)
        for (const RichRun &run : paragraph.aRun) {
            VD_ASSERT(run.nHalfPoints <= 144);
            for (const char16_t ch : run.text)
                VD_ASSERT(IsPlainCharacter(ch));
            cch += run.text.size();
        }
    VD_ASSERT(cch <= cchMax && doc.size() <= cchMax + 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    const std::u16string text = FromUtf8({reinterpret_cast<const char *>(pData), cb});
    const std::u16string expanded = ExpandColorFields(text, 0x102030, 0xFFFF8C);
    VD_ASSERT(expanded.size() <= text.size() + 9 * 16);
    RichDocument doc = ReadRichText(u"{\\rtf1 " + expanded);
    CheckDocument(doc, expanded.size());
    const std::u16string before = TextOf(doc);
    MarkLinks(&doc);
    VD_ASSERT(TextOf(doc) == before);
    return 0;
}
