// OverlayTexts.cpp -- what the five overlays say
#include "output/OverlayTexts.h"

#include "engine/PresetDocument.h"
#include "modules/OpenGLTest.h"
#include "output/FrameStats.h"
#include "output/Overlays.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr u64 FRAMES_NEEDED = 11; // for figures that mean something
constexpr i64 NO_FIGURE = -1;

constexpr const char16_t *KEY_HELP = u"Keyboard Commands\n\nType\tKey/Btn\tAction\nAutoplay:\n"
                                     u"\tTAB\tToggle autoplay mode.\n"
                                     u"\tR-Arrow\tIn autoplay mode: Advance to the next preset.\n"
                                     u"\tL-Arrow\tIn autoplay mode: Returns to the previous preset.\n"
                                     u"Display:\n"
                                     u"\tF\tToggle: Display frame rate.\n"
                                     u"\tR\tToggle: Display graphics metrics.\n"
                                     u"\tT\tToggle: Display the preset name.\n"
                                     u"\tH\tToggle: Display keyboard commands.\n"
                                     u"\tI\tToggle: Display shader information.\n"
                                     u"Mouse:\n"
                                     u"\tR-Click\tDisplay context menu.\n"
                                     u"\tL-Click\tClick/drag are passed to modules that use mouse movement.\n"
                                     u"\tWheel\tIncrease/decrease the thickness of the visuals window frame.\n"
                                     u"Misc:\n"
                                     u"\t+/-\tIncrease/decrease the frame rate target.\n"
                                     u"\tS\tSave the current frame to an picture file in the ScreenShots folder.\n"
                                     u"\tSpacebar\tIncrement the favor count for the active (animating) preset.\n"
                                     u"\tPg-Up/Dn\tIncrease/decrease the thickness of the visuals window frame.\n";

RichDocument aDocument[OVERLAYS];
i64 nOverallShown = NO_FIGURE; // whole frames per second that the text names
i64 nRecentShown = NO_FIGURE;

void ShowDocument(u32 iOverlay, RichDocument doc)
{
    MarkLinks(&doc);
    aDocument[iOverlay] = std::move(doc);
    asOverlay[iOverlay].nVersion++;
}

void SetPlainText(u32 iOverlay, std::u16string_view text)
{
    VWWindowParms *pvw = &asOverlay[iOverlay];
    CopyText(pvw->szText, text);
    if (std::u16string_view(pvw->szText) == pvw->szLastText)
        return;
    CopyText(pvw->szLastText, pvw->szText);
    ShowDocument(iOverlay, ReadPlainText(pvw->szText));
    pvw->bRelayout = 1;
}

template <typename... Args> std::u16string Format(const char *pszFormat, Args... args)
{
    char sz[2048]; // more than the longest names of hardware together
    std::snprintf(sz, sizeof sz, pszFormat, args...);
    return FromUtf8(sz);
}

unsigned long Unsigned(i64 n)
{
    return static_cast<unsigned long>(n);
}

} // namespace

const RichDocument &OverlayDocument(u32 iOverlay)
{
    return aDocument[iOverlay];
}

void ForgetOverlayTexts()
{
    for (RichDocument &doc : aDocument)
        doc.clear();
    nOverallShown = nRecentShown = NO_FIGURE;
}

void UpdatePresetName()
{
    ASSERT_MAIN_THREAD();
    SetPlainText(OVERLAY_PRESET_NAME, PresetName());
}

void UpdateKeyHelp()
{
    ASSERT_MAIN_THREAD();
    SetPlainText(OVERLAY_KEY_HELP, KEY_HELP);
}

void UpdateFrameRate()
{
    ASSERT_MAIN_THREAD();
    if (qwFramesTotal < FRAMES_NEEDED) {
        nOverallShown = nRecentShown = NO_FIGURE;
        SetPlainText(OVERLAY_FRAME_RATE, u"Calculating...");
        return;
    }
    const f32 fOverall = GetOverallFps();
    const f32 fRecent = GetRecentFps();
    if (static_cast<i64>(fOverall) == nOverallShown && static_cast<i64>(fRecent) == nRecentShown)
        return;
    nOverallShown = static_cast<i64>(fOverall);
    nRecentShown = static_cast<i64>(fRecent);
    SetPlainText(OVERLAY_FRAME_RATE,
                 Format("Frames Per Second\nOverall:   \t%6.2f\nRecent:   \t%6.2f\nTarget:   \t%8lu",
                        static_cast<f64>(fOverall), static_cast<f64>(fRecent), Unsigned(GlobalSettings.FPSTarget)));
}

void UpdateMetrics()
{
    ASSERT_MAIN_THREAD();
    const HostWindow &window = GlobalSettings.hwndVisuals;
    SetPlainText(OVERLAY_METRICS,
                 Format("Buffer: %lu x %lu x %lu BPP\nWindow: %lu x %lu x %lu BPP\nGPU: %s (%s)\nOpenGL v%s\nCPU: %s",
                        Unsigned(GlobalSettings.nBufferWidth), Unsigned(GlobalSettings.nBufferHeight), 32ul,
                        Unsigned(window.nWidth), Unsigned(window.nHeight), Unsigned(nDisplayBits),
                        bAccelEmulated ? "Emulated" : "Accelerated", ToUtf8(szGpuDescription).c_str(),
                        OpenGLVersion.empty() ? "Unknown" : OpenGLVersion.c_str(),
                        GlobalSettings.ThreadedPlanes ? "Multi-threaded" : "Single-threaded"));
}

void UpdateMessages()
{
    ASSERT_MAIN_THREAD();
    VWWindowParms *pvw = &asOverlay[OVERLAY_MESSAGES];
    TakeModuleMessage(pvw->szText);
    if (!GlobalSettings.nMessageSeconds && !bMessagePinned)
        return;
    if (std::u16string_view(pvw->szText) == pvw->szLastText)
        return;
    if (!*pvw->szLastText)
        pvw->bRelayout = 1; // the size of no text is none to keep
    CopyText(pvw->szLastText, pvw->szText);
    const std::u16string text = ExpandColorFields(pvw->szText, UIColorTable[UICOLOR_WINDOW_BACKGROUND].dwColor,
                                                  UIColorTable[UICOLOR_WINDOW_TEXT].dwColor);
    ShowDocument(OVERLAY_MESSAGES, IsRichText(text) ? ReadRichText(text) : ReadPlainText(text));
    const u64 qwNow = TickCount();
    if (!*pvw->szText)
        pvw->qwHideTick = std::max<u64>(qwNow, 2) - 1;
    else if (bMessagePinned)
        pvw->qwHideTick = HIDE_NEVER;
    else
        pvw->qwHideTick = qwNow + GlobalSettings.nMessageSeconds * 1000ull;
}
