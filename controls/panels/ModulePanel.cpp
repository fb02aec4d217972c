// ModulePanel.cpp -- what the panel of a module says: read-outs of its two sliders, and its meter
#include "controls/panels/ModulePanel.h"

#include "platform/Text.h"

#include <algorithm>

namespace {

std::u16string NumberText(i64 n)
{
    return FromUtf8(std::to_string(n));
}

} // namespace

std::u16string DurationText(u32 nDuration)
{
    return nDuration == DURATION_NEVER ? u"Never" : NumberText(nDuration);
}

std::u16string CallsText(i32 nCallsPerFrame)
{
    if (nCallsPerFrame == 0)
        return u"Paused";
    if (nCallsPerFrame < -1)
        return u"1 in every " + NumberText(-i64{nCallsPerFrame}) + u" frames";
    const bool bOne = nCallsPerFrame <= 1;
    return (bOne ? u"1" : NumberText(nCallsPerFrame)) + (bOne ? u" time per frame" : u" times per frame");
}

f32 ResetProgress(const ModuleSlot *pms, u32 dwTimeScale, u64 qwTick)
{
    if (pms->nDuration == DURATION_NEVER)
        return 0;
    const f64 fTotal = static_cast<f64>(pms->nDuration) * dwTimeScale * 1000;
    const f64 fLeft = pms->qwNextReset > qwTick ? static_cast<f64>(pms->qwNextReset - qwTick) : 0;
    if (fTotal <= fLeft)
        return fLeft > 0 ? 0.0f : 1.0f;
    return static_cast<f32>(1 - fLeft / fTotal);
}
