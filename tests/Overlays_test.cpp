// Overlays_test.cpp -- tests Overlays.cpp, OverlayTexts.cpp, OverlayPixels.cpp, ModuleMessages.cpp, FrameStats.cpp
#include "output/Overlays.h"

#include "engine/PresetDocument.h"
#include "output/FrameStats.h"
#include "output/OverlayPixels.h"
#include "output/OverlayTexts.h"
#include "output/VisualsCommands.h"
#include "platform/Clock.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "toolkit/UIColors.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace {

class Overlays : public testing::Test {
  protected:
    void SetUp() override
    {
        UseFixedClock(100000);
        GlobalSettings = {};
        GlobalSettings.nMessageSeconds = 5;
        GlobalSettings.FPSTarget = 60;
        SetDefaultUIColors();
        ResetOverlays();
        qwFramesTotal = qwFramesRecent = 0;
        qwStatsStart = qwRecentStart = STATS_NOT_STARTED;
    }
    void TearDown() override
    {
        UseSystemClock();
        GlobalSettings = {};
    }
    // Moves the clock and runs what is due.
    void Tick(u64 nMs = OVERLAY_TICK_MS)
    {
        SetFixedTick(TickCount() + nMs);
        TickOverlays(Host);
    }
    static void Measure(void *pv, u32, i32, i32 *pnWidth, i32 *pnHeight)
    {
        const auto *pTest = static_cast<Overlays *>(pv);
        *pnWidth = pTest->nTextWidth;
        *pnHeight = pTest->nTextHeight;
    }
    static std::string Text(u32 iOverlay)
    {
        return ToUtf8(asOverlay[iOverlay].szLastText);
    }

    i32 nTextWidth = 100, nTextHeight = 50;
    OverlayHost Host = {900, 600, this, Measure};
};

TEST_F(Overlays, FramesPerSecondRecoverAfterAStallAndNeedElevenFrames)
{
    EXPECT_FLOAT_EQ(1.0f, GetOverallFps()) << "the first call starts the statistics";
    for (u32 i = 1; i <= 300; i++) {
        SetFixedTick(TickCount() + 10);
        CountShownFrame();
        if (i == 10) {
            UpdateFrameRate();
            EXPECT_EQ("Calculating...", Text(OVERLAY_FRAME_RATE));
        }
    }
    UpdateFrameRate();
    EXPECT_EQ("Frames Per Second\nOverall:   \t100.00\nRecent:   \t 99.97\nTarget:   \t      60",
              Text(OVERLAY_FRAME_RATE));
    GlobalSettings.FPSTarget = 30;
    UpdateFrameRate();
    EXPECT_NE(std::string::npos, Text(OVERLAY_FRAME_RATE).find("60")) << "equal whole figures change nothing";

    SetFixedTick(TickCount() + 27000); // a stall
    EXPECT_NEAR(10.0f, GetRecentFps(), 0.01f);
    EXPECT_EQ(30u, qwFramesRecent);
    EXPECT_EQ(TickCount() + 1 - 3000, qwRecentStart);
    ResetFrameStats();
    UpdateFrameRate();
    EXPECT_EQ("Calculating...", Text(OVERLAY_FRAME_RATE));
}

TEST_F(Overlays, SizesFollowTheTextAndTheAnchorsTheWindow)
{
    const OverlayRect before = {7, 8, 0, 0};
    const auto layOut = [&](u32 dwAnchor, i32 w, i32 h) {
        const OverlayRect r = LayOutOverlay(Host, dwAnchor, w, h, before);
        return std::array<i32, 4>{r.x, r.y, r.nWidth, r.nHeight};
    };
    using Rect = std::array<i32, 4>;
    EXPECT_EQ((Rect{0, 0, 160, 80}), layOut(ANCHOR_TOP_LEFT, 100, 50)) << "a narrow text gets 60 more";
    EXPECT_EQ((Rect{600, 0, 300, 80}), layOut(ANCHOR_TOP_RIGHT, 299, 50)) << "but not beyond a third";
    EXPECT_EQ((Rect{500, 520, 400, 80}), layOut(ANCHOR_BOTTOM_RIGHT, 400, 50));
    EXPECT_EQ((Rect{0, 440, 900, 160}), layOut(ANCHOR_BOTTOM_LEFT, 1800, 50)) << "too wide grows in height";
    EXPECT_EQ((Rect{450, 0, 0, 0}), layOut(ANCHOR_TOP_CENTER, 400, 571)) << "too high is not shown";
    EXPECT_EQ((Rect{250, 260, 400, 80}), layOut(ANCHOR_CENTER, 400, 50));
    EXPECT_EQ((Rect{7, 8, 400, 80}), layOut(1, 400, 50)) << "no anchor: it stays";
}

