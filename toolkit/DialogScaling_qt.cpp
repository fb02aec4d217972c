// DialogScaling_qt.cpp -- windows whose controls and text grow with them
#include "toolkit/DialogScaling_qt.h"

#include "toolkit/DialogControls_qt.h"
#include "toolkit/DialogFonts_qt.h"
#include "toolkit/SizingBand_qt.h"

#include "platform/MainThread.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <algorithm>

namespace {

const SDScaleInfo &InfoOf(const QWidget *pWidget)
{
    return RecordOf(pWidget)->Info;
}

QSize DesignSize(const QWidget *pWidget)
{
    return ToQRect(InfoOf(pWidget).rcDesign).size();
}

// Of a window that scales: its area under the menu bar. Of a control: its place; a window's own controls count from
// there.
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

// Where the control's parent begins in the window, at the design size and now. Places are scaled as the window has
// them: rounded within each parent, what ends with its parent would be cut.
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

// Something between it and the window places its children by itself.
bool StandsInPages(const QWidget *pControl, const QWidget *pDialog)
{
    for (const QWidget *p = pControl->parentWidget(); p && p != pDialog; p = p->parentWidget())
        if (PartOf(p) == DialogPart::Pages)
            return true;
    return false;
}

// It is no control of another window that scales.
bool ScalesAlone(const QWidget *pDialog)
{
    return BelongsTo(pDialog, pDialog);
}

// Somebody has given it a place: a layout, or its maker.
bool HasPlace(const QWidget *pControl)
{
    if (StandsInLayout(pControl))
        return !pControl->isHidden() || pControl->sizePolicy().retainSizeWhenHidden();
    return pControl->testAttribute(Qt::WA_Moved) || pControl->testAttribute(Qt::WA_Resized);
}

void PolishAll(QWidget *pDialog)
{
    pDialog->ensurePolished();
    for (const QWidget *pChild : DialogChildren(pDialog))
        pChild->ensurePolished();
}

// Size that a window with this design is to have, within what its owner allows.
QSize AllowedSize(const ControlRecord &record, const QSize &size)
{
    return size.expandedTo(record.Least).boundedTo(record.Most);
}

// While layouts hold what they hold now.
QSize LargestAsked(const QWidget *pDialog, const ControlRecord &record)
{
    const QSize asked = AskedSize(pDialog);
    if (!record.DesignAsked.isValid() || !pDialog->layout())
        return record.DesignAsked.isValid() ? record.DesignAsked : asked;
    return record.DesignAsked.expandedTo(pDialog->layout()->totalMinimumSize());
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
        else if (BelongsTo(pControl, pDialog)) // hidden since, and without a place: it keeps its old one
            TakeControl(pControl, pDialog, InfoOf(pControl).rcDesign, true);
    }
}

// The least size follows the design; a side that the owner has fixed stays so.
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

// What no layout places stands at its design size too.
void PutLooseControls(QWidget *pDialog)
{
    for (QWidget *pControl : DialogChildren(pDialog)) {
        const int yTop = pControl->parentWidget() == pDialog ? ScaledTop(pDialog) : 0;
        if (BelongsTo(pControl, pDialog) && RecordOf(pControl)->bPlaced && !StandsInLayout(pControl))
            pControl->setGeometry(ToQRect(InfoOf(pControl).rcDesign).translated(0, yTop));
    }
}

// Everything as the layouts want it becomes the design. The window may have any size meanwhile.
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

bool LeavesBandFree(const QWidget *pDialog, const WindowRect &rc, const QSize &size)
{
    const WindowRect rcFree = LeaveBandFree(rc, size.width(), size.height());
    return pDialog->isWindow() && ToQRect(rcFree) == ToQRect(rc);
}

void PlaceOne(const QWidget *pDialog, QWidget *pControl, const ScaleFactors &factors)
{
    const QPoint design = ParentAtDesign(pControl, pDialog);
    const WindowRect rcDesign = RectOf(ToQRect(InfoOf(pControl).rcDesign).translated(design));
    WindowRect rc = PlaceControl(rcDesign, factors, 0); // a combo box has no list in its height here
    const QSize now = PlaceOf(pDialog, pDialog).size();
    if (LeavesBandFree(pDialog, rcDesign, DesignSize(pDialog)))
        rc = LeaveBandFree(rc, now.width(), now.height());
    pControl->setGeometry(ToQRect(rc).translated(-ParentNow(pControl, pDialog)));
}

