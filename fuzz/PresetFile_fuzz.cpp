// PresetFile_fuzz.cpp -- preset files: hostile text gives a preset inside all limits, or none, and a saved one is
// stable
#include "engine/PresetFile.h"

#include "app/SettingsTable.h"
#include "controls/FluidSources.h"
#include "engine/DrawPipeline.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "platform/Assert.h"
#include "platform/Clock.h"
#include "platform/Random.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"
#include "tests/modules/RecorderLog.h"

#include <cmath>
#include <cstdlib>

namespace {

RecorderTakeFn apfnTake[2]; // the logs of both recorders, which would grow and look like leaks

void CheckControl(const ControlRecord &ctl)
{
    const ControlBase &Base = ctl.Base;
    VD_ASSERT(Base.dwSource && Base.dwSource <= 16 && (Base.dwSource & (Base.dwSource - 1)) == 0);
    VD_ASSERT(Base.nSamples <= SOUND_HISTORY && Base.dwWaveType <= WAVETYPE_RAMP);
    VD_ASSERT(Base.fWavePhase >= 0 && Base.fWavePhase <= 1);
    if (Base.dwType == CONTROLTYPE_FLOAT)
        VD_ASSERT(ctl.Float.fMin >= 0 && ctl.Float.fMax <= 1 && std::isfinite(ctl.Float.fValue));
    if (Base.dwType == CONTROLTYPE_INTEGER)
        VD_ASSERT(ctl.Integer.nMin >= 0 && ctl.Integer.nMax <= ctl.Integer.nAbsMax);
    if (Base.dwType == CONTROLTYPE_ITEMSELECT)
        VD_ASSERT(ctl.ItemSelect.nCurrentItemValue < 9999);
    if (Base.dwType == CONTROLTYPE_TILE)
        VD_ASSERT(ctl.Tile.nXTiles - 1 < 32 && ctl.Tile.nYTiles - 1 < 32);
}

void CheckSlot(const ModuleSlot *pms)
{
    VD_ASSERT(pms->nDuration >= 1 && pms->nDuration <= DURATION_NEVER);
    VD_ASSERT(std::abs(pms->nCallsPerFrame) <= 32);
    for (i32 i = 0; i < pms->nControls; i++)
        CheckControl(*pms->apControl[i]);
}

void CheckPreset(const PresetState *lppsi)
{
    VD_ASSERT(lppsi->nPlanes <= PLANES_MAX && lppsi->nMixRules >= 1);
    VD_ASSERT(static_cast<u32>(lppsi->nPlanes) + lppsi->nMixRules <= MIX_SOURCES_MAX);
    for (i32 i = 0; i < lppsi->nPlanes; i++)
        for (u32 iKind = 0; iKind < MODULEINDEX_MIXER; iKind++)
            for (i32 j = 0; j < lppsi->psPlane[i]->anModules[iKind]; j++)
                CheckSlot(lppsi->psPlane[i]->apModule[iKind][j]);
    for (u32 i = 0; i < lppsi->nMixRules; i++)
        CheckControl(lppsi->asMixRule[i].BlendWeight);
    for (i32 i = 0; i < lppsi->nPostProc; i++)
        CheckSlot(lppsi->apPostProc[i]);
}

std::string TextOf(PresetState *lppsi)
{
    XmlContext *pxc = XmlCreate();
    WritePreset(pxc, lppsi);
    const std::string s = ToUtf8(XmlDocumentText(pxc));
    XmlClose(pxc);
    return s;
}

// Without the values that chance may have drawn.
std::string Lasting(const std::string &sText)
{
    std::string s;
    for (size_t i = 0, iEnd = 0; i < sText.size(); i = iEnd + 1) {
        iEnd = std::min(sText.find('\n', i), sText.size());
        const std::string sLine = sText.substr(i, iEnd - i);
        if (sLine.find("<Val>") == s.npos && sLine.find("<Index>") == s.npos)
            s += sLine + "\n";
    }
    return s;
}

void CheckSaving(PresetState *lppsi)
{
    const std::string sSaved = TextOf(lppsi);
    VD_ASSERT(!sSaved.empty());
    PresetState *lppsiAgain = LoadPresetText(sSaved);
    VD_ASSERT(lppsiAgain && Lasting(TextOf(lppsiAgain)) == Lasting(sSaved));
    DestroyPresetState(lppsiAgain);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    UseFixedClock(1000);
    InitFolders({u"/nowhere/vorticade", {}, FromUtf8(TEST_MODULE_FOLDER)});
    SetDefaultSettings();
    GlobalSettings.nBufferWidth = GlobalSettings.nBufferHeight = 4;
    GlobalSettings.pSound = static_cast<SoundFrame *>(std::calloc(1, sizeof(SoundFrame)));
    for (const char16_t *pszName : {u"Recorder.dll", u"Idle.dll", u"RecorderColor.dll"})
        VD_ASSERT(LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/" + pszName));
    SharedLibrary *pRecorder = FindModuleRecord(u"Recorder.dll")->mf.pLibrary;
    apfnTake[0] = FindEntryPointAs<RecorderTakeFn>(pRecorder, u"RecorderTake");
    apfnTake[1] =
        FindEntryPointAs<RecorderTakeFn>(FindModuleRecord(u"RecorderColor.dll")->mf.pLibrary, u"RecorderTake");
    RecorderBehaviour rb = {};
    rb.nControls = 6;
    for (u32 i = 0; i < rb.nControls; i++)
        rb.adwType[i] = CONTROLTYPE_INTEGER + i;
    FindEntryPointAs<RecorderSetBehaviourFn>(pRecorder, u"RecorderSetBehaviour")(nullptr, &rb);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    SeedAllRandom(1);
    PresetReport report = {};
    PresetState *lppsi = LoadPresetText({reinterpret_cast<const char *>(pData), cb}, &report);
    VD_ASSERT(report.asLine.size() <= REPORT_LINES_MAX);
    if (lppsi) {
        CheckPreset(lppsi);
        RunPresetModules(lppsi, MODSTEPS_FRAME);
        if (cb % 4 == 0) // writing costs most of the time
            CheckSaving(lppsi);
        DestroyPresetState(lppsi);
    }
    for (RecorderTakeFn pfnTake : apfnTake)
        pfnTake(nullptr, 0);
    return 0;
}
