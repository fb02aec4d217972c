// RenderRun.h -- the headless renderer: a preset to numbered pictures
#pragma once

#include "app/RenderOptions.h"

// Runs the whole job. Returns the exit status: 0 done, 1 with one line on standard error. [main-thread]
int RunRender(const RenderOptions &ro);