TEST_F(Overlays, AnOverlayIsLaidOutAgainWhenItsTextOrTheWindowChanges)
{
    SetPresetChanged(u"/home/me/Presets/Deep.VD", 0);
    Tick();
    EXPECT_EQ("Deep.VD", Text(OVERLAY_PRESET_NAME));
    EXPECT_EQ(0, asOverlay[OVERLAY_PRESET_NAME].rect.nWidth) << "not while it is hidden";
    ToggleOverlay(OVERLAY_PRESET_NAME);
    Tick();
    EXPECT_EQ(160, asOverlay[OVERLAY_PRESET_NAME].rect.nWidth);
    const u32 nVersion = asOverlay[OVERLAY_PRESET_NAME].nVersion;
    nTextWidth = 500;
    Tick();
    EXPECT_EQ(160, asOverlay[OVERLAY_PRESET_NAME].rect.nWidth);
    EXPECT_EQ(nVersion, asOverlay[OVERLAY_PRESET_NAME].nVersion);
    RelayoutOverlays();
    Tick();
    EXPECT_EQ(500, asOverlay[OVERLAY_PRESET_NAME].rect.nWidth);
}

TEST_F(Overlays, AMessageStaysForItsTimeAndANewOneKeepsTheSize)
{
    const VWWindowParms &vw = asOverlay[OVERLAY_MESSAGES];
    ShowModuleMessage(u"one");
    Tick();
    EXPECT_TRUE(vw.bShown);
    EXPECT_EQ(160, vw.rect.nWidth);
    nTextWidth = 500;
    ShowModuleMessage(u"two");
    Tick(3000);
    EXPECT_EQ("two", Text(OVERLAY_MESSAGES));
    EXPECT_EQ(160, vw.rect.nWidth);
    Tick(4900);
    EXPECT_TRUE(vw.bShown) << "its time began with the second text";
    Tick(200);
    EXPECT_FALSE(vw.bShown);
    ShowModuleMessage(u"two");
    Tick();
    EXPECT_FALSE(vw.bShown) << "an equal text is no new one";

    GlobalSettings.nMessageSeconds = 0;
    ShowModuleMessage(u"three");
    Tick();
    EXPECT_FALSE(vw.bShown);
    ToggleOverlay(OVERLAY_MESSAGES);
    Tick();
    EXPECT_EQ("three", Text(OVERLAY_MESSAGES));
    Tick(1000000);
    EXPECT_TRUE(vw.bShown) << "pinned";
    ToggleOverlay(OVERLAY_MESSAGES);
    Tick();
    EXPECT_FALSE(vw.bShown) << "switched off by hand it stays away";
    ToggleOverlay(OVERLAY_MESSAGES);
    ShowModuleMessage(u"");
    Tick();
    Tick();
    EXPECT_FALSE(vw.bShown) << "an empty text hides it";
}

TEST_F(Overlays, TheMailboxTakesTheLastTextOfAnyThreadAndCutsLongOnes)
{
    static char16_t szLong[MESSAGE_CHARS + 100];
    std::fill(std::begin(szLong), std::end(szLong), u'x'); // no terminating 0
    std::thread thread([] {
        for (u32 i = 0; i < 2000; i++)
            ShowModuleMessage(i % 2 ? szLong : u"short");
    });
    char16_t szText[MESSAGE_CHARS] = {};
    for (u32 i = 0; i < 2000; i++) {
        TakeModuleMessage(szText);
        const std::u16string_view text = szText;
        EXPECT_TRUE(text.empty() || text == u"short" || text.find_first_not_of(u'x') == text.npos) << "torn";
    }
    thread.join();
    TakeModuleMessage(szText);
    EXPECT_EQ(MESSAGE_CHARS - 1, TextLength(szText, MESSAGE_CHARS));
    EXPECT_EQ(0u, TakeModuleMessage(szText));
    ShowModuleMessage(nullptr);
    EXPECT_EQ(1u, TakeModuleMessage(szText));
    EXPECT_EQ(u'\0', szText[0]);
}

