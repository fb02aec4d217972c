// BenchReport.h -- what all benchmarks share: interleaved timing, medians, one result row per figure
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

// Which side of the goal is the good one.
enum class BenchGoal { AT_MOST, AT_LEAST, NONE };

// Makes the compiler believe that the value is used.
template <typename T> void KeepResult(const T &value)
{
    asm volatile("" : : "r"(&value) : "memory");
}

// 0 for no numbers at all. The mean of the two middle ones for an even count.
inline double Median(std::vector<double> afValue)
{
    if (afValue.empty())
        return 0;
    std::sort(afValue.begin(), afValue.end());
    const size_t nHalf = afValue.size() / 2;
    return afValue.size() % 2 ? afValue[nHalf] : (afValue[nHalf - 1] + afValue[nHalf]) / 2;
}

// Median of the ratios round by round: what slows the machine for a while slows both sides of a round.
inline double MedianRatio(const std::vector<double> &afFigure, const std::vector<double> &afReference)
{
    std::vector<double> afRatio;
    for (size_t i = 0; i < afFigure.size() && i < afReference.size(); i++)
        if (afReference[i] > 0)
            afRatio.push_back(afFigure[i] / afReference[i]);
    return Median(afRatio);
}

// Processor time of the calling thread: what it would need with a processor of its own, whoever else is busy.
inline double ThreadSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

// Microseconds of one call, measured over nCalls of them.
template <typename Fn> double TimeCalls(unsigned nCalls, Fn &&fn)
{
    const auto tStart = std::chrono::steady_clock::now();
    for (unsigned i = 0; i < nCalls; i++)
        fn();
    const std::chrono::duration<double, std::micro> dTaken = std::chrono::steady_clock::now() - tStart;
    return dTaken.count() / nCalls;
}

// Microseconds of processor time of one call, measured over nCalls of them: turns that others take do not count.
template <typename Fn> double CpuOfCalls(unsigned nCalls, Fn &&fn)
{
    const double fStart = ThreadSeconds();
    for (unsigned i = 0; i < nCalls; i++)
        fn();
    return (ThreadSeconds() - fStart) * 1e6 / nCalls;
}

// Times all functions in turn, round after round, after one round of warm-up, and calls fnBefore untimed before each.
// Microseconds per call: one list per function, one entry per round.
template <typename Before, typename... Fns>
std::array<std::vector<double>, sizeof...(Fns)> TimeInterleavedAfter(Before &&fnBefore, unsigned nRounds,
                                                                     unsigned nCalls, Fns &&...fns)
{
    std::array<std::vector<double>, sizeof...(Fns)> aafMicros;
    for (unsigned iRound = 0; iRound <= nRounds; iRound++) {
        size_t iFn = 0;
        const auto record = [&](double fMicros) {
            if (iRound > 0)
                aafMicros[iFn].push_back(fMicros);
            iFn++;
        };
        ((fnBefore(), record(TimeCalls(nCalls, fns))), ...);
    }
    return aafMicros;
}

template <typename... Fns>
std::array<std::vector<double>, sizeof...(Fns)> TimeInterleaved(unsigned nRounds, unsigned nCalls, Fns &&...fns)
{
    return TimeInterleavedAfter([] {}, nRounds, nCalls, fns...);
}

inline bool GoalIsMet(double fFigure, double fGoal, BenchGoal eGoal)
{
    return eGoal == BenchGoal::NONE || (eGoal == BenchGoal::AT_MOST ? fFigure <= fGoal : fFigure >= fGoal);
}

// Writes a number as JSON can hold it.
inline void FormatJsonNumber(char (&szNumber)[32], double f)
{
    if (std::isfinite(f))
        std::snprintf(szNumber, sizeof szNumber, "%.6g", f);
    else
        std::snprintf(szNumber, sizeof szNumber, "null");
}

// Prints one figure, and appends it as a row to the file that VD_BENCH_RESULTS names, one JSON object a line. Names and
// units are plain text without quotes. Without a goal, fGoal is not looked at and the row says null. Returns whether
// the goal is met; a result file that cannot be written ends the program, since a figure would be lost.
inline bool ReportFigure(const char *pszName, double fFigure, double fGoal, const char *pszUnit, BenchGoal eGoal)
{
    const bool bMet = std::isfinite(fFigure) && GoalIsMet(fFigure, fGoal, eGoal);
    char szFigure[32], szGoal[32];
    FormatJsonNumber(szFigure, fFigure);
    FormatJsonNumber(szGoal, eGoal == BenchGoal::NONE ? NAN : fGoal);
    std::printf("%-48s %12s %-6s", pszName, szFigure, pszUnit);
    if (eGoal != BenchGoal::NONE)
        std::printf(" goal %s %s: %s", eGoal == BenchGoal::AT_MOST ? "<=" : ">=", szGoal, bMet ? "met" : "MISSED");
    std::printf("\n");
    std::fflush(stdout);

    const char *pszResults = std::getenv("VD_BENCH_RESULTS");
    if (!pszResults || !*pszResults)
        return bMet;
    FILE *pFile = std::fopen(pszResults, "a");
    const int nWritten = !pFile ? -1
                                : std::fprintf(pFile,
                                               "{\"name\": \"%s\", \"figure\": %s, \"goal\": %s, \"unit\": \"%s\", "
                                               "\"met\": %s}\n",
                                               pszName, szFigure, szGoal, pszUnit, bMet ? "true" : "false");
    if (nWritten < 0 || std::fclose(pFile) != 0) {
        std::fprintf(stderr, "Cannot write the results file %s named by VD_BENCH_RESULTS\n", pszResults);
        std::exit(1);
    }
    return bMet;
}
