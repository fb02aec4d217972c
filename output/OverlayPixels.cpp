// OverlayPixels.cpp -- the pixels of an overlay's frame, and its blending over the picture
#include "output/OverlayPixels.h"

#include "output/Overlays.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr u32 BLACK = 0xFF000000;
constexpr u32 COLOR_KEY = 0x010203;
constexpr i32 FRAME_DEPTH = 4;
constexpr f64 RAMP_ANGLE = 0.78625; // an eighth of a turn a pixel: dark, half, full, half

constexpr u32 EDGE_LIGHT = 0xFFFFFFFF, EDGE_FACE = 0xFFC0C0C0, EDGE_SHADOW = 0xFF808080, EDGE_DARK = 0xFF404040;

struct Texture {
    const u32 *pdwPixel;
    i32 nWidth, nHeight;
};

u32 *PixelAt(OverlayPicture *p, i32 x, i32 y)
{
    return &p->adwPixel[static_cast<size_t>(y) * static_cast<size_t>(p->nWidth) + static_cast<size_t>(x)];
}

// Every other tile is turned over.
i32 MirroredPlace(i32 n, i32 nSize)
{
    const i32 nInside = n % nSize;
    return n / nSize % 2 ? nSize - 1 - nInside : nInside;
}

u32 TexturePixel(const Texture &t, i32 x, i32 y)
{
    return t.pdwPixel[MirroredPlace(y, t.nHeight) * t.nWidth + MirroredPlace(x, t.nWidth)];
}

u32 Shade(u32 dwPixel, u32 dwValue)
{
    u32 dwShaded = BLACK;
    for (u32 nShift = 0; nShift < 24; nShift += 8)
        dwShaded |= (((dwPixel >> nShift) & 0xFF) * dwValue / 255) << nShift;
    return dwShaded;
}

void DrawTexturedFrame(OverlayPicture *p, const OverlayPicture &texture)
{
    static constexpr u32 WHITE[1] = {0xFFFFFFFF};
    const bool bThere = !texture.adwPixel.empty();
    const Texture t = bThere ? Texture{texture.adwPixel.data(), texture.nWidth, texture.nHeight} : Texture{WHITE, 1, 1};
    u32 adwRamp[FRAME_DEPTH];
    for (i32 d = 0; d < FRAME_DEPTH; d++)
        adwRamp[d] = static_cast<u32>(std::min(255.0, std::trunc(255.0 * std::sin(RAMP_ANGLE * d))));
    for (i32 y = 0; y < p->nHeight; y++)
        for (i32 x = 0; x < p->nWidth; x++) {
            const i32 d = std::min(std::min(x, p->nWidth - 1 - x), std::min(y, p->nHeight - 1 - y));
            if (d < FRAME_DEPTH)
                *PixelAt(p, x, y) = Shade(TexturePixel(t, x, y), adwRamp[d]);
        }
}

// One pixel wide, d pixels inside the border.
void DrawEdge(OverlayPicture *p, i32 d, u32 dwTopLeft, u32 dwBottomRight)
{
    const i32 xLast = p->nWidth - 1 - d, yLast = p->nHeight - 1 - d;
    for (i32 x = d; x <= xLast && d <= yLast; x++) {
        *PixelAt(p, x, d) = dwTopLeft;
        *PixelAt(p, x, yLast) = dwBottomRight;
    }
    for (i32 y = d; y <= yLast && d <= xLast; y++) {
        *PixelAt(p, d, y) = dwTopLeft;
        *PixelAt(p, xLast, y) = dwBottomRight;
    }
}

void DrawRaisedFrame(OverlayPicture *p)
{
    std::fill(p->adwPixel.begin(), p->adwPixel.end(), EDGE_FACE);
    DrawEdge(p, 0, EDGE_LIGHT, EDGE_DARK);
    DrawEdge(p, 1, EDGE_FACE, EDGE_SHADOW);
    DrawEdge(p, 2, EDGE_SHADOW, EDGE_LIGHT);
    DrawEdge(p, 3, EDGE_LIGHT, EDGE_SHADOW);
}