TEST_F(Overlays, OnlyNineFieldsForColoursAreEverExpanded)
{
    const auto expand = [](const char16_t *psz) { return ToUtf8(ExpandColorFields(psz, 0x030201, 0x0A6450)); };
    EXPECT_EQ("1 2 3|80 100 10|150 120 15", expand(u"%d %i %u|%lu %ld %hu|%d %d %d"));
    EXPECT_EQ("001,  2,3  %", expand(u"%03d,%3d,%-3d%%"));
    EXPECT_EQ("1 2 3 80 100 10 150 120 15 %d", expand(u"%d %d %d %d %d %d %d %d %d %d"));
    EXPECT_EQ("%s %n %x 100% %ls % 1 %", expand(u"%s %n %x 100% %ls % %d %")) << "nothing else is a field";
    EXPECT_EQ(std::string(15, ' ') + "1", expand(u"%999999999999d"));
    EXPECT_EQ(0xFFu | (0xFFu << 8) | (0x96u << 16), HighlightOf(0x64FFC8));
    EXPECT_EQ(0x0F7896u, HighlightOf(0x0A6450)) << "red and green change places";
}

TEST_F(Overlays, TheFrameIsShadedMirroredTextureAndTheRestBlack)
{
    const OverlayPicture texture = {3, 2, {0x102030, 0x405060, 0x708090, 0xA0B0C0, 0xD0E0F0, 0xFFFFFF}};
    OverlayPicture picture = {20, 16, {}};
    DrawOverlayFrame(&picture, FRAME_TEXTURED, texture);
    const auto at = [&](i32 x, i32 y) { return picture.adwPixel[static_cast<size_t>(y * 20 + x)] & 0xFFFFFF; };
    const auto shaded = [](u32 dw, u32 v) {
        return ((dw >> 16) * v / 255) << 16 | (((dw >> 8) & 255) * v / 255) << 8 | ((dw & 255) * v / 255);
    };
    EXPECT_EQ(0u, at(0, 7));
    EXPECT_EQ(shaded(0xD0E0F0, 180), at(7, 1)) << "columns 6 to 8 stand as they are";
    EXPECT_EQ(shaded(0xFFFFFF, 254), at(9, 2)) << "column 9 is the first of a mirrored tile, row 2 of one too";
    EXPECT_EQ(shaded(0x708090, 179), at(9, 3));
    EXPECT_EQ(0u, at(9, 4));
    OverlayPicture white = {12, 12, {}};
    DrawOverlayFrame(&white, FRAME_TEXTURED, {});
    EXPECT_EQ(0xFFFEFEFEu, white.adwPixel[2 * 12 + 5]) << "without a texture it is white";
    OverlayPicture tiny = {1, 3, {}};
    DrawOverlayFrame(&tiny, FRAME_RAISED, texture);
    DrawOverlayFrame(&tiny, FRAME_TEXTURED, texture);
}

