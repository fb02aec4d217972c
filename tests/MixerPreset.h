// MixerPreset.h -- a bare preset with planes made by hand, filled from the pictures of the oracle
#pragma once

#include "engine/MixRules.h"
#include "output/mixer/PlaneMixer.h"
#include "platform/Bitmap.h"
#include "tests/MixOracle.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>

// Words that meet the special cases of the operators often: black with and without alpha, equal channels, noise.
inline OraclePicture RandomPicture(std::mt19937 &random, i32 nWidth, i32 nHeight)
{
    OraclePicture picture{nWidth, nHeight,
                          std::vector<u32>(static_cast<size_t>(nWidth) * static_cast<size_t>(nHeight))};
    for (u32 &n : picture.pixels) {
        n = static_cast<u32>(random());
        switch (random() % 12) {
        case 0:
            n = 0;
            break;
        case 1:
            n = n & 0xFF000000u;
            break;
        case 2:
            n = 0xFFFFFFFFu;
            break;
        case 3:
            n = n & 0x0000FF00u;
            break;
        case 4:
            n = n & 0x01010101u;
            break;
        default:
            break;
        }
    }
    return picture;
}

inline OraclePreset RandomOraclePreset(std::mt19937 &random, u32 nPlanes, std::vector<OracleRule> rules, i32 nWidth,
                                       i32 nHeight)
{
    OraclePreset ps;
    for (u32 i = 0; i < nPlanes; i++)
        ps.planes.push_back(RandomPicture(random, nWidth, nHeight));
    for (size_t i = 0; i < rules.size(); i++)
        ps.metas.push_back(RandomPicture(random, nWidth, nHeight));
    ps.final = RandomPicture(random, nWidth, nHeight);
    ps.rules = std::move(rules);
    return ps;
}

inline void FillBitmap(HostBitmap *hbm, const OraclePicture &picture)
{
    std::memcpy(hbm->pBits, picture.pixels.data(), picture.pixels.size() * 4);
}

// The preset that the mixer sees. Planes have no modules, and nothing of the engine is needed.
class MixerPreset {
  public:
    explicit MixerPreset(const OraclePreset &ps)
    {
        state.hbmFinal = CreateBitmap(ps.final.nWidth, ps.final.nHeight);
        for (const OraclePicture &picture : ps.planes)
            AddBarePlane(picture.nWidth, picture.nHeight);
        for (const OracleRule &rule : ps.rules)
            SetRule(AddMixRule(&state), rule);
        Fill(ps);
    }
    ~MixerPreset()
    {
        RemoveAllMixRules(&state);
        for (i32 i = 0; i < state.nPlanes; i++)
            DeleteBitmap(planes[i].Info.hbmResolved);
        DeleteBitmap(state.hbmFinal);
    }
    MixerPreset(const MixerPreset &) = delete;
    MixerPreset &operator=(const MixerPreset &) = delete;

    void AddBarePlane(i32 nWidth, i32 nHeight)
    {
        planes[state.nPlanes].Info.hbmResolved = CreateBitmap(nWidth, nHeight);
        state.psPlane[state.nPlanes] = &planes[state.nPlanes];
        state.nPlanes++;
    }
    static void SetRule(MixRule *pRule, const OracleRule &rule)
    {
        ASSERT_NE(pRule, nullptr);
        pRule->SrcIdx1 = rule.SrcIdx1;
        pRule->SrcIdx2 = rule.SrcIdx2;
        pRule->AplhaIdx = rule.AplhaIdx;
        pRule->MixOp = rule.MixOp;
        pRule->BlendWeight.Integer.nValue = rule.nWeight;
    }
    void Fill(const OraclePreset &ps)
    {
        FillBitmap(state.hbmFinal, ps.final);
        for (size_t i = 0; i < ps.planes.size(); i++)
            FillBitmap(planes[i].Info.hbmResolved, ps.planes[i]);
        for (size_t i = 0; i < ps.rules.size(); i++)
            FillBitmap(state.asMixRule[i].hbmRule, ps.metas[i]);
    }

    PresetState state{};
    PlaneState planes[PLANES_MAX]{};
};

inline testing::AssertionResult SamePixels(const HostBitmap *hbm, const OraclePicture &picture)
{
    const u32 *p = BitmapPixels(hbm);
    for (size_t i = 0; i < picture.pixels.size(); i++)
        if (p[i] != picture.pixels[i])
            return testing::AssertionFailure()
                   << "pixel (" << i % static_cast<size_t>(picture.nWidth) << ", "
                   << i / static_cast<size_t>(picture.nWidth) << ") of " << picture.nWidth << " x " << picture.nHeight
                   << " is " << std::hex << p[i] << ", should be " << picture.pixels[i];
    return testing::AssertionSuccess();
}

// Every image of the preset: the planes untouched, the meta-planes and the result as the oracle has them.
inline testing::AssertionResult SameAsOracle(const MixerPreset &preset, const OraclePreset &ps)
{
    for (size_t i = 0; i < ps.planes.size(); i++)
        if (auto same = SamePixels(preset.planes[i].Info.hbmResolved, ps.planes[i]); !same)
            return same << " in plane " << i;
    for (size_t i = 0; i < ps.metas.size(); i++)
        if (auto same = SamePixels(preset.state.asMixRule[i].hbmRule, ps.metas[i]); !same)
            return same << " in meta-plane " << i;
    return SamePixels(preset.state.hbmFinal, ps.final) << " in the result";
}
