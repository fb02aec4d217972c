// DialogDesign_qt.cpp -- the design of a window that scales: taken when it is made, again, and of controls that come
// later
#include "toolkit/DialogDesign_qt.h"

#include "toolkit/DialogControls_qt.h"
#include "toolkit/DialogFonts_qt.h"

#include <QLayout>
#include <QWidget>

#include <algorithm>

namespace {

// Somebody has given it a place: a layout, or its maker.
bool HasPlace(const QWidget *pControl)
{
    if (StandsInLayout(pControl))
        return !pControl->isHidden() || pControl->sizePolicy().retainSizeWhenHidden();
    return pControl->testAttribute(Qt::WA_Moved) || pControl->testAttribute(Qt::WA_Resized);
}

// Size that a window with this design is to have, within what its owner allows.
QSize AllowedSize(const ControlRecord &record, const QSize &size)
{
    return size.expandedTo(record.Least).boundedTo(record.Most);
}

// While the layouts hold what they hold now.
QSize LargestAsked(const QWidget *pDialog, const ControlRecord &record)
{
    const QSize asked = AskedSize(pDialog);
    const QLayout *pLayout = pDialog->layout();
    if (!record.DesignAsked.isValid() || !pLayout)
        return record.DesignAsked.isValid() ? record.DesignAsked : asked;
    QSize size = record.DesignAsked.expandedTo(pLayout->totalMinimumSize());
    if (pLayout->hasHeightForWidth())
        size.setHeight(std::max(size.height(), pLayout->totalMinimumHeightForWidth(size.width())));
    return size;
}

// Everything below the window that has a place, as it stands now.
void TakeControls(QWidget *pDialog, QWidget *pBelow)
{
    for (QWidget *pControl : DialogChildren(pBelow)) {
        QWidget *pParent = pControl->parentWidget();
        if (StandsInPages(pControl, pDialog))
            TakeControl(pControl, pDialog, {}, false);
        else if (HasPlace(pControl) && (pParent == pDialog || BelongsTo(pParent, pDialog)))
            TakeControl(pControl, pDialog, RectOf(PlaceOf(pControl, pDialog)), true);
    }
}

// What no layout places stands at its design size too.
void PutLooseControls(QWidget *pDialog)
{
    for (QWidget *pControl : DialogChildren(pDialog)) {
        const int yTop = pControl->parentWidget() == pDialog ? ScaledTop(pDialog) : 0;
        if (BelongsTo(pControl, pDialog) && RecordOf(pControl)->bPlaced && !StandsInLayout(pControl))
            pControl->setGeometry(ToQRect(InfoOf(pControl).rcDesign).translated(0, yTop));
    }
}

// A control that came later: where it stands now is where it belongs at the present size.
void TakeLateControl(QWidget *pDialog, QWidget *pControl, const ScaleFactors &factors)
{
    const WindowRect rcNow = RectOf(pControl->geometry().translated(ParentNow(pControl, pDialog)));
    const WindowRect rcWindow = InfoOf(pDialog).bRawChildRects ? rcNow : BringToDesign(rcNow, factors);
    const WindowRect rc = RectOf(ToQRect(rcWindow).translated(-ParentAtDesign(pControl, pDialog)));
    const bool bGroup = PartOf(pControl) == DialogPart::Group;
    if (bGroup) {
        for (QWidget *pChild : DialogChildren(pControl))
            PutBack(pChild);
        pControl->resize(ToQRect(rc).size());
        LayOut(pControl, pControl->size());
    }
    TakeControl(pControl, pDialog, rc, true);
    if (bGroup)
        TakeControls(pDialog, pControl);
}

} // namespace

const SDScaleInfo &InfoOf(const QWidget *pWidget)
{
    return RecordOf(pWidget)->Info;
}

QSize DesignSize(const QWidget *pWidget)
{
    return ToQRect(InfoOf(pWidget).rcDesign).size();
}

QRect PlaceOf(const QWidget *pWidget, const QWidget *pTop)
{
    if (pWidget == pTop)
        return {0, 0, pTop->width(), pTop->height() - ScaledTop(pTop)};
    return pWidget->geometry().translated(0, pWidget->parentWidget() == pTop ? -ScaledTop(pTop) : 0);
}

bool BelongsTo(const QWidget *pWidget, const QWidget *pDialog)
{
    const ControlRecord *pRecord = RecordOf(pWidget);
    return pRecord && pRecord->Info.hwndTop == pDialog;
}

QPoint ParentAtDesign(const QWidget *pControl, const QWidget *pDialog)
{
    QPoint at;
    for (const QWidget *p = pControl->parentWidget(); p && p != pDialog && BelongsTo(p, pDialog); p = p->parentWidget())
        at += ToQRect(InfoOf(p).rcDesign).topLeft();
    return at;
}

QPoint ParentNow(const QWidget *pControl, const QWidget *pDialog)
{
    return pControl->parentWidget()->mapTo(pDialog, QPoint()) - QPoint(0, ScaledTop(pDialog));
}

bool StandsInPages(const QWidget *pControl, const QWidget *pDialog)
{
    for (const QWidget *p = pControl->parentWidget(); p && p != pDialog; p = p->parentWidget())
        if (PartOf(p) == DialogPart::Pages)
            return true;
    return false;
}

void PolishAll(QWidget *pDialog)
{
    pDialog->ensurePolished();
    for (const QWidget *pChild : DialogChildren(pDialog))
        pChild->ensurePolished();
}

void LimitWindow(QWidget *pDialog)
{
    const ControlRecord &record = *RecordOf(pDialog);
    QSize least = ToQRect(LeastDialogRect(record.Info.rcDesign)).size() + QSize(0, ScaledTop(pDialog));
    if (record.Least.width() == record.Most.width())
        least.setWidth(record.Least.width());
    if (record.Least.height() == record.Most.height())
        least.setHeight(record.Least.height());
    pDialog->setMinimumSize(least);
}

QSize TakeDesign(QWidget *pDialog)
{
    ControlRecord *pRecord = RecordOf(pDialog);
    for (QWidget *pControl : DialogChildren(pDialog))
        PutBack(pControl);
    pRecord->Info.lfDesign = DesignFontOf(pDialog);
    const QSize size = AllowedSize(*pRecord, LargestAsked(pDialog, *pRecord));
    PutLooseControls(pDialog);
    LayOut(pDialog, size);
    const WindowRect rcClient = {0, 0, size.width() - SIZING_BAND, size.height() - ScaledTop(pDialog) - SIZING_BAND};
    pRecord->Info.rcDesign = DialogDesignRect(rcClient);
    TakeControls(pDialog, pDialog);
    return size;
}

void TakeLateControls(QWidget *pDialog, const ScaleFactors &factors)
{
    for (QWidget *pControl : DialogChildren(pDialog)) {
        if (BelongsTo(pControl, pDialog))
            continue;
        if (StandsInPages(pControl, pDialog))
            TakeControl(pControl, pDialog, {}, false);
        else if (HasPlace(pControl) && !StandsInLayout(pControl))
            TakeLateControl(pDialog, pControl, factors);
    }
}
