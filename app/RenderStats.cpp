// RenderStats.cpp -- what a headless run tells of itself: progress, and the times of its stages
#include "app/RenderStats.h"

#include "platform/Clock.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr i64 PROGRESS_EVERY_NS = 100000000;
constexpr u64 BAR_CELLS = 30;

i64 nLastShown = 0;
bool bBarShown = false;

double Percentile(std::vector<i64> an, double fShare)
{
    if (an.empty())
        return 0;
    const auto it = an.begin() + static_cast<std::ptrdiff_t>(fShare * static_cast<double>(an.size() - 1));
    std::nth_element(an.begin(), it, an.end());
    return static_cast<double>(*it) / 1e6;
}

} // namespace

void CountFrame(RenderStats *prs, const FrameStages &stages, i64 nWait)
{
    if (prs->anDraw.empty())
        prs->nStart = RealNanoseconds() - stages.nDraw - stages.nMix - stages.nPost - nWait;
    prs->anDraw.push_back(stages.nDraw);
    prs->anMix.push_back(stages.nMix);
    prs->anPost.push_back(stages.nPost);
    prs->anWait.push_back(nWait);
}

void CountWrite(RenderStats *prs, i64 nWrite)
{
    prs->anWrite.push_back(nWrite);
}

void ShowProgress(const RenderStats &rs, u64 nDone, u64 nFrames)
{
    static const bool bTerminal = isatty(STDERR_FILENO);
    const i64 nNow = RealNanoseconds();
    if (!bTerminal || (nNow - nLastShown < PROGRESS_EVERY_NS && nDone < nFrames))
        return;
    nLastShown = nNow;
    bBarShown = true;
    const double fSeconds = static_cast<double>(nNow - rs.nStart) / 1e9;
    const double fFps = nDone && fSeconds > 0 ? static_cast<double>(nDone) / fSeconds : 0;
    const std::string sLeft = fFps > 0 ? SpanText(static_cast<double>(nFrames - nDone) / fFps) + " left" : "";
    const std::string sBar(static_cast<size_t>(nDone * BAR_CELLS / nFrames), '#');
    std::fprintf(stderr, "\r[%-30s] %llu/%llu  %.1f frames a second, %s\033[K", sBar.c_str(),
                 static_cast<unsigned long long>(nDone), static_cast<unsigned long long>(nFrames), fFps, sLeft.c_str());
}

void EndProgress()
{
    if (bBarShown)
        std::fputc('\n', stderr);
    bBarShown = false;
}

void PrintStats(const RenderStats &rs)
{
    const struct {
        const char *pszName;
        const std::vector<i64> *pan;
    } aRow[] = {
        {"draw", &rs.anDraw}, {"mix", &rs.anMix}, {"post", &rs.anPost}, {"wait", &rs.anWait}, {"write", &rs.anWrite}};
    std::fprintf(stderr, "%-8s%12s%12s\n", "stage", "median ms", "99 % ms");
    for (const auto &row : aRow)
        std::fprintf(stderr, "%-8s%12.3f%12.3f\n", row.pszName, Percentile(*row.pan, 0.5), Percentile(*row.pan, 0.99));
}

std::string SpanText(double fSeconds)
{
    const u64 n = static_cast<u64>(std::clamp(fSeconds + 0.5, 0.0, 1e9));
    char szSpan[32];
    if (n >= 3600)
        std::snprintf(szSpan, sizeof szSpan, "%u:%02u:%02u", static_cast<u32>(n / 3600), static_cast<u32>(n / 60 % 60),
                      static_cast<u32>(n % 60));
    else
        std::snprintf(szSpan, sizeof szSpan, "%u:%02u", static_cast<u32>(n / 60), static_cast<u32>(n % 60));
    return szSpan;
}

std::string JsonText(const std::string &s)
{
    std::string sJson = "\"";
    for (const char c : s) {
        char szEscape[8] = {c, 0};
        if (c == '"' || c == '\\')
            std::snprintf(szEscape, sizeof szEscape, "\\%c", c);
        else if (static_cast<unsigned char>(c) < 0x20)
            std::snprintf(szEscape, sizeof szEscape, "\\u%04x", static_cast<unsigned>(c));
        sJson += szEscape;
    }
    return sJson + "\"";
}
