// StockGust_bench.cpp -- a carry of PMGust over a 720p plane against the same carry written the obvious way
#include "bench/BenchReport.h"

#include "tests/PainterHost.h"

namespace {

constexpr unsigned ROUNDS = 25;
constexpr unsigned CALLS = 2;
constexpr int32_t nWidth = 1280, nHeight = 720;

uint32_t PixelAt(const std::vector<uint32_t> &picture, int32_t x, int32_t y)
{
    return picture[(size_t)std::clamp(y, 0, nHeight - 1) * nWidth + (size_t)std::clamp(x, 0, nWidth - 1)];
}

uint32_t MixAt(const std::vector<uint32_t> &picture, float x, float y, uint32_t nShift, uint32_t dwMask)
{
    const float xWhole = std::floor(x), yWhole = std::floor(y), fX = x - xWhole, fY = y - yWhole;
    const auto Level = [&](int32_t xMore, int32_t yMore) {
        return (float)(PixelAt(picture, (int32_t)xWhole + xMore, (int32_t)yWhole + yMore) >> nShift & dwMask);
    };
    const float fLower = Level(0, 0) + (Level(1, 0) - Level(0, 0)) * fX;
    const float fUpper = Level(0, 1) + (Level(1, 1) - Level(0, 1)) * fX;
    return (uint32_t)((fLower + (fUpper - fLower) * fY) * 0.99f) << nShift;
}

// An even rotation, so that the field costs nothing here.
void CarryPlainly(const std::vector<uint32_t> &from, bool bIndexed, uint32_t *pTo)
{
    for (int32_t y = 0; y < nHeight; y++)
        for (int32_t x = 0; x < nWidth; x++) {
            const float xFrom = (float)x + 0.004f * (float)(y - 360), yFrom = (float)y - 0.004f * (float)(x - 640);
            if (bIndexed)
                *pTo++ = MixAt(from, xFrom, yFrom, 0, 2047);
            else
                *pTo++ = MixAt(from, xFrom, yFrom, 0, 255) | MixAt(from, xFrom, yFrom, 8, 255) |
                         MixAt(from, xFrom, yFrom, 16, 255);
        }
}

void ReportCarry(bool bIndexed, const char *pszPlain, const char *pszCopy)
{
    TestPlane plane(nWidth, nHeight, bIndexed, 256);
    for (size_t i = 0; i < plane.Pixels(); i++)
        plane.Bits()[i] = (uint32_t)i / 3 & (bIndexed ? 255 : 0xFFFFFF);
    TestModule gust("PMGust.dll", plane);
    const std::vector<uint32_t> picture = plane.Picture();
    std::vector<uint32_t> target(picture.size());
    const auto carry = [&] { gust.Run(plane, 1); };
    const auto plain = [&] {
        CarryPlainly(picture, bIndexed, target.data());
        KeepResult(target[0]);
    };
    const auto copy = [&] {
        memcpy(target.data(), picture.data(), picture.size() * sizeof(uint32_t));
        KeepResult(target[0]);
    };
    const auto [afCarry, afPlain, afCopy] = TimeInterleaved(ROUNDS, CALLS, carry, plain, copy);
    ReportFigure(pszPlain, MedianRatio(afCarry, afPlain), bIndexed ? 0.5 : 0.25, "x", BenchGoal::AT_MOST);
    ReportFigure(pszCopy, MedianRatio(afCarry, afCopy), 0, "x", BenchGoal::NONE);
}

} // namespace

int main()
{
    ReportCarry(true, "StockGust/indices over the obvious loop", "StockGust/indices over a copy");
    ReportCarry(false, "StockGust/colours over the obvious loop", "StockGust/colours over a copy");
    return 0;
}
