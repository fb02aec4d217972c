// Steps.h -- ordered lists of named steps, for start-up and shut-down
#pragma once

#include "platform/BaseTypes.h"

#include <span>

// One step. pfnRun returns 0 when the process cannot go on.
struct Step {
    const char *pszName;
    u32 (*pfnRun)();
};

// Runs the steps in order up to the first that fails. Returns the failed step's name, or null. [main-thread]
inline const char *RunSteps(std::span<const Step> steps)
{
    for (const Step &step : steps)
        if (!step.pfnRun())
            return step.pszName;
    return nullptr;
}
