// FluidSettings.cpp -- what the sub-panels of the animated sources offer: a row each
#include "controls/panels/FluidSettings.h"

#include "controls/ControlManager.h"
#include "platform/Text.h"

namespace {

constexpr FluidSetting asSetting[] = {
    {FLUIDSOURCE_WAVE, &TVObjectInfo::hWavePanel, u"Waveform Settings", u"Wave Period", u"Fast", u"Slow", u"ms",
     EditField::WavePeriod, &ControlBase::nWavePeriod, 400, 120000, 100, 5000},
    {FLUIDSOURCE_SOUND, &TVObjectInfo::hSoundPanel, u"Sound Settings", u"Sensitivity", u"High", u"Low", u"",
     EditField::Samples, &ControlBase::nSamples, 1, 44, 1, 5},
    {FLUIDSOURCE_PERIODIC, &TVObjectInfo::hRandomPanel, u"Random Value Settings", u"Reset Frequency", u"Short", u"Long",
     u"ms", EditField::NoisePeriod, &ControlBase::nNoisePeriod, 0, 16000, 50, 1000},
};

constexpr WaveTypeName asWaveType[] = {
    {WAVETYPE_SINE, u"Sine"},
    {WAVETYPE_TRIANGLE, u"Triangle"},
    {WAVETYPE_SQUARE, u"Square"},
    {WAVETYPE_RAMP, u"Ramp"},
};

} // namespace

std::span<const FluidSetting> FluidSettings()
{
    return asSetting;
}

const FluidSetting *FluidSettingOf(const ControlRecord *pctl)
{
    if (!ControlSupportsFluidSources(pctl))
        return nullptr;
    for (const FluidSetting &setting : asSetting)
        if (setting.dwSource == pctl->Base.dwSource)
            return &setting;
    return nullptr;
}

std::u16string FluidReadout(const FluidSetting &setting, const ControlRecord *pctl)
{
    const std::u16string sValue = FromUtf8(std::to_string(pctl->Base.*setting.pnValue));
    return *setting.pszUnit ? sValue + u' ' + setting.pszUnit : sValue;
}

std::span<const WaveTypeName> WaveTypeNames()
{
    return asWaveType;
}
