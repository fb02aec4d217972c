// WindowLayouts_test.cpp -- tests WindowLayouts.cpp: what commands do with windows, and what is known of them
// afterwards
#include "toolkit/WindowLayouts.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

// A window of no toolkit at all.
struct Window {
    WindowRect rc = {};
    void *pvOwner = nullptr;
    bool bShown = false, bFocus = false, bNormal = true;
    bool bRefuses = false; // asks about unsaved changes, and is told to stay
};
std::vector<std::unique_ptr<Window>> Made;
bool bCannotMake = false;

Window *Of(void *hWnd)
{
    return static_cast<Window *>(hWnd);
}

void *Make(void *pvOwner)
{
    if (bCannotMake)
        return nullptr;
    Made.push_back(std::make_unique<Window>());
    Made.back()->pvOwner = pvOwner;
    return Made.back().get();
}

constexpr WindowFunctions Functions = {
    .pfnShow =
        [](void *hWnd, u32 bFocus) {
            Of(hWnd)->bShown = true;
            Of(hWnd)->bFocus = bFocus;
        },
    .pfnClose =
        [](void *hWnd) {
            if (!Of(hWnd)->bRefuses)
                WindowGone(hWnd);
        },
    .pfnGetRect =
        [](void *hWnd, WindowRect *prc) {
            *prc = Of(hWnd)->rc;
            return Of(hWnd)->bNormal ? 1u : 0u;
        },
    .pfnSetRect =
        [](void *hWnd, const WindowRect &rc) {
            Of(hWnd)->rc = rc;
            WindowMoved(hWnd);
        },
};
constexpr WindowKind Child = {u"Palette", WindowUse::Child, Make, &Functions};
constexpr WindowKind Dialog = {u"RecordingOptions", WindowUse::Dialog, Make, &Functions};
constexpr WindowKind Visuals = {u"Visuals", WindowUse::Main, nullptr, &Functions};

class Layouts : public testing::Test {
  protected:
    Layouts()
    {
        ForgetWindowLayouts();
        Made.clear();
        bCannotMake = false;
        for (const WindowKind *pKind : {&Visuals, &Child, &Dialog})
            RegisterWindow(*pKind);
    }
    ~Layouts() override
    {
        ForgetWindowLayouts();
    }
    static void MoveTo(Window *p, const WindowRect &rc)
    {
        p->rc = rc;
        WindowMoved(p);
    }
};

TEST_F(Layouts, ACommandOpensAChildWithItsMarkAndClosesItAgain)
{
    int nOwner = 0;
    RunWindowCommand(u"Palette", &nOwner);
    ASSERT_EQ(1u, Made.size());
    EXPECT_TRUE(Made[0]->bShown && !Made[0]->bFocus) << "the keyboard stays where it is";
    EXPECT_EQ(&nOwner, Made[0]->pvOwner);
    EXPECT_TRUE(WindowIsOpen(u"Palette") && WindowIsMarked(u"Palette"));
    RunWindowCommand(u"Palette", &nOwner);
    EXPECT_FALSE(WindowIsOpen(u"Palette") || WindowIsMarked(u"Palette"));
    RunWindowCommand(u"Palette", &nOwner);
    EXPECT_EQ(2u, Made.size());
}

TEST_F(Layouts, AChildClosedByItsOwnButtonKeepsTheMarkAndIsOpenedAgain)
{
    RunWindowCommand(u"Palette", nullptr);
    WindowGone(Made[0].get());
    EXPECT_FALSE(WindowIsOpen(u"Palette"));
    EXPECT_TRUE(WindowIsMarked(u"Palette"));
    RunWindowCommand(u"Palette", nullptr);
    EXPECT_TRUE(WindowIsOpen(u"Palette") && WindowIsMarked(u"Palette"));
    WindowClosed(Made[1].get()); // hidden, kept
    RunWindowCommand(u"Palette", nullptr);
    EXPECT_TRUE(WindowIsOpen(u"Palette"));
    EXPECT_EQ(2u, Made.size());
}

