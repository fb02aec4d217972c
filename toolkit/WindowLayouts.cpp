// WindowLayouts.cpp -- the windows of the program by name: how one is made, whether it is open, where it stands
#include "toolkit/WindowLayouts.h"

#include "platform/Assert.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <vector>

namespace {

constexpr u32 GROW_BY = 16;

std::vector<WindowLayout> &Records()
{
    static std::vector<WindowLayout> records;
    return records;
}

template <typename Fn> WindowLayout *FindRecord(Fn isIt)
{
    WindowLayout *pEnd = WindowLayouts.lpLayout + WindowLayouts.nLayouts;
    WindowLayout *p = std::find_if(WindowLayouts.lpLayout, pEnd, isIt);
    return p == pEnd ? nullptr : p;
}

WindowLayout *RecordOf(const void *hWnd)
{
    return hWnd ? FindRecord([&](const WindowLayout &layout) { return layout.hWnd == hWnd; }) : nullptr;
}

void Grow()
{
    Records().resize(WindowLayouts.nLayoutCapacity + GROW_BY);
    WindowLayouts.lpLayout = Records().data();
    WindowLayouts.nLayoutCapacity += GROW_BY;
}

// A window that says of itself that it was made has been followed since.
void *MakeWindow(const WindowKind *pKind, void *pvOwner)
{
    void *hWnd = pKind->pfnMake ? pKind->pfnMake(pvOwner) : nullptr;
    if (hWnd && !RecordOf(hWnd))
        WindowMade(pKind->pszName, hWnd);
    return hWnd;
}

void SetMark(std::u16string_view name, u32 bMarked)
{
    if (WindowLayout *pLayout = FindWindowLayout(name))
        pLayout->bMarked = bMarked;
}

void ToggleChild(const WindowLayout &layout, void *pvOwner)
{
    const WindowKind *pKind = layout.pKind;
    if (layout.hWnd && layout.bOpen) {
        pKind->pFunctions->pfnClose(layout.hWnd);
        SetMark(pKind->pszName, WindowIsOpen(pKind->pszName));
    } else {
        SetMark(pKind->pszName, OpenWindow(pKind->pszName, pvOwner, 0) != nullptr);
    }
}

} // namespace

WindowLayoutTable WindowLayouts;

WindowLayout *FindWindowLayout(std::u16string_view name)
{
    ASSERT_MAIN_THREAD();
    return FindRecord([&](const WindowLayout &layout) { return name == layout.szName; });
}

WindowLayout *AddWindowLayout(std::u16string_view name)
{
    ASSERT_MAIN_THREAD();
    name = name.substr(0, WINDOW_NAME_CHARS - 1);
    if (WindowLayout *pLayout = FindWindowLayout(name))
        return pLayout;
    if (WindowLayouts.nLayouts == WindowLayouts.nLayoutCapacity)
        Grow();
    WindowLayout *pLayout = &WindowLayouts.lpLayout[WindowLayouts.nLayouts++];
    *pLayout = {};
    CopyText(pLayout->szName, name);
    return pLayout;
}

void RegisterWindow(const WindowKind &kind)
{
    ASSERT_MAIN_THREAD();
    VD_ASSERT(kind.pFunctions);
    AddWindowLayout(kind.pszName)->pKind = &kind;
}

void ForgetWindowLayouts()
{
    ASSERT_MAIN_THREAD();
    Records().clear();
    WindowLayouts = {};
}

void RunWindowCommand(std::u16string_view name, void *pvOwner)
{
    ASSERT_MAIN_THREAD();
    const WindowLayout *pLayout = FindWindowLayout(name);
    if (!pLayout || !pLayout->pKind)
        return;
    if (pLayout->pKind->eUse == WindowUse::Child)
        ToggleChild(*pLayout, pvOwner);
    else
        OpenWindow(name, pvOwner, 1);
}

void *OpenWindow(std::u16string_view name, void *pvOwner, u32 bFocus)
{
    ASSERT_MAIN_THREAD();
    WindowLayout *pLayout = FindWindowLayout(name);
    if (!pLayout || !pLayout->pKind)
        return nullptr;
    const WindowKind *pKind = pLayout->pKind;
    void *hWnd = pLayout->hWnd ? pLayout->hWnd : MakeWindow(pKind, pvOwner);
    if (!hWnd)
        return nullptr;
    FindWindowLayout(name)->bOpen = 1; // the making of it may have added records
    pKind->pFunctions->pfnShow(hWnd, bFocus);
    return hWnd;
}

u32 WindowIsMarked(std::u16string_view name)
{
    const WindowLayout *pLayout = FindWindowLayout(name);
    return pLayout ? pLayout->bMarked : 0;
}

u32 WindowIsOpen(std::u16string_view name)
{
    const WindowLayout *pLayout = FindWindowLayout(name);
    return pLayout && pLayout->hWnd && pLayout->bOpen;
}

// It does not follow its moves while it is being placed: they are none of the user's.
void WindowMade(std::u16string_view name, void *hWnd)
{
    ASSERT_MAIN_THREAD();
    WindowLayout *pLayout = AddWindowLayout(name);
    pLayout->hWnd = hWnd;
    pLayout->bOpen = 1;
    pLayout->bTracking = 0;
    const WindowKind *pKind = pLayout->pKind;
    const WINDOWPLACEMENT wp = pLayout->wp;
    if (pKind && pKind->eUse != WindowUse::Dialog && wp.length == sizeof(WINDOWPLACEMENT))
        pKind->pFunctions->pfnSetRect(hWnd, wp.rcNormalPosition);
    if ((pLayout = RecordOf(hWnd)))
        pLayout->bTracking = 1;
}

void WindowMoved(void *hWnd)
{
    ASSERT_MAIN_THREAD();
    WindowLayout *pLayout = RecordOf(hWnd);
    WindowRect rc;
    if (!pLayout || !pLayout->bTracking || !pLayout->pKind || !pLayout->pKind->pFunctions->pfnGetRect(hWnd, &rc))
        return;
    pLayout->wp.length = sizeof(WINDOWPLACEMENT);
    pLayout->wp.rcNormalPosition = rc;
}

void WindowClosed(void *hWnd)
{
    ASSERT_MAIN_THREAD();
    if (WindowLayout *pLayout = RecordOf(hWnd))
        pLayout->bOpen = 0;
}

void WindowGone(void *hWnd)
{
    ASSERT_MAIN_THREAD();
    if (WindowLayout *pLayout = RecordOf(hWnd)) {
        pLayout->hWnd = nullptr;
        pLayout->bOpen = pLayout->bTracking = 0;
    }
}
