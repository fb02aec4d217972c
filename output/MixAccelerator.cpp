// MixAccelerator.cpp -- the graphics card that mixes, while there is one and it can be relied on
#include "output/MixAccelerator.h"

#include "output/MixCard.h"
#include "output/PlaneMixer.h"
#include "platform/Notices.h"
#include "platform/Text.h"

u32 bAccelEmulated = 1;
NameText szGpuDescription = {};
AcceleratorTest MixAcceleratorTest = {};

namespace {

constexpr u32 LOSSES_MAX = 3;

MixCard Card;
u32 nLosses = 0; // since the start; at LOSSES_MAX the card is left alone
bool bOpen = false;

bool OpenCard(std::string *psRenderer)
{
    return OpenMixCard(&Card, MixAcceleratorTest.bSoftware, MixAcceleratorTest.bPlainBuffers, psRenderer);
}

void SetProcessor()
{
    bAccelEmulated = 1;
    szGpuDescription[0] = 0;
}

void CountLoss(const char *pszWhy)
{
    CloseMixAccelerator();
    if (++nLosses < LOSSES_MAX)
        return;
    AddNotice("the graphics card " + ToUtf8(szGpuDescription) + " was lost three times while it mixed (at last " +
              pszWhy + "): the processor mixes until the program is started again");
    SetProcessor();
}

bool CardIsOpen()
{
    std::string sRenderer;
    bOpen = bOpen || OpenCard(&sRenderer);
    return bOpen;
}

} // namespace

// Only looks: a card that nobody mixes on should not hold memory for it.
void SetupMixAccelerator()
{
    CloseMixAccelerator();
    nLosses = 0;
    SetProcessor();
    std::string sRenderer;
    if (!OpenCard(&sRenderer))
        return;
    CloseMixCard(&Card);
    bAccelEmulated = 0;
    CopyText(szGpuDescription, FromUtf8(sRenderer));
}

bool MixOnAccelerator(const MixProgram &prog, const u32 *anWeight)
{
    if (bAccelEmulated || prog.nSteps == 0)
        return false;
    const char *pszWhy = "it could not be opened";
    const CardOutcome eOutcome = CardIsOpen() ? RunOnMixCard(&Card, prog, anWeight, &pszWhy) : CardOutcome::Lost;
    if (eOutcome == CardOutcome::Lost)
        CountLoss(pszWhy);
    return eOutcome == CardOutcome::Mixed;
}

void CloseMixAccelerator()
{
    CloseMixCard(&Card);
    bOpen = false;
}