void PlaceAll(const QWidget *pDialog, const std::vector<QWidget *> &apControl, const ScaleFactors &factors)
{
    for (QWidget *pControl : apControl)
        if (BelongsTo(pControl, pDialog) && !StandsInPages(pControl, pDialog))
            PlaceOne(pDialog, pControl, factors);
}

void RunPass(QWidget *pDialog, bool bAtDesign)
{
    ScaleFactors factors;
    GetDialogScale(pDialog, &factors);
    TakeLateControls(pDialog, factors);
    const std::vector<QWidget *> apControl = DialogChildren(pDialog);
    PlaceAll(pDialog, apControl, factors);
    if (!bAtDesign)
        return GiveFont(apControl, FitDialogFont(pDialog, apControl, factors));
    for (QWidget *pControl : apControl)
        if (BelongsTo(pControl, pDialog))
            PutFontBack(pControl, RecordOf(pControl));
}

bool SizeIsOurs(const QWidget *pDialog)
{
    return !pDialog->isWindow() || !(pDialog->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
}

// Sees what happens to the window and to its controls. Belongs to the window.
class Scaler : public QObject {
  public:
    explicit Scaler(QWidget *p) : QObject(p), pDialog(p)
    {
    }
    // Those that are there.
    void Watch()
    {
        pDialog->installEventFilter(this);
        for (QWidget *pControl : DialogChildren(pDialog))
            pControl->installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject *pObject, QEvent *pEvent) override
    {
        switch (pEvent->type()) {
        case QEvent::ChildAdded:
            WatchChild(static_cast<QChildEvent *>(pEvent)->child());
            break;
        case QEvent::ShowToParent:
            if (pObject != pDialog && ScalesAlone(pDialog))
                HearShown(static_cast<QWidget *>(pObject));
            break;
        default:
            if (pObject == pDialog)
                HearWindow(pEvent->type());
        }
        return false;
    }

  private:
    void WatchChild(QObject *pChild)
    {
        if (pChild->isWidgetType())
            pChild->installEventFilter(this);
    }
    void HearWindow(QEvent::Type eType)
    {
        switch (eType) {
        case QEvent::Resize:
            PlaceSizingBand(pDialog, ScaledTop(pDialog));
            ScaleDialog(pDialog);
            break;
        case QEvent::Show:
            FollowScreen();
            break;
        case QEvent::FontChange:
        case QEvent::StyleChange:
        case QEvent::LayoutDirectionChange:
            TakeAgainSoon();
            break;
        default:
            break;
        }
    }
    // A group comes with all that is in it.
    void HearShown(QWidget *pControl)
    {
        const QWidget *pParent = pControl->parentWidget();
        const bool bKnown = BelongsTo(pControl, pDialog) || PartOf(pControl) == DialogPart::None;
        if (bKnown || !BelongsTo(pParent, pDialog) || StandsInPages(pControl, pDialog))
            return;
        if (StandsInLayout(pControl))
            return TakeDesignAgain(pDialog);
        ScaleFactors factors;
        GetDialogScale(pDialog, &factors);
        TakeLateControls(pDialog, factors);
        Watch();
        RecordOf(pDialog)->bScaled = true; // the new one too may have a font and a size of its own
        ScaleDialog(pDialog);
    }
    // Once for all that changes at the same time, and after the controls have heard of it.
    void TakeAgainSoon()
    {
        if (!bTakesSoon)
            QMetaObject::invokeMethod(
                this, [this] { TakeNow(); }, Qt::QueuedConnection);
        bTakesSoon = true;
    }
    void TakeNow()
    {
        bTakesSoon = false;
        TakeDesignAgain(pDialog);
    }
    void FollowScreen()
    {
        const QWindow *pHandle = pDialog->window()->windowHandle();
        disconnect(onScreen);
        if (pHandle)
            onScreen = connect(pHandle, &QWindow::screenChanged, this, [this] { TakeAgainSoon(); });
    }

    QWidget *const pDialog;
    QMetaObject::Connection onScreen;
    bool bTakesSoon = false;
};

void MakeBand(QWidget *pDialog)
{
    pDialog->setContentsMargins(pDialog->contentsMargins() + QMargins(SIZING_BAND, 0, SIZING_BAND, SIZING_BAND));
    MakeSizingBand(pDialog);
}

Scaler *ScalerOf(const QWidget *pDialog)
{
    for (QObject *pChild : pDialog->children())
        if (auto *pScaler = dynamic_cast<Scaler *>(pChild))
            return pScaler;
    return nullptr;
}

} // namespace

