// PaletteFile_fuzz.cpp -- palette files of hostile bytes: the arrays hold, what is refused leaves them alone
#include "stock/shared/PaletteFile.h"

#include "platform/Assert.h"

#include <algorithm>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    // Arrays of exactly the promised size, each on its own.
    std::vector<u8> aGun[3];
    for (std::vector<u8> &gun : aGun)
        gun.assign(PALETTE_COLORS_MAX, 0xA5);
    i32 nColors = -1;
    const u32 bRead = ReadPaletteBytes({reinterpret_cast<const char *>(pData), cb}, &nColors, aGun[0].data(),
                                       aGun[1].data(), aGun[2].data());
    VD_ASSERT(nColors >= 0 && nColors <= PALETTE_COLORS_MAX && (bRead || nColors == 0));
    for (std::vector<u8> &gun : aGun) {
        VD_ASSERT(std::all_of(gun.begin() + nColors, gun.end(), [](u8 b) { return b == 0xA5; }));
        VD_ASSERT(InterpolatePalette(gun.data(), nColors) == (nColors > 0));
    }
    return 0;
}
