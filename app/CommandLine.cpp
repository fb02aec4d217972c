// CommandLine.cpp -- options by table, for both programs
#include "app/CommandLine.h"

#include <algorithm>
#include <charconv>

namespace {

const OptionRow *FindOption(std::span<const OptionRow> rows, const std::string &sName)
{
    const auto it = std::find_if(rows.begin(), rows.end(), [&](const OptionRow &row) { return sName == row.pszName; });
    return it == rows.end() ? nullptr : &*it;
}

template <typename Number> bool ParseWhole(const std::string &s, Number *pn)
{
    const auto [pszEnd, ec] = std::from_chars(s.data(), s.data() + s.size(), *pn);
    return ec == std::errc() && pszEnd == s.data() + s.size() && !s.empty();
}

} // namespace

bool ParseCommandLine(std::span<const OptionRow> rows, int argc, char **argv, void *pOptions,
                      std::vector<std::string> *pOperands, std::string *psError)
{
    bool bOptionsEnded = false;
    for (int i = 1; i < argc; i++) {
        const std::string s = argv[i];
        if (bOptionsEnded || s.size() < 2 || s[0] != '-') {
            pOperands->push_back(s);
            continue;
        }
        if (s == "--") {
            bOptionsEnded = true;
            continue;
        }
        const size_t iEqual = s.find('=');
        const std::string sName = s.substr(0, iEqual);
        const OptionRow *prow = FindOption(rows, sName);
        if (!prow) {
            *psError = "unknown option " + sName + "; --help lists them all";
            return false;
        }
        std::string sValue;
        if (iEqual != std::string::npos)
            sValue = s.substr(iEqual + 1);
        else if (prow->pszArgument && i + 1 < argc)
            sValue = argv[++i];
        const bool bWrongKind = prow->pszArgument ? sValue.empty() : iEqual != std::string::npos;
        if (bWrongKind || !prow->pfnSet(pOptions, sValue)) {
            *psError = prow->pszArgument ? sName + " needs " + prow->pszArgument + ": " + prow->pszHelp
                                         : sName + " takes no value";
            return false;
        }
    }
    return true;
}

std::string OptionHelp(std::span<const OptionRow> rows)
{
    constexpr size_t HELP_COLUMN = 22;
    std::string s;
    for (const OptionRow &row : rows) {
        std::string sLine =
            std::string("  ") + row.pszName + (row.pszArgument ? std::string(" ") + row.pszArgument : "");
        sLine.resize(std::max(sLine.size() + 2, HELP_COLUMN), ' ');
        s += sLine + row.pszHelp + "\n";
    }
    return s;
}

bool ParseNumber(const std::string &s, i64 nMin, i64 nMax, i64 *pn)
{
    return ParseWhole(s, pn) && *pn >= nMin && *pn <= nMax;
}

bool ParseNumber(const std::string &s, u64 *pqw)
{
    return ParseWhole(s, pqw);
}

bool ParseNumber(const std::string &s, double fMin, double fMax, double *pf)
{
    return ParseWhole(s, pf) && *pf >= fMin && *pf <= fMax;
}
