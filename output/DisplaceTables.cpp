// DisplaceTables.cpp -- magnitudes and directions of the Displace operator
#include "output/remap.h"

#include <bit>
#include <cmath>

namespace {

constexpr f32 MAGNITUDE_UNIT = std::bit_cast<f32>(0x3DAAAAABu); // 1 / 12
constexpr f32 ANGLE_UNIT = std::bit_cast<f32>(0x3C05F92Du);     // 6.28 / 768

DisplaceTables MakeDisplaceTables()
{
    DisplaceTables tables;
    for (u32 i = 0; i < DISPLACE_LEVELS; i++) {
        const f32 fAngle = static_cast<f32>(i) * ANGLE_UNIT;
        tables.afSin[i] = static_cast<f32>(std::sin(static_cast<double>(fAngle)));
        tables.afCos[i] = static_cast<f32>(std::cos(static_cast<double>(fAngle)));
        tables.afMagnitude[i] = static_cast<f32>(i) * MAGNITUDE_UNIT;
    }
    return tables;
}

} // namespace

const DisplaceTables &GetDisplaceTables()
{
    static const DisplaceTables tables = MakeDisplaceTables();
    return tables;
}
