// PictureRows.cpp -- the inner loop of a plane's preview, compiled for each instruction set
#include "controls/panels/PictureRows.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "controls/panels/PictureRows.cpp"
#include <hwy/foreach_target.h>
// after foreach_target
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace picture {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

void AddRows(u16 *pSum, const u8 *pFirst, u64 cbStep, i32 nRows, size_t nBytes)
{
    const hn::ScalableTag<u16> d;
    const hn::Rebind<u8, decltype(d)> dBytes;
    const size_t nLanes = hn::Lanes(d);
    size_t i = 0;
    for (; i + nLanes <= nBytes; i += nLanes) {
        const u8 *pByte = pFirst + i;
        auto sum = hn::PromoteTo(d, hn::LoadU(dBytes, pByte));
        for (i32 iRow = 1; iRow < nRows; iRow++)
            sum = hn::Add(sum, hn::PromoteTo(d, hn::LoadU(dBytes, pByte += cbStep)));
        hn::StoreU(sum, d, pSum + i);
    }
    for (; i < nBytes; i++) {
        u32 nSum = 0;
        for (i32 iRow = 0; iRow < nRows; iRow++)
            nSum += pFirst[i + static_cast<u64>(iRow) * cbStep];
        pSum[i] = static_cast<u16>(nSum);
    }
}

AddRowsFn AddRowsOfTarget()
{
    return AddRows;
}

} // namespace HWY_NAMESPACE
} // namespace picture
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace picture {
HWY_EXPORT(AddRowsOfTarget);

static AddRowsFn AddRowsOfProcessor()
{
    return HWY_DYNAMIC_DISPATCH(AddRowsOfTarget)();
}
} // namespace picture

AddRowsFn GetAddRows()
{
    return picture::AddRowsOfProcessor();
}
#endif
