// MixOperators.cpp -- what the operators of mixer rules are called and read
#include "output/mixer/PlaneMixer.h"

namespace {

const MixOperatorInfo asOperator[MIXOP_COUNT] = {
    {u"Tile planes", false, false, false},
    {u"Blend", true, false, true},
    {u"Overwrite Background", true, false, false},
    {u"Only Write Foreground", true, false, false},
    {u"Blend XOR", true, false, false},
    {u"Blend Max", true, false, false},
    {u"Blend using Alpha Channel", true, true, false},
    {u"Blend using Boolean Channel", true, true, false},
    {u"Invert X", false, false, false},
    {u"Invert Y", false, false, false},
    {u"Invert XY", false, false, false},
    {u"Color Gun Shift I", false, false, false},
    {u"Color Gun Shift II", false, false, false},
    {u"Negative", false, false, false},
    {u"Intensity Scale", true, false, false},
    {u"Intensity Scale RGB", true, false, false},
    {u"Displace", true, false, false},
};

} // namespace

const MixOperatorInfo *GetMixOperatorInfo(i32 nMixOp)
{
    return nMixOp >= 0 && nMixOp < MIXOP_COUNT ? &asOperator[nMixOp] : nullptr;
}
