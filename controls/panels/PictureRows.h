// PictureRows.h -- the inner loop of a plane's preview
#pragma once

#include "platform/BaseTypes.h"

#include <cstddef>

// Adds up nRows rows of bytes, which stand cbStep apart: nRows x 255 has to fit into 16 bits.
using AddRowsFn = void (*)(u16 *pSum, const u8 *pFirst, u64 cbStep, i32 nRows, size_t nBytes);

// For the best instruction set that the processor has. [any-thread]
AddRowsFn GetAddRows();
