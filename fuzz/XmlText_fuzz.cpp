// XmlText_fuzz.cpp -- the tag reader on hostile text, against the plain text search
#include "engine/XmlText.h"

#include "platform/Assert.h"
#include "tests/XmlOracle.h"

#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>
#include <optional>

namespace {

const std::u16string asTag[] = {u"a", u"Preset", u"NumPlanes", u"Plane0", u"Name", u"Val", u"/a", u"\u00e4"};

// All kinds of value of one tag agree that it is there, and with the oracle, which may be null.
void LookUp(XmlContext *pxc, const XmlOracle *pOracle, const std::u16string &tag)
{
    std::u16string_view text;
    i32 n = 77;
    f32 f = 77;
    char16_t sz[5] = u"????";
    const u32 bFound = XmlReadText(pxc, tag, &text);
    VD_ASSERT(XmlReadInt(pxc, tag, &n) == bFound && XmlReadFloat(pxc, tag, &f) == bFound);
    VD_ASSERT(XmlReadString(pxc, tag, sz) == bFound && sz[4] == 0);
    VD_ASSERT((bFound || (n == 77 && f == 77)) && std::isfinite(f));
    if (!pOracle)
        return;
    const auto expected = pOracle->Value(tag);
    VD_ASSERT((bFound != 0) == expected.has_value());
    VD_ASSERT(!bFound || text == expected->substr(0, expected->find(u'\0')));
}

} // namespace

// The text stands at the start of the data, the lookups at its end.
extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    FuzzedDataProvider provider(pData, cb);
    u8 abStep[16];
    const u32 nSteps = provider.ConsumeIntegralInRange<u32>(0, sizeof abStep);
    for (u32 i = 0; i < nSteps; i++)
        abStep[i] = provider.ConsumeIntegral<u8>();
    const std::string bytes = provider.ConsumeRemainingBytesAsString();

    XmlContext *pxc = XmlOpenBytes(bytes);
    pxc->cchTextLeft = SIZE_MAX;
    std::optional<XmlOracle> oracle; // slow: for one input in four
    if (cb % 4 == 0)
        oracle.emplace(pxc->sText);
    for (u32 i = 0; i < nSteps; i++) {
        const std::u16string &tag = asTag[abStep[i] % std::size(asTag)];
        const u32 nWhat = abStep[i] / std::size(asTag) % 4;
        if (nWhat == 0) {
            const bool bEntered = XmlEnterTag(pxc, tag) != 0;
            VD_ASSERT(!oracle || oracle->Enter(tag) == bEntered);
        } else if (nWhat == 1) {
            XmlLeaveTag(pxc);
            if (oracle)
                oracle->Leave();
        } else {
            LookUp(pxc, oracle ? &*oracle : nullptr, tag);
        }
    }
    XmlClose(pxc);
    return 0;
}
