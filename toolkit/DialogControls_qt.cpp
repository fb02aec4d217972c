// DialogControls_qt.cpp -- the controls of a window that scales: which take part, what is kept of each, how layouts
// place them
#include "toolkit/DialogControls_qt.h"

#include "toolkit/DialogFonts_qt.h"
#include "toolkit/SizingBand_qt.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDialog>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QSizeGrip>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVariant>

#include <algorithm>
#include <memory>

namespace {

constexpr char PROPERTY[] = "SDScaleInfo";

using RecordOwner = std::shared_ptr<ControlRecord>; // the property's, so that it goes with the widget

template <typename... Kinds> bool IsOneOf(const QWidget *pWidget)
{
    return (... || (qobject_cast<const Kinds *>(pWidget) != nullptr));
}

struct PartRow {
    bool (*pfnIsOne)(const QWidget *);
    DialogPart ePart;
};

// The first row that holds. Whatever else has a layout is a group.
constexpr PartRow asPart[] = {
    {[](const QWidget *p) { return p->isWindow() || IsSizingBand(p); }, DialogPart::None},
    {IsOneOf<QMenuBar, QSizeGrip>, DialogPart::None},
    {IsOneOf<QAbstractScrollArea>, DialogPart::KeepsFont},
    {IsOneOf<QTabWidget, QStackedWidget, QSplitter>, DialogPart::Pages},
    {IsOneOf<QAbstractButton, QAbstractSpinBox, QComboBox, QAbstractSlider, QLineEdit, QToolBar, QStatusBar>,
     DialogPart::Control},
    {[](const QWidget *p) { return p->layout() != nullptr; }, DialogPart::Group},
};

QWidgetList ChildWidgets(const QWidget *pParent)
{
    QWidgetList apChild;
    for (QObject *pChild : pParent->children())
        if (pChild->isWidgetType())
            apChild += static_cast<QWidget *>(pChild);
    return apChild;
}

// Sizes that layouts keep are from before, of other fonts and texts.
void ForgetSizes(QLayoutItem *pItem)
{
    pItem->invalidate();
    QLayout *pLayout = pItem->layout();
    for (int i = 0; pLayout && i < pLayout->count(); i++)
        ForgetSizes(pLayout->itemAt(i));
}

void ForgetAllSizes(QWidget *pGroup)
{
    for (QWidget *pChild : ChildWidgets(pGroup))
        if (PartOf(pChild) == DialogPart::Group)
            ForgetAllSizes(pChild);
    if (pGroup->layout())
        ForgetSizes(pGroup->layout());
}

bool Holds(QLayoutItem *pItem, const QWidget *pControl)
{
    QLayout *pLayout = pItem->layout();
    for (int i = 0; pLayout && i < pLayout->count(); i++)
        if (Holds(pLayout->itemAt(i), pControl))
            return true;
    return pItem->widget() == pControl;
}

QMenuBar *MenuBarOf(const QWidget *pDialog)
{
    return pDialog->layout() ? qobject_cast<QMenuBar *>(pDialog->layout()->menuBar()) : nullptr;
}

} // namespace

DialogPart PartOf(const QWidget *pWidget)
{
    for (const PartRow &row : asPart)
        if (row.pfnIsOne(pWidget))
            return row.ePart;
    return DialogPart::Control;
}

ControlRecord *RecordOf(const QWidget *pWidget)
{
    return pWidget ? pWidget->property(PROPERTY).value<RecordOwner>().get() : nullptr;
}

ControlRecord *MakeRecord(QWidget *pWidget, QWidget *pTop)
{
    auto pRecord = std::make_shared<ControlRecord>();
    pRecord->Info.hwndTop = pTop;
    pRecord->Info.lfDesign = DesignFontOf(pWidget);
    pWidget->setProperty(PROPERTY, QVariant::fromValue(pRecord));
    return pRecord.get();
}

void ReleaseScaleInfo(QWidget *pWidget)
{
    const ControlRecord *pRecord = RecordOf(pWidget);
    if (!pRecord)
        return;
    if (pRecord->Info.hwndTop == pWidget)
        for (QWidget *pChild : DialogChildren(pWidget))
            ReleaseScaleInfo(pChild);
    pWidget->setProperty(PROPERTY, QVariant());
}

WindowRect RectOf(const QRect &rc)
{
    return {rc.left(), rc.top(), rc.left() + rc.width(), rc.top() + rc.height()};
}

