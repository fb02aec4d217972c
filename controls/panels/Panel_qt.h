// Panel_qt.h -- what all panels have in common: a small window that edits one node of the preset tree
#pragma once

#include "controls/panels/Panels.h"
#include "editing/TreeCommands.h"

#include <QBasicTimer>
#include <QWidget>

class QCheckBox;
class QPlainTextEdit;

// Made by a PanelHost, and deleted by the event loop after its close button, Escape, the host or the end of its node
// closed it. From then on Node() is null, and nothing that a control of it still reports does anything. [main-thread]
//
// A derived panel lays out its controls in its constructor, and ends that with Finish. It edits through Write, Drag and
// Command alone, and shows what its record says in Fill.
class Panel : public QWidget {
  public:
    Panel(TreeNode *pNode, QWidget *pOwner);
    ~Panel() override;

    TreeNode *Node() const
    {
        return pOwnNode;
    }
    // Reads the record again; what is being typed is overwritten.
    void Refresh();
    // As the close button does.
    void ClosePanel();
    // The node is about to be deleted: the panel goes without taking over what is being typed.
    void NodeGoes();

    // What the panel and its sub-panels see and do. Null where the node is gone or stands for something else.
    const ControlRecord *Control() const;
    const ModuleSlot *Slot() const;
    const PlaneState *Plane() const;
    EditPlace Place() const; // kind None: the node is gone
    bool IsFilling() const
    {
        return bFilling;
    }

    // Edits of the node's record. Refused while the panel is being filled and when the node is gone.
    EditResult Write(FieldWrite write);
    EditResult Write(std::vector<FieldWrite> writes);
    // The same for an edit of another kind. The panel may have lost its node afterwards.
    EditResult Run(const PresetEdit &edit);
    void Command(TreeCommand eCommand, u32 dwArgument = 0);
    // A drag of one or more fields is one edit. Ended by the end of the panel too.
    void BeginFieldDrag();
    EditResult DragFields(std::vector<FieldWrite> writes);
    void EndFieldDrag();

    void (*pfnActivated)(TreeNode *pNode, void *pv) = nullptr; // the panel became the active window
    void *pvHost = nullptr;

  protected:
    // All controls from the record. What the controls report meanwhile is not written.
    virtual void Fill()
    {
    }
    // Every PANEL_TIMER_MS while the panel can be seen.
    virtual void Follow()
    {
    }
    // Before closing: what is being typed goes into the record, as if the focus had left it.
    virtual void TakeOver()
    {
    }

    enum class Pin { Yes, No };
    // The layout with "Pin" below it, and at the bottom what is docked there, if anything; fills the controls.
    void Finish(QLayout *pContent, Pin ePin = Pin::Yes, QWidget *pDocked = nullptr);
    // A read-only box with the description of the node's control.
    QPlainTextEdit *MakeDescriptionBox();

    void showEvent(QShowEvent *pEvent) override;
    void hideEvent(QHideEvent *pEvent) override;
    void closeEvent(QCloseEvent *pEvent) override;
    void changeEvent(QEvent *pEvent) override;
    void keyPressEvent(QKeyEvent *pEvent) override;
    void timerEvent(QTimerEvent *pEvent) override;

  private:
    static void HearRefresh(void *pv);
    bool MayWrite() const;
    bool CanBeSeen() const;
    void Detach();

    TreeNode *pOwnNode;
    EditDrag Dragged = {};
    QBasicTimer Timer;
    QCheckBox *pPin = nullptr;
    bool bFilling = false;
};

// The open panel of a node; null: none.
Panel *PanelOf(const TreeNode *pNode);
