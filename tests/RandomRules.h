// RandomRules.h -- random lists of mixer rules, with now and then nonsense in them
#pragma once

#include "state/MixRule.h"
#include "tests/MixOracle.h"

#include <iterator>
#include <random>

inline i32 Between(std::mt19937 &random, i32 nLow, i32 nHigh)
{
    return nLow + static_cast<i32>(random() % static_cast<u32>(nHigh - nLow + 1));
}

// Mostly sources that exist, early and late ones, now and then nonsense.
inline i32 RandomSource(std::mt19937 &random, i32 nSources)
{
    constexpr i32 anHostile[] = {-1, 31, 32, 33, INT32_MAX, INT32_MIN};
    return random() % 16 ? Between(random, 0, nSources) : anHostile[random() % std::size(anHostile)];
}

inline std::vector<OracleRule> RandomRules(std::mt19937 &random, i32 nPlanes, i32 nRules, bool bTile)
{
    std::vector<OracleRule> rules;
    for (i32 r = 0; r < nRules; r++) {
        const i32 nSources = nPlanes + nRules - 1;
        OracleRule rule = {RandomSource(random, nSources), RandomSource(random, nSources),
                           RandomSource(random, nSources), Between(random, 1, 17), Between(random, -20, 275)};
        if (bTile && random() % 6 == 0)
            rule.MixOp = MIXOP_TILE_PLANES;
        rules.push_back(rule);
    }
    return rules;
}
