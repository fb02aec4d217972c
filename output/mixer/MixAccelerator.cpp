// MixAccelerator.cpp -- the graphics card that mixes, while there is one and it can be relied on
#include "output/mixer/MixAccelerator.h"

#include "output/mixer/MixCard.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Text.h"

u32 bAccelEmulated = 1;
NameText szGpuDescription = {};
AcceleratorTest MixAcceleratorTest = {};

namespace {

constexpr u32 LOSSES_MAX = 3;
constexpr i64 PAUSE_NANOSECONDS = 1'000'000'000; // from a loss to the next try

MixCard Card;
u32 nLosses = 0;  // since the start; at LOSSES_MAX the card is left alone
i64 nNextTry = 0; // RealNanoseconds before which a lost card is not asked
bool bOpen = false;
bool bRefusalTold = false;

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
    nNextTry = RealNanoseconds() + (MixAcceleratorTest.bNoPause ? 0 : PAUSE_NANOSECONDS);
    if (++nLosses < LOSSES_MAX)
        return;
    AddNotice("the graphics card " + ToUtf8(szGpuDescription) + " was lost three times while it mixed (at last " +
              pszWhy + "): the processor mixes until the program is started again");
    SetProcessor();
}

// After a loss it may be another one.
bool CardIsOpen()
{
    std::string sRenderer;
    if (!bOpen && OpenCard(&sRenderer)) {
        CopyText(szGpuDescription, FromUtf8(sRenderer));
        bOpen = true;
    }
    return bOpen;
}

void TellRefusal(const MixProgram &prog)
{
    if (bRefusalTold)
        return;
    bRefusalTold = true;
    AddNotice("the graphics card " + ToUtf8(szGpuDescription) + " cannot take these rules at " +
              std::to_string(prog.nWidth) + " x " + std::to_string(prog.nHeight) + ": the processor mixes them");
}

} // namespace

// Only looks: a card that nobody mixes on should not hold memory for it.
void SetupMixAccelerator()
{
    ASSERT_MAIN_THREAD();
    CloseMixAccelerator();
    nLosses = 0;
    nNextTry = 0;
    bRefusalTold = false;
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
    ASSERT_MAIN_THREAD();
    if (bAccelEmulated || prog.nSteps == 0 || RealNanoseconds() < nNextTry)
        return false;
    const char *pszWhy = "it could not be opened";
    const CardOutcome eOutcome = CardIsOpen() ? RunOnMixCard(&Card, prog, anWeight, &pszWhy) : CardOutcome::Lost;
    if (eOutcome == CardOutcome::Lost)
        CountLoss(pszWhy);
    if (eOutcome == CardOutcome::Refused)
        TellRefusal(prog);
    return eOutcome == CardOutcome::Mixed;
}

void CloseMixAccelerator()
{
    ASSERT_MAIN_THREAD();
    CloseMixCard(&Card);
    bOpen = false;
}
