// DisplaceTables.cpp -- directions of the Displace operator
#include "output/mixer/remap.h"

#include <array>
#include <cmath>

namespace {

using Directions = std::array<DisplaceDirection, DISPLACE_LEVELS>;

Directions MakeDirections()
{
    Directions directions;
    for (u32 i = 0; i < DISPLACE_LEVELS; i++) {
        const f32 fAngle = static_cast<f32>(i) * DISPLACE_ANGLE_UNIT;
        directions[i].fCos = static_cast<f32>(std::cos(static_cast<double>(fAngle)));
        directions[i].fSin = static_cast<f32>(std::sin(static_cast<double>(fAngle)));
    }
    return directions;
}

} // namespace

const DisplaceDirection *GetDisplaceDirections()
{
    static const Directions directions = MakeDirections();
    return directions.data();
}