QRect ToQRect(const WindowRect &rc)
{
    return {rc.left, rc.top, rc.right - rc.left, rc.bottom - rc.top};
}

u32 ForEachDialogChild(QWidget *pParent, u32 (*pfn)(QWidget *pChild, void *pv), void *pv, i32 nDepth)
{
    for (QWidget *pChild : ChildWidgets(pParent)) {
        const DialogPart ePart = PartOf(pChild);
        if (ePart == DialogPart::None)
            continue;
        if (!pfn(pChild, pv))
            return 0;
        const i32 nBelow = qobject_cast<QDialog *>(pChild) ? nDepth - 1 : nDepth;
        const bool bWalked = ePart == DialogPart::Group || ePart == DialogPart::Pages;
        if (bWalked && nBelow >= 0 && !ForEachDialogChild(pChild, pfn, pv, nBelow))
            return 0;
    }
    return 1;
}

std::vector<QWidget *> DialogChildren(QWidget *pParent)
{
    std::vector<QWidget *> apChild;
    const auto append = [](QWidget *pChild, void *pv) -> u32 {
        static_cast<std::vector<QWidget *> *>(pv)->push_back(pChild);
        return 1;
    };
    ForEachDialogChild(pParent, append, &apChild, DIALOG_DEPTH);
    return apChild;
}

int ScaledTop(const QWidget *pDialog)
{
    const QMenuBar *pBar = MenuBarOf(pDialog);
    return pBar && !pBar->isHidden() ? pBar->heightForWidth(pDialog->width()) : 0;
}

void PlaceMenuBar(QWidget *pDialog)
{
    if (QMenuBar *pBar = MenuBarOf(pDialog))
        pBar->setGeometry(0, 0, pDialog->width(), ScaledTop(pDialog));
}

QSize AskedSize(const QWidget *pDialog)
{
    ForgetAllSizes(const_cast<QWidget *>(pDialog));
    const QLayout *pLayout = pDialog->layout();
    if (!pLayout)
        return pDialog->sizeHint().isValid() ? pDialog->sizeHint() : pDialog->size();
    QSize size = pLayout->totalSizeHint();
    if (pLayout->hasHeightForWidth())
        size.setHeight(pLayout->totalHeightForWidth(size.width()));
    return size;
}

void LayOut(QWidget *pGroup, const QSize &size)
{
    QLayout *pLayout = pGroup->layout();
    if (!pLayout)
        return;
    pLayout->setEnabled(false);
    QRect all(QPoint(0, 0), size);
    if (!pGroup->testAttribute(Qt::WA_LayoutOnEntireRect))
        all = all.marginsRemoved(pGroup->contentsMargins());
    all.setTop(all.top() + ScaledTop(pGroup));
    pLayout->setGeometry(all);
    for (QWidget *pChild : ChildWidgets(pGroup))
        if (PartOf(pChild) == DialogPart::Group)
            LayOut(pChild, pChild->size());
}

bool StandsInLayout(const QWidget *pControl)
{
    const QWidget *pParent = pControl->parentWidget();
    return pParent && pParent->layout() && Holds(pParent->layout(), pControl);
}

void PutBack(QWidget *pControl)
{
    ControlRecord *pRecord = RecordOf(pControl);
    if (!pRecord)
        return;
    PutFontBack(pControl, pRecord);
    if (!pRecord->bPlaced)
        return;
    pControl->setMinimumSize(pRecord->Least);
    pControl->setMaximumSize(pRecord->Most);
}

void TakeControl(QWidget *pControl, QWidget *pTop, const WindowRect &rcDesign, bool bPlaced)
{
    ControlRecord *pRecord = RecordOf(pControl);
    if (!pRecord || pRecord->Info.hwndTop != pTop)
        pRecord = MakeRecord(pControl, pTop);
    pRecord->Info.rcDesign = rcDesign;
    pRecord->Info.lfDesign = DesignFontOf(pControl);
    pRecord->Least = pControl->minimumSize();
    pRecord->Most = pControl->maximumSize();
    TakeFont(pControl, pRecord);
    pRecord->bPlaced = bPlaced;
    if (!bPlaced)
        return;
    KeepPlaceWhenHidden(pControl); // also when the design is taken again
    pControl->setMinimumSize(0, 0);
    pControl->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}