TEST_F(Layouts, AChildThatRefusesToCloseOrCannotBeMadeHasTheMarkThatIsTrue)
{
    RunWindowCommand(u"Palette", nullptr);
    Made[0]->bRefuses = true;
    RunWindowCommand(u"Palette", nullptr);
    EXPECT_TRUE(WindowIsMarked(u"Palette"));
    Made[0]->bRefuses = false;
    RunWindowCommand(u"Palette", nullptr);
    bCannotMake = true;
    RunWindowCommand(u"Palette", nullptr);
    EXPECT_FALSE(WindowIsOpen(u"Palette") || WindowIsMarked(u"Palette"));
}

TEST_F(Layouts, ThereIsOneDialogAndItsCommandBringsItToTheFront)
{
    RunWindowCommand(u"RecordingOptions", nullptr);
    Made[0]->bShown = Made[0]->bFocus = false;
    RunWindowCommand(u"RecordingOptions", nullptr);
    ASSERT_EQ(1u, Made.size());
    EXPECT_TRUE(Made[0]->bShown && Made[0]->bFocus);
    EXPECT_FALSE(WindowIsMarked(u"RecordingOptions"));
}

TEST_F(Layouts, AWindowComesBackWhereItStood)
{
    RunWindowCommand(u"Palette", nullptr);
    EXPECT_EQ(0u, FindWindowLayout(u"Palette")->wp.length) << "nobody has placed it";
    MoveTo(Made[0].get(), {10, 20, 310, 220});
    Made[0]->bNormal = false;
    MoveTo(Made[0].get(), {0, 0, 1920, 1080}); // full screen
    RunWindowCommand(u"Palette", nullptr);
    MoveTo(Made[0].get(), {1, 1, 2, 2}); // on its way out
    RunWindowCommand(u"Palette", nullptr);
    const WindowRect &rc = Made[1]->rc;
    EXPECT_TRUE(rc.left == 10 && rc.top == 20 && rc.right == 310 && rc.bottom == 220);
    EXPECT_EQ(44u, FindWindowLayout(u"Palette")->wp.length);
    RunWindowCommand(u"RecordingOptions", nullptr);
    MoveTo(Made[2].get(), {10, 20, 310, 220});
    WindowGone(Made[2].get());
    RunWindowCommand(u"RecordingOptions", nullptr);
    EXPECT_EQ(0, Made[3]->rc.right) << "dialogs come up where the window manager puts them";
}

TEST_F(Layouts, NamesAreComparedExactlyAndUnknownOnesDoNothing)
{
    RunWindowCommand(u"palette", nullptr);
    RunWindowCommand(u"Visuals", nullptr);
    WindowGone(nullptr);
    WindowMoved(&Made);
    EXPECT_TRUE(Made.empty());
    EXPECT_EQ(nullptr, OpenWindow(u"Nobody", nullptr, 1));
    EXPECT_EQ(0u, WindowIsMarked(u"Nobody"));
}

TEST_F(Layouts, RecordsKeepTheirContentAndOrderWhileTheTableGrows)
{
    RunWindowCommand(u"Palette", nullptr);
    for (u32 i = 0; i < 40; i++)
        AddWindowLayout(std::u16string(60 + i % 20, static_cast<char16_t>(u'A' + i % 26)));
    EXPECT_EQ(0u, WindowLayouts.nLayoutCapacity % 16);
    EXPECT_EQ(FindWindowLayout(u"Palette"), WindowLayouts.lpLayout + 1);
    EXPECT_EQ(Made[0].get(), FindWindowLayout(u"Palette")->hWnd);
    const u32 nBefore = WindowLayouts.nLayouts;
    const std::u16string longName(200, u'x');
    EXPECT_EQ(AddWindowLayout(longName), AddWindowLayout(longName)) << "cut the same way";
    EXPECT_EQ(nBefore + 1, WindowLayouts.nLayouts);
    EXPECT_EQ(63u, std::u16string_view(FindWindowLayout(longName.substr(0, 63))->szName).size());
}

} // namespace