void EnableDialogScaling(QWidget *pDialog)
{
    ASSERT_MAIN_THREAD();
    if (RecordOf(pDialog))
        return;
    PolishAll(pDialog);
    ControlRecord *pRecord = MakeRecord(pDialog, pDialog);
    pRecord->Least = pDialog->minimumSize();
    pRecord->Most = pDialog->maximumSize();
    if (pDialog->testAttribute(Qt::WA_Resized))
        pRecord->DesignAsked = pDialog->size();
    if (pDialog->isWindow() && !ScalerOf(pDialog))
        MakeBand(pDialog);
    pDialog->resize(TakeDesign(pDialog));
    LimitWindow(pDialog);
    PlaceMenuBar(pDialog);
    PlaceSizingBand(pDialog, ScaledTop(pDialog));
    Scaler *pScaler = ScalerOf(pDialog); // from before it was released
    (pScaler ? pScaler : new Scaler(pDialog))->Watch();
}

void KeepPlaceWhenHidden(QWidget *pControl)
{
    QSizePolicy policy = pControl->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    pControl->setSizePolicy(policy);
}

SDScaleInfo *ScaleInfoOf(const QWidget *pWidget)
{
    ControlRecord *pRecord = RecordOf(pWidget);
    return pRecord ? &pRecord->Info : nullptr;
}

u32 GetDialogScale(const QWidget *pWidget, ScaleFactors *pFactors)
{
    const ControlRecord *pRecord = RecordOf(pWidget);
    *pFactors = {1, 1};
    if (pRecord)
        *pFactors = GetDialogScale(RectOf(PlaceOf(pWidget, pRecord->Info.hwndTop)), pRecord->Info.rcDesign);
    return pRecord != nullptr;
}

void ScaleDialog(QWidget *pDialog)
{
    ASSERT_MAIN_THREAD();
    ControlRecord *pRecord = RecordOf(pDialog);
    if (!ScalesAlone(pDialog) || pRecord->Info.bResizing)
        return;
    PlaceMenuBar(pDialog);
    const bool bAtDesign = PlaceOf(pDialog, pDialog).size() == DesignSize(pDialog);
    if (bAtDesign && !pRecord->bScaled)
        return;
    const bool bUpdates = pDialog->updatesEnabled();
    pRecord->Info.bResizing = 1;
    pDialog->setUpdatesEnabled(false);
    RunPass(pDialog, bAtDesign);
    pDialog->setUpdatesEnabled(bUpdates);
    pRecord->bScaled = !bAtDesign;
    pRecord->Info.bResizing = 0;
}

void TakeDesignAgain(QWidget *pDialog)
{
    ASSERT_MAIN_THREAD();
    ControlRecord *pRecord = RecordOf(pDialog);
    if (!ScalesAlone(pDialog) || pRecord->Info.bResizing)
        return;
    ScaleFactors factors;
    GetDialogScale(pDialog, &factors);
    const bool bUpdates = pDialog->updatesEnabled();
    pRecord->Info.bResizing = 1;
    pDialog->setUpdatesEnabled(false);
    PolishAll(pDialog);
    TakeLateControls(pDialog, factors);
    TakeDesign(pDialog);
    LimitWindow(pDialog);
    const WindowRect rc = PlaceControl(pRecord->Info.rcDesign, factors, 0);
    if (SizeIsOurs(pDialog))
        pDialog->resize(ToQRect(rc).size() + QSize(0, ScaledTop(pDialog)));
    pDialog->setUpdatesEnabled(bUpdates);
    pRecord->Info.bResizing = 0;
    ScalerOf(pDialog)->Watch();
    pRecord->bScaled = true; // controls have been moved
    ScaleDialog(pDialog);
}
