// FluidPanels_qt.cpp -- the sub-panels of a control's animated sources, at the bottom of its panel
#include "controls/panels/FluidPanels_qt.h"

#include "controls/panels/Panel_qt.h"

FluidPanels::FluidPanels(Panel *p) : QWidget(p), pPanel(p)
{
}

void FluidPanels::ShowSource()
{
    pShown = nullptr;
}

void FluidPanels::Fill()
{
    ShowSource();
}

void FluidPanels::Follow()
{
    Q_UNUSED(pPanel);
    Q_UNUSED(apSub);
    Q_UNUSED(pShown);
}
