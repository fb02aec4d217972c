// StockResolve_bench.cpp -- the resolve of a 1080p plane through CMShift against a bare table look-up and a plain copy
#include "bench/BenchReport.h"

#include "tests/ColourHost.h"

namespace {

constexpr unsigned ROUNDS = 51;
constexpr unsigned CALLS = 4;

// The least that a resolve has to do, for indices that need no check.
void LookUp(const ColourHost &host, uint32_t *pPixel)
{
    const uint32_t *pTable = host.adwTable.data();
    for (uint32_t dwIndex : host.apvBits[0])
        *pPixel++ = pTable[dwIndex];
    KeepResult(*pPixel);
}

void ReportResolve(ColourHost *pHost, int32_t nColors, const char *pszLookUp, const char *pszCopy)
{
    pHost->plane.nColors = nColors;
    const ColourModule *pShift = pHost->apModule[0].get();
    uint32_t *pTarget = pHost->apvBits[1].data();
    const auto resolve = [&] { pShift->pfnResolve(pShift->pvContext, &pHost->plane, &pHost->resolved); };
    const auto lookUp = [&] { LookUp(*pHost, pTarget); };
    const auto copy = [&] {
        memcpy(pTarget, pHost->apvBits[0].data(), pHost->apvBits[0].size() * sizeof(uint32_t));
        KeepResult(*pTarget);
    };
    const auto [afResolve, afLookUp, afCopy] = TimeInterleaved(ROUNDS, CALLS, resolve, lookUp, copy);
    ReportFigure(pszLookUp, MedianRatio(afResolve, afLookUp), 1.25, "x", BenchGoal::AT_MOST);
    ReportFigure(pszCopy, MedianRatio(afResolve, afCopy), 0, "x", BenchGoal::NONE);
}

} // namespace

int main()
{
    ColourHost host(1920, 1080, 1);
    host.Add("CMShift.dll");
    for (size_t i = 0; i < host.apvBits[0].size(); i++)
        host.apvBits[0][i] = (uint32_t)(i * 2654435761u) >> 24;
    ReportResolve(&host, 256, "StockResolve/256 colours over a bare look-up", "StockResolve/256 colours over a copy");
    ReportResolve(&host, 300, "StockResolve/300 colours over a bare look-up", "StockResolve/300 colours over a copy");
    return 0;
}
