// Panel_qt.cpp -- what all panels have in common: a small window that edits one node of the preset tree
#include "controls/panels/Panel_qt.h"

#include "editing/TreePlaces.h"
#include "editing/TreeTexts.h"
#include "toolkit/DialogPieces_qt.h"
#include "toolkit/DialogScaling_qt.h"
#include "toolkit/WindowEvents_qt.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QPlainTextEdit>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <QWindow>

namespace {

constexpr int DESCRIPTION_LINES = 3;

} // namespace

Panel *PanelOf(const TreeNode *pNode)
{
    return static_cast<Panel *>(pNode->Info.hPanel);
}

Panel::Panel(TreeNode *p, QWidget *pOwner) : QWidget(pOwner, Qt::Dialog), pOwnNode(p)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_ShowWithoutActivating);
    KeepFramesUnder(this);
    pOwnNode->Info.hPanel = this;
    PanelRefresh.Add(HearRefresh, this);
}

Panel::~Panel()
{
    Detach();
}

// What is deleted later must not touch the node any more.
void Panel::Detach()
{
    if (!pOwnNode)
        return;
    EndFieldDrag();
    TVObjectInfo &Info = pOwnNode->Info;
    Info.hPanel = Info.hSlider = Info.hWavePanel = Info.hSoundPanel = Info.hRandomPanel = nullptr;
    pOwnNode = nullptr;
    PanelRefresh.Remove(HearRefresh, this);
    Timer.stop();
}

void Panel::NodeGoes()
{
    Detach();
    hide();
    deleteLater(); // one of its own buttons may be what removed the node
}

void Panel::ClosePanel()
{
    close();
}

void Panel::closeEvent(QCloseEvent *pEvent)
{
    if (pOwnNode)
        TakeOver();
    Detach();
    pEvent->accept();
}

void Panel::Finish(QLayout *pContent, Pin ePin, QWidget *pDocked)
{
    auto *pLayout = new QVBoxLayout(this);
    pLayout->addLayout(pContent, 1);
    if (ePin == Pin::Yes) {
        pPin = new QCheckBox(QStringLiteral("Pin"));
        pLayout->addWidget(pPin);
        connect(pPin, &QCheckBox::clicked, this, [this](bool bOn) {
            if (pOwnNode)
                pOwnNode->Info.bPinned = bOn;
        });
    }
    if (pDocked)
        pLayout->addWidget(pDocked);
    Refresh();
    EnableDialogScaling(this);
}

QPlainTextEdit *Panel::MakeDescriptionBox()
{
    auto *pBox = new QPlainTextEdit;
    pBox->setReadOnly(true);
    pBox->setTabChangesFocus(true);
    pBox->setAccessibleName(QStringLiteral("Description"));
    pBox->setFixedHeight(pBox->fontMetrics().lineSpacing() * DESCRIPTION_LINES + 2 * pBox->frameWidth() +
                         static_cast<int>(2 * pBox->document()->documentMargin()));
    if (const ControlRecord *pctl = Control())
        pBox->setPlainText(QString::fromStdU16String(DescriptionText(pctl)).remove(u'\r'));
    return pBox;
}

void Panel::HearRefresh(void *pv)
{
    static_cast<Panel *>(pv)->Refresh();
}

void Panel::Refresh()
{
    if (!pOwnNode || bFilling)
        return;
    bFilling = true;
    setWindowTitle(TitleText(PanelTitle(pOwnNode)));
    if (pPin)
        pPin->setChecked(pOwnNode->Info.bPinned != 0);
    Fill();
    bFilling = false;
}

const ControlRecord *Panel::Control() const
{
    return pOwnNode ? ControlOf(pOwnNode) : nullptr;
}

const ModuleSlot *Panel::Slot() const
{
    return pOwnNode ? SlotOf(pOwnNode) : nullptr;
}

const PlaneState *Panel::Plane() const
{
    return pOwnNode ? PlaneOf(pOwnNode) : nullptr;
}

EditPlace Panel::Place() const
{
    return pOwnNode ? PlaceOfNode(pOwnNode) : EditPlace{};
}

bool Panel::MayWrite() const
{
    return pOwnNode && !bFilling;
}

EditResult Panel::Write(FieldWrite write)
{
    std::vector<FieldWrite> writes;
    writes.push_back(std::move(write));
    return Write(std::move(writes));
}

EditResult Panel::Write(std::vector<FieldWrite> writes)
{
    PresetEdit edit = MakeEdit(EditKind::SetFields, {});
    edit.writes = std::move(writes);
    return Run(edit);
}

EditResult Panel::Run(const PresetEdit &edit)
{
    return MayWrite() ? RunPresetEdit(edit) : EditResult::Refused;
}

void Panel::Command(TreeCommand eCommand, u32 dwArgument)
{
    if (MayWrite())
        RunTreeCommand(*pOwnNode->Info.hTree, pOwnNode, eCommand, dwArgument);
}

void Panel::BeginFieldDrag()
{
    if (MayWrite())
        BeginDrag(&Dragged, Place());
}

EditResult Panel::DragFields(std::vector<FieldWrite> writes)
{
    return MayWrite() ? DragValue(&Dragged, std::move(writes)) : EditResult::Refused;
}

void Panel::EndFieldDrag()
{
    PresetEdit inverse;
    EndDrag(&Dragged, &inverse);
}

void Panel::showEvent(QShowEvent *pEvent)
{
    QWidget::showEvent(pEvent);
    if (pOwnNode)
        Timer.start(PANEL_TIMER_MS, Qt::CoarseTimer, this);
}

void Panel::hideEvent(QHideEvent *pEvent)
{
    Timer.stop();
    QWidget::hideEvent(pEvent);
}

bool Panel::CanBeSeen() const
{
    return isVisible() && !isMinimized() && windowHandle() && windowHandle()->isExposed();
}

void Panel::timerEvent(QTimerEvent *pEvent)
{
    if (pEvent->timerId() != Timer.timerId())
        return QWidget::timerEvent(pEvent);
    if (!pOwnNode || !CanBeSeen())
        return;
    bFilling = true;
    Follow();
    bFilling = false;
}

void Panel::changeEvent(QEvent *pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::ActivationChange && isActiveWindow() && pOwnNode && pfnActivated)
        pfnActivated(pOwnNode, pvHost);
}

void Panel::keyPressEvent(QKeyEvent *pEvent)
{
    if (KeyEventOf(*pEvent).dwKey == KEY_ESCAPE)
        ClosePanel();
    else
        QWidget::keyPressEvent(pEvent);
}
