// MixOracle.h -- what the mixer has to make of planes and rules, written the slow, obvious way
#pragma once

#include "platform/BaseTypes.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <vector>

struct OraclePicture {
    i32 nWidth = 0;
    i32 nHeight = 0;
    std::vector<u32> pixels;

    u32 At(i32 x, i32 y) const
    {
        return pixels[static_cast<size_t>(y) * static_cast<size_t>(nWidth) + static_cast<size_t>(x)];
    }
};

struct OracleRule {
    i32 SrcIdx1 = 0;
    i32 SrcIdx2 = 0;
    i32 AplhaIdx = 0;
    i32 MixOp = 0;
    i32 nWeight = 128;
};

struct OraclePreset {
    std::vector<OraclePicture> planes;
    std::vector<OracleRule> rules;
    std::vector<OraclePicture> metas; // one a rule
    OraclePicture final;
};

namespace oracle {

inline u32 B(u32 p)
{
    return p % 256;
}
inline u32 G(u32 p)
{
    return p / 256 % 256;
}
inline u32 R(u32 p)
{
    return p / 65536 % 256;
}
inline u32 Colour(u32 b, u32 g, u32 r)
{
    return b + 256 * g + 65536 * r;
}

inline i32 Reflect(i32 v, i32 n)
{
    const i32 a = std::abs(v);
    return (a / n) % 2 == 1 ? n - 1 - a % n : a % n;
}

inline u32 Displaced(const OraclePicture &picture, i32 x, i32 y, u32 p1, u32 p2)
{
    const f32 fUnitLength = std::bit_cast<f32>(0x3DAAAAABu);
    const f32 fUnitAngle = std::bit_cast<f32>(0x3C05F92Du);
    const f32 m = static_cast<f32>(B(p1) + G(p1) + R(p1)) * fUnitLength;
    const f32 t = static_cast<f32>(B(p2) + G(p2) + R(p2)) * fUnitAngle;
    const f32 fSin = static_cast<f32>(std::sin(static_cast<double>(t)));
    const f32 fCos = static_cast<f32>(std::cos(static_cast<double>(t)));
    const i32 x2 = x + static_cast<i32>(std::trunc(m * fCos));
    const i32 y2 = y + static_cast<i32>(std::trunc(m * fSin));
    return picture.At(Reflect(x2, picture.nWidth), Reflect(y2, picture.nHeight));
}

// The operators that look at their own pixel only.
inline u32 Pointwise(i32 nMixOp, u32 p1, u32 p2, u32 m, u32 w)
{
    const auto blend = [&](u32 wb, u32 wg, u32 wr) {
        return Colour((wb * B(p1) + (255 - wb) * B(p2)) / 255, (wg * G(p1) + (255 - wg) * G(p2)) / 255,
                      (wr * R(p1) + (255 - wr) * R(p2)) / 255);
    };
    const u32 nSum = B(p1) + G(p1) + R(p1);
    switch (nMixOp) {
    case 1:
        return blend(w, w, w);
    case 2:
        return (p2 & 0x00FFFFFFu) != 0 ? p2 : p1;
    case 3:
        return (p2 & 0x00FFFFFFu) != 0 ? p1 : 0;
    case 4:
        return p1 ^ p2;
    case 5:
        return R(p2) + 2 * B(p2) < R(p1) + 2 * B(p1) ? p1 : p2;
    case 6:
        return blend(B(m), G(m), R(m));
    case 7:
        return m != 0 ? p1 : p2;
    case 11:
        return Colour(R(p1), B(p1), G(p1));
    case 12:
        return Colour(G(p1), R(p1), B(p1));
    case 13:
        return p1 ^ 0x00FFFFFFu;
    case 14:
        return Colour(nSum * B(p2) / 768, nSum * G(p2) / 768, nSum * R(p2) / 768);
    case 15:
        return Colour(B(p1) * B(p2) / 255, G(p1) * G(p2) / 255, R(p1) * R(p2) / 255);
    default:
        std::abort();
    }
}

inline bool ReadsSource2(i32 nMixOp)
{
    return (nMixOp >= 1 && nMixOp <= 7) || nMixOp >= 14;
}
inline bool ReadsMask(i32 nMixOp)
{
    return nMixOp == 6 || nMixOp == 7;
}

inline u32 Limited(i32 nWeight)
{
    return static_cast<u32>(nWeight < 0 ? 0 : nWeight > 255 ? 255 : nWeight);
}

inline OraclePicture RunRule(const OracleRule &rule, const OraclePicture &p1, const OraclePicture *p2,
                             const OraclePicture *m)
{
    OraclePicture out = p1;
    const i32 W = p1.nWidth, H = p1.nHeight;
    for (i32 y = 0; y < H; y++)
        for (i32 x = 0; x < W; x++) {
            u32 n;
            if (rule.MixOp == 8)
                n = p1.At(W - 1 - x, y);
            else if (rule.MixOp == 9)
                n = p1.At(x, H - 1 - y);
            else if (rule.MixOp == 10)
                n = p1.pixels[p1.pixels.size() - 1 - static_cast<size_t>(y * W + x)];
            else if (rule.MixOp == 16)
                n = Displaced(p1, x, y, p1.At(x, y), p2->At(x, y));
            else
                n = Pointwise(rule.MixOp, p1.At(x, y), p2 ? p2->At(x, y) : 0, m ? m->At(x, y) : 0,
                              Limited(rule.nWeight));
            out.pixels[static_cast<size_t>(y * W + x)] = n;
        }
    return out;
}

} // namespace oracle

