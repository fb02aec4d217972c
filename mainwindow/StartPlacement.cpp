// StartPlacement.cpp -- where the windows stand at the start
#include "mainwindow/StartPlacement.h"

#include <algorithm>

FrameRect VisualsStartRect(const FrameRect &rcMain, const FrameRect &rcWork, i32 nSmallestSide)
{
    const i32 nWidth = std::max(rcWork.xRight - rcMain.xLeft - rcMain.xRight, nSmallestSide);
    const i32 nHeight = std::max(2 * (rcMain.yBottom - rcMain.yTop), nSmallestSide);
    FrameRect rc = {rcMain.xRight, rcMain.yTop, rcMain.xRight + nWidth, rcMain.yTop + nHeight};
    const i32 nBeyond = std::clamp(rc.xRight - rcWork.xRight, 0, std::max(0, rc.xLeft - rcWork.xLeft));
    rc.xLeft -= nBeyond;
    rc.xRight -= nBeyond;
    return rc;
}