u32 Scale(u32 dwPixel, u32 dwFactor)
{
    u32 dwScaled = 0;
    for (u32 nShift = 0; nShift < 24; nShift += 8)
        dwScaled |= (((dwPixel >> nShift) & 0xFF) * dwFactor / 255) << nShift;
    return dwScaled;
}

// The whole part of n / 255, for n up to 255 * 255.
u16 By255(u16 n)
{
    return static_cast<u16>(static_cast<u16>(n + 1 + (n >> 8)) >> 8);
}

// Eight words; the compilers have this type on every processor.
using Words = u16 __attribute__((vector_size(16)));
constexpr i64 VECTOR_BYTES = sizeof(Words);

// By255 of eight products.
Words ScaleWords(Words words, u16 wRest)
{
    const Words products = words * wRest;
    return (products + 1 + (products >> 8)) >> 8;
}

void BlendVector(u8 *pbTo, const u8 *pbFrom, u16 wRest)
{
    Words to, from;
    std::memcpy(&to, pbTo, sizeof to);
    std::memcpy(&from, pbFrom, sizeof from);
    to = from + (ScaleWords(to & 0xFF, wRest) | (ScaleWords(to >> 8, wRest) << 8)); // no byte runs over
    std::memcpy(pbTo, &to, sizeof to);
}

void BlendBytes(u8 *pbTo, const u8 *pbFrom, i64 nBytes, u16 wRest)
{
    i64 i = 0;
    for (; i + VECTOR_BYTES <= nBytes; i += VECTOR_BYTES)
        BlendVector(pbTo + i, pbFrom + i, wRest);
    for (; i < nBytes; i++)
        pbTo[i] = static_cast<u8>(pbFrom[i] + By255(static_cast<u16>(pbTo[i] * wRest)));
}

void BlendKeyed(u8 *pbTo, const u8 *pbFrom, i64 nBytes, u16 wRest)
{
    for (i64 i = 0; i < nBytes; i += 4)
        if (pbFrom[i + 3])
            BlendBytes(pbTo + i, pbFrom + i, 4, wRest);
}

} // namespace

void DrawOverlayFrame(OverlayPicture *pPicture, u32 dwFrameStyle, const OverlayPicture &texture)
{
    pPicture->adwPixel.assign(static_cast<size_t>(pPicture->nWidth) * static_cast<size_t>(pPicture->nHeight), BLACK);
    if (dwFrameStyle == FRAME_RAISED)
        DrawRaisedFrame(pPicture);
    else
        DrawTexturedFrame(pPicture, texture);
}

bool MakeOverlayTranslucent(u32 *pdwPixel, u64 nPixels, u8 bAlpha)
{
    bool bKeyed = false;
    for (u64 i = 0; i < nPixels; i++) {
        const bool bKey = (pdwPixel[i] & 0xFFFFFF) == COLOR_KEY;
        pdwPixel[i] = bKey ? 0 : Scale(pdwPixel[i], bAlpha) | (static_cast<u32>(bAlpha) << 24);
        bKeyed |= bKey;
    }
    return bKeyed;
}

void BlendOverlay(const StretchTarget &target, i32 x, i32 y, const TranslucentPicture &picture)
{
    const i32 xFirst = std::max(-x, 0), xEnd = std::min(picture.nWidth, target.nWidth - x);
    const i32 yFirst = std::max(-y, 0), yEnd = std::min(picture.nHeight, target.nHeight - y);
    const auto wRest = static_cast<u16>(255 - picture.bAlpha);
    const auto pfnBlend = picture.bKeyed ? BlendKeyed : BlendBytes;
    for (i32 yRow = yFirst; yRow < yEnd && xFirst < xEnd; yRow++) {
        u8 *pbTo = static_cast<u8 *>(target.pBits) + static_cast<u64>(y + yRow) * target.cbRow +
                   static_cast<u64>(x + xFirst) * 4;
        const auto *pbFrom = reinterpret_cast<const u8 *>(picture.pdwPixel) + static_cast<u64>(yRow) * picture.cbRow +
                             static_cast<u64>(xFirst) * 4;
        pfnBlend(pbTo, pbFrom, static_cast<i64>(xEnd - xFirst) * 4, wRest);
    }
}