// Rule by rule, every rule on whole pictures; then the tiling.
inline void OraclePerRule(OraclePreset &ps)
{
    const i32 nPlanes = static_cast<i32>(ps.planes.size()), nRules = static_cast<i32>(ps.rules.size());
    const auto source = [&](i32 i) -> const OraclePicture * {
        if (i < 0 || i >= nPlanes + nRules || i >= 32)
            return nullptr;
        return i < nPlanes ? &ps.planes[static_cast<size_t>(i)] : &ps.metas[static_cast<size_t>(i - nPlanes)];
    };
    bool bTile = false;
    for (i32 r = 0; r < nRules; r++) {
        const OracleRule &rule = ps.rules[static_cast<size_t>(r)];
        bTile = bTile || rule.MixOp == 0;
        if (rule.MixOp < 1 || rule.MixOp > 16)
            continue;
        const OraclePicture *p1 = source(rule.SrcIdx1), *p2 = source(rule.SrcIdx2), *m = source(rule.AplhaIdx);
        if (!p1 || (oracle::ReadsSource2(rule.MixOp) && !p2) || (oracle::ReadsMask(rule.MixOp) && !m))
            continue;
        OraclePicture result = oracle::RunRule(rule, *p1, p2, m);
        (r == nRules - 1 ? ps.final : ps.metas[static_cast<size_t>(r)]) = result;
    }
    const i32 nColumns = nPlanes + nRules - 1, nWidth = ps.final.nWidth;
    if (!bTile || nColumns == 0)
        return;
    const i32 nColumn = nWidth / nColumns;
    for (i32 i = 0; i < nColumns && source(i); i++)
        for (i32 y = 0; y < ps.final.nHeight; y++)
            for (i32 x = 0; x < nColumn; x++)
                ps.final.pixels[static_cast<size_t>(y * nWidth + i * nColumn + x)] =
                    source(i)->At(x * nWidth / nColumn, y);
}

// All rules for one pixel after the other.
inline void OracleOnePass(OraclePreset &ps)
{
    const i32 nPlanes = static_cast<i32>(ps.planes.size()), nRules = static_cast<i32>(ps.rules.size());
    const i32 W = ps.final.nWidth, H = ps.final.nHeight;
    for (i32 y = 0; y < H; y++)
        for (i32 x = 0; x < W; x++) {
            u32 store[32] = {};
            const auto stored = [&](i32 i) { return i >= 0 && i < 32 ? store[i] : 0; };
            for (i32 p = 0; p < nPlanes; p++)
                store[p] = ps.planes[static_cast<size_t>(p)].At(x, y);
            u32 n = 0;
            for (i32 r = 0; r < nRules; r++) {
                const OracleRule &rule = ps.rules[static_cast<size_t>(r)];
                const u32 p1 = stored(rule.SrcIdx1), p2 = stored(rule.SrcIdx2);
                const OraclePicture *plane = rule.SrcIdx1 >= 0 && rule.SrcIdx1 < nPlanes
                                                 ? &ps.planes[static_cast<size_t>(rule.SrcIdx1)]
                                                 : nullptr;
                const u32 nMeasure = oracle::R(p1) + 2 * oracle::B(p1);
                switch (rule.MixOp) {
                case 0:
                    n = p1;
                    break;
                case 8:
                    n = plane ? plane->At(W - 1 - x, y) : 0;
                    break;
                case 9:
                    n = plane ? plane->At(x, H - 1 - y) : 0;
                    break;
                case 10:
                    n = plane ? plane->At(W - 1 - x, H - 1 - y) : 0;
                    break;
                case 14:
                    n = nMeasure * oracle::B(p2) / 255 | (nMeasure * oracle::G(p2) / 255) << 8 |
                        (nMeasure * oracle::R(p2) / 255) << 16;
                    break;
                case 16:
                    n = plane ? oracle::Displaced(*plane, x, y, p1, p2) : 0;
                    break;
                default:
                    if (rule.MixOp >= 1 && rule.MixOp <= 15)
                        n = oracle::Pointwise(rule.MixOp, p1, p2, stored(rule.AplhaIdx), oracle::Limited(rule.nWeight));
                }
                if (nPlanes + r < 32)
                    store[nPlanes + r] = n;
            }
            ps.final.pixels[static_cast<size_t>(y * W + x)] = n;
        }
}
