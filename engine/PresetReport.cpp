// PresetReport.cpp -- what a reader could not use, and how the user hears of it
#include "engine/PresetFile.h"

#include "platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

void AddToReport(PresetReport *pReport, std::string sLine)
{
    if (!pReport)
        return;
    // Names from a file may hold line ends, and sequences that steer a terminal.
    std::replace_if(
        sLine.begin(), sLine.end(), [](char ch) { return static_cast<u8>(ch) < 0x20 || ch == 0x7F; }, '?');
    if (pReport->asLine.size() < REPORT_LINES_MAX)
        pReport->asLine.push_back(std::move(sLine));
    else
        pReport->nMore++;
}

std::string DescribeFailure(std::u16string_view name, const PresetReport &report)
{
    return report.sFailure.empty() ? ToUtf8(name) + ": there is no such file, nor one in the preset folder"
                                   : report.sFailure;
}

void ReportPassedOver(const PresetReport &report)
{
    for (const std::string &sLine : report.asLine)
        std::fprintf(stderr, "%s: passed over: %s\n", program_invocation_short_name, sLine.c_str());
    if (report.nMore)
        std::fprintf(stderr, "%s: passed over: and %u more\n", program_invocation_short_name, report.nMore);
}

void SayReport(std::u16string_view name, const PresetReport &report)
{
    if (!report.sFailure.empty())
        std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, DescribeFailure(name, report).c_str());
    ReportPassedOver(report);
}
