// PanelHost_qt.cpp -- opens and closes the panels of a preset tree
#include "controls/panels/PanelHost_qt.h"

#include "controls/panels/PanelMakers_qt.h"
#include "controls/panels/Panel_qt.h"
#include "toolkit/FrameExtents_qt.h"
#include "platform/OrderedRows.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>

#include <cmath>
#include <iterator>

namespace {

struct PanelRow {
    PanelKind eKind;
    Panel *(*pfnMake)(TreeNode *pNode, QWidget *pOwner); // null: no panel
    const char16_t *pszWindow = nullptr;                 // what opens instead, in the table of windows; null: nothing
};

constexpr PanelRow asPanel[] = {
    {PanelKind::None, nullptr},
    {PanelKind::Unknown, MakeUnknownPanel},
    {PanelKind::Description, MakeDescriptionPanel},
    {PanelKind::Number, MakeNumberPanel},
    {PanelKind::Boolean, MakeBooleanPanel},
    {PanelKind::Item, MakeItemPanel},
    {PanelKind::Tile, MakeTilePanel},
    {PanelKind::FileSelect, MakeFilePanel},
    {PanelKind::Module, MakeModulePanel},
    {PanelKind::Plane, MakePlanePanel},
    {PanelKind::Planes, MakePlanesPanel},
    {PanelKind::ModuleList, MakeModuleListPanel},
    {PanelKind::Colors, nullptr, PALETTE_WINDOW},
    {PanelKind::Mixer, nullptr},
};
static_assert(std::size(asPanel) == static_cast<size_t>(PanelKind::Count));
static_assert(RowsStandInOrder(asPanel, &PanelRow::eKind));

WindowRect RectOf(const QRect &rc)
{
    return {rc.left(), rc.top(), rc.left() + rc.width(), rc.top() + rc.height()};
}

// In device pixels: the toolkit's own pointer is rounded to its units.
i32 PointerHeight(const QWidget *pOwner)
{
    const QScreen *pScreen = pOwner->screen();
    const int yOrigin = pScreen->geometry().top();
    return yOrigin + static_cast<i32>(std::lround((QCursor::pos().y() - yOrigin) * pScreen->devicePixelRatio()));
}

bool PointerIsOver(const QWidget *pOwner)
{
    const QWidget *pUnder = QApplication::widgetAt(QCursor::pos());
    return pUnder && pUnder->window() == pOwner;
}

// Each is hidden first: what its controls report then still finds the whole panel, which has nothing to edit any more.
void CloseAll(TreeNode *pNode)
{
    if (Panel *pPanel = PanelOf(pNode)) {
        pPanel->NodeGoes();
        delete pPanel;
    }
    for (TreeNode *pChild : pNode->apChild)
        CloseAll(pChild);
}

} // namespace

void PutBeside(QWidget *pWindow, QWidget *pOwner)
{
    pWindow->adjustSize();
    if (!PointerIsOver(pOwner))
        return;
    const QSizeF size = QSizeF(pWindow->size()) * pOwner->devicePixelRatioF();
    const QMargins frame = FrameExtents(pWindow);
    const PanelPlace place = {RectOf(FrameRectOf(pOwner)), RectOf(WorkAreaOf(pOwner)),
                              static_cast<i32>(size.width()) + frame.left() + frame.right(),
                              static_cast<i32>(size.height()) + frame.top() + frame.bottom(), PointerHeight(pOwner)};
    const WindowRect rc = PlacePanel(place);
    SetFrameRect(pWindow, QRect(rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top));
}

PanelHost::PanelHost(PresetTree *p, QWidget *pWindow) : pTree(p), pOwner(pWindow)
{
    pTree->NodeListeners.Add(HearNode, this);
}

PanelHost::~PanelHost()
{
    pTree->NodeListeners.Remove(HearNode, this);
    if (pTree->pRoot)
        CloseAll(pTree->pRoot);
}

void PanelHost::HearNode(TreeNode *pNode, void *)
{
    if (Panel *pPanel = PanelOf(pNode))
        pPanel->NodeGoes();
}

void PanelHost::HearActivation(TreeNode *pNode, void *pv)
{
    const auto *pHost = static_cast<PanelHost *>(pv);
    if (pHost->pfnActivated)
        pHost->pfnActivated(pNode);
}

Panel *PanelHost::OpenPanel(TreeNode *pNode, u32 bFocus)
{
    const PanelRow &row = asPanel[static_cast<u32>(PanelKindOf(pNode))];
    if (row.pszWindow)
        OpenWindow(row.pszWindow, pOwner, bFocus);
    if (!row.pfnMake)
        return nullptr;
    Panel *pPanel = row.pfnMake(pNode, pOwner);
    pPanel->pvHost = this;
    pPanel->pfnActivated = HearActivation;
    PutBeside(pPanel, pOwner);
    pPanel->show();
    return pPanel;
}

void PanelHost::NodeClicked(TreeNode *pNode, TreeNode *pOld)
{
    if (Panel *pPanel = pOld ? PanelOf(pOld) : nullptr; pPanel && !pOld->Info.bPinned)
        pPanel->ClosePanel();
    if (!PanelOf(pNode))
        OpenPanel(pNode, 0);
}

void PanelHost::BringPanel(TreeNode *pNode)
{
    Panel *pPanel = PanelOf(pNode);
    pPanel = pPanel ? pPanel : OpenPanel(pNode, 1);
    if (!pPanel)
        return;
    pPanel->raise();
    pPanel->activateWindow();
}
