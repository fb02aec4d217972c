// Globals_fuzz.cpp -- the settings file: hostile text never gets past the limits, and what was read stays itself
#include "app/GlobalsFile.h"

#include "app/SettingsTable.h"
#include "output/RecorderCombos.h"
#include "platform/Assert.h"
#include "platform/Text.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cstring>

namespace {

bool Inside(i64 nValue, i64 nMin, i64 nMax)
{
    return nValue >= nMin && nValue <= nMax;
}

void CheckLimits(const GlobalSettingsRecord &gs)
{
    VD_ASSERT(gs.PresetBView == 1 || gs.PresetBView == 3);
    VD_ASSERT(Inside(gs.DetailScale, 10, 100) && Inside(gs.BufferCap, BUFFER_PIXELS_MIN, BUFFER_PIXELS_MAX));
    VD_ASSERT(Inside(gs.FPSTarget, 20, 480) && Inside(gs.TimeScale, 1, TIME_SCALE_MAX));
    VD_ASSERT(Inside(gs.FrameThickness, 0, 32) && Inside(gs.VolumeType, 0, 3));
    VD_ASSERT(Inside(gs.FrameRecordWidth, 128, 8192) && Inside(gs.FrameRecordHeight, 128, 8192));
    VD_ASSERT(Inside(gs.FrameRecordDelay, 0, 10000) && Inside(gs.FrameRecordMethod, 0, 1));
    for (u32 b : {gs.ThreadedPlanes, gs.MixInParallel, gs.AutoAdjustBuffer, gs.ShowMP, gs.ShowRGB, gs.ShowPrg})
        VD_ASSERT(b <= 1);
    for (const NameText &sz : {std::cref(gs.Preset), std::cref(gs.FrameRecordFormat), std::cref(gs.FriendlyName)})
        VD_ASSERT(TextLength(sz, NAME_CHARS) < NAME_CHARS);
    VD_ASSERT(Inside(RecorderCombos.nCount, 3, RECORDER_COMBOS_MAX) || RecorderCombos.nCount == 0);
    for (const UIColorRow &row : UIColorTable)
        VD_ASSERT(row.dwColor <= 0xFFFFFF);
}

std::string Document()
{
    XmlContext *pxc = XmlCreate();
    XmlBeginTag(pxc, u"Globals");
    WriteSettings(pxc, &GlobalSettings);
    XmlEndTag(pxc);
    const std::string s = ToUtf8(XmlDocumentText(pxc));
    XmlClose(pxc);
    VD_ASSERT(!s.empty());
    return s;
}

void Reset()
{
    RecorderCombos = {};
    CurrentCombo = {};
    SetDefaultSettings();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    Reset();
    ReadGlobalsText(&GlobalSettings, {reinterpret_cast<const char *>(pData), cb});
    CheckLimits(GlobalSettings);
    // Without a Globals nothing was read. Writing costs most of the time: one input in four will do.
    if (!RecorderCombos.bPrepared || cb % 4 != 0)
        return 0;
    const std::string sFirst = Document();
    Reset();
    ReadGlobalsText(&GlobalSettings, sFirst);
    VD_ASSERT(Document() == sFirst);
    return 0;
}