TEST_F(Overlays, BlendingKeepsTheKeyOpenAndStaysInsideTheTarget)
{
    u32 adw[4] = {0xFFFFFFFF, 0xFF010203, 0xFF000000, 0xFF6496C8};
    EXPECT_TRUE(MakeOverlayTranslucent(adw, 4, 180));
    u32 adwTarget[5 * 3];
    std::fill(std::begin(adwTarget), std::end(adwTarget), 0xFF64C8FFu);
    const StretchTarget target = {adwTarget, 4, 3, 20};
    BlendOverlay(target, 2, 1, {adw, 2, 2, 8, 180, true});
    EXPECT_EQ(0xD1EEFFu, adwTarget[5 + 2] & 0xFFFFFF) << "180 + 100 * 75 / 255, and so on";
    EXPECT_EQ(0x64C8FFu, adwTarget[5 + 3] & 0xFFFFFF) << "the key";
    EXPECT_EQ(0x1D3A4Bu, adwTarget[10 + 2] & 0xFFFFFF);
    BlendOverlay(target, -1, -1, {adw, 2, 2, 8, 180, true});
    BlendOverlay(target, 3, 2, {adw, 2, 2, 8, 180, false});
    BlendOverlay(target, 9, -9, {adw, 2, 2, 8, 180, false});
    for (u32 y = 0; y < 3; y++)
        EXPECT_EQ(0xFF64C8FFu, adwTarget[y * 5 + 4]) << "beside the target";

    std::array<u32, 256> adwFrom, adwTo; // every value below every alpha
    for (u32 bAlpha = 0; bAlpha < 256; bAlpha++) {
        adwFrom.fill(0xFF000000);
        MakeOverlayTranslucent(adwFrom.data(), adwFrom.size(), static_cast<u8>(bAlpha));
        for (u32 i = 0; i < 256; i++)
            adwTo[i] = i * 0x010101;
        BlendOverlay({adwTo.data(), 253, 1, 1024}, 0, 0,
                     {adwFrom.data(), 256, 1, 1024, static_cast<u8>(bAlpha), false});
        for (u32 i = 0; i < 253; i++)
            ASSERT_EQ(i * (255 - bAlpha) / 255 * 0x010101, adwTo[i] & 0xFFFFFF) << i << " below " << bAlpha;
    }
}

TEST_F(Overlays, KeysActOnceAndOnlyThePadChangesTheRate)
{
    const auto press = [](u32 dwKey, bool bUp, bool bRepeat = false, bool bSystem = false) {
        return HandleVisualsKey({dwKey, bUp, bRepeat, bSystem});
    };
    qwFramesTotal = 99;
    press('F', false);
    press('F', false, true);
    EXPECT_TRUE(asOverlay[OVERLAY_FRAME_RATE].bShown);
    EXPECT_EQ(0u, qwFramesTotal) << "the statistics begin anew";
    EXPECT_TRUE(press('H', false, false, true)) << "with Alt it is swallowed";
    EXPECT_FALSE(asOverlay[OVERLAY_KEY_HELP].bShown);
    press('I', false);
    EXPECT_TRUE(bMessagePinned);
    press(KEY_PAD_PLUS, true);
    EXPECT_EQ(60, GlobalSettings.FPSTarget) << "a release without its press";
    const auto tap = [&](u32 dwKey) {
        press(dwKey, false);
        press(dwKey, true);
    };
    for (i32 i = 0; i < 500; i++)
        tap(KEY_PAD_PLUS);
    EXPECT_EQ(480, GlobalSettings.FPSTarget);
    for (i32 i = 0; i < 500; i++)
        tap(KEY_PAD_MINUS);
    EXPECT_EQ(20, GlobalSettings.FPSTarget);
    EXPECT_FALSE(press('+', true));

    for (i32 i = 0; i < 40; i++)
        press(KEY_PAGE_UP, false, i > 0);
    EXPECT_EQ(30, GlobalSettings.FrameThickness);
    EXPECT_EQ(188, SmallestVisualsSide());
    HandleVisualsWheel(-1);
    HandleVisualsWheel(0);
    EXPECT_EQ(29, GlobalSettings.FrameThickness);

    press(KEY_SPACE, false);
    press(KEY_SPACE, true, true);
    EXPECT_EQ(0u, bFavorPending) << "the release that a held key seems to send is none";
    press(KEY_SPACE, true);
    tap(KEY_RIGHT);
    tap(KEY_BACKSPACE);
    press(KEY_TAB, false);
    ForgetVisualsKeys();
    press(KEY_TAB, true);
    EXPECT_EQ(0u, bStartPending) << "the keyboard was elsewhere meanwhile";
    tap(KEY_TAB);
    press('S', false);
    EXPECT_EQ(5u, bFavorPending + bNextPending + bPrevPending + bStartPending + bCaptureRequested);
    bFavorPending = bNextPending = bPrevPending = bStartPending = bCaptureRequested = 0;
}

} // namespace
