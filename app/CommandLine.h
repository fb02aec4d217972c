// CommandLine.h -- options by table, for both programs
#pragma once

#include "platform/BaseTypes.h"

#include <span>
#include <string>
#include <vector>

// One option. Without pszArgument it is a switch and pfnSet receives an empty text.
struct OptionRow {
    const char *pszName;     // with its two dashes
    const char *pszArgument; // name of the argument in the help; null: none
    const char *pszHelp;
    bool (*pfnSet)(void *pOptions, const std::string &sValue); // false: the value is not usable
};

// Reads the options of a command line into pOptions; "--name value", "--name=value"; "--" ends them. What is no
// option goes to *pOperands. False with one clear line in *psError for an unknown option or an unusable value.
bool ParseCommandLine(std::span<const OptionRow> rows, int argc, char **argv, void *pOptions,
                      std::vector<std::string> *pOperands, std::string *psError);

// The options, a line each, aligned.
std::string OptionHelp(std::span<const OptionRow> rows);

// The whole text as a number within the limits; false otherwise.
bool ParseNumber(const std::string &s, i64 nMin, i64 nMax, i64 *pn);
bool ParseNumber(const std::string &s, u64 *pqw);
bool ParseNumber(const std::string &s, double fMin, double fMax, double *pf);
