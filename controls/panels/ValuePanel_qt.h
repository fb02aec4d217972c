// ValuePanel_qt.h -- what the panels of numbers, booleans and item selects share: description, source, sub-panels
#pragma once

#include "controls/panels/Panel_qt.h"

class FluidPanels;
class QBoxLayout;
class QComboBox;

// A control with the name in front of it, as "Source:". A screen reader says the name without the colon.
QBoxLayout *LabelledRow(const QString &label, QWidget *pControl);

class ValuePanel : public Panel {
  protected:
    // Begins the content with the description box and the row of "Source:".
    ValuePanel(TreeNode *pNode, QWidget *pOwner);
    // The panel is there: the sub-panels at its bottom, where the control can be animated.
    void FinishValue();

    // What shows the value, from the record.
    virtual void FillValue() = 0;
    // Every 100 ms.
    virtual void FollowValue() = 0;
    // The source is another one, by the panel's own list.
    virtual void SourceChanged() = 0;

    QBoxLayout *pContent;
    QBoxLayout *pSourceRow;

  private:
    void Fill() final;
    void Follow() final;
    void FillSources();
    void TakeSource();

    QComboBox *pSource;
    FluidPanels *pFluid = nullptr; // null: no animated source
};
