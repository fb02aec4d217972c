// DisplaceTables.cpp -- directions of the Displace operator
#include "output/remap.h"

#include <cmath>

namespace {

DisplaceTables MakeDisplaceTables()
{
    DisplaceTables tables;
    for (u32 i = 0; i < DISPLACE_LEVELS; i++) {
        const f32 fAngle = static_cast<f32>(i) * DISPLACE_ANGLE_UNIT;
        tables.afSin[i] = static_cast<f32>(std::sin(static_cast<double>(fAngle)));
        tables.afCos[i] = static_cast<f32>(std::cos(static_cast<double>(fAngle)));
    }
    return tables;
}

} // namespace

const DisplaceTables &GetDisplaceTables()
{
    static const DisplaceTables tables = MakeDisplaceTables();
    return tables;
}
