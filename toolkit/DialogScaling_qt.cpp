// DialogScaling_qt.cpp -- windows whose controls and text grow with them
#include "toolkit/DialogScaling_qt.h"

#include "toolkit/DialogControls_qt.h"
#include "toolkit/DialogDesign_qt.h"
#include "toolkit/DialogFonts_qt.h"
#include "toolkit/SizingBand_qt.h"

#include "platform/MainThread.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace {

// It is no control of another window that scales.
bool ScalesAlone(const QWidget *pDialog)
{
    return BelongsTo(pDialog, pDialog);
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
        const bool bHolds =
            pParent == pDialog || PartOf(pParent) == DialogPart::Group; // else it is a part of a control
        if (bKnown || !bHolds || !BelongsTo(pParent, pDialog) || StandsInPages(pControl, pDialog))
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
        disconnect(onOther);
        disconnect(onDensity);
        if (!pHandle || !pHandle->screen())
            return;
        onOther = connect(pHandle, &QWindow::screenChanged, this, [this] {
            FollowScreen();
            TakeAgainSoon();
        });
        onDensity = connect(pHandle->screen(), &QScreen::logicalDotsPerInchChanged, this, [this] { TakeAgainSoon(); });
    }

    QWidget *const pDialog;
    QMetaObject::Connection onOther, onDensity;
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
