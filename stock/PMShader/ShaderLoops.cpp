// ShaderLoops.cpp -- finds the loops of a shader that might not end
#include "ShaderLoops.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>

namespace {

#define PLAIN_LOOP_STEPS_MAX 4096

using Tokens = std::vector<ShaderToken>;
using Constants = std::map<std::string_view, double>;

// Three parts of a for, as places of tokens: the first one, and one behind the last.
struct ForParts {
    size_t aiStart[3], aiEnd[3];
};

double NumberAt(const ShaderToken &token)
{
    return strtod(std::string(token.text).c_str(), nullptr);
}

// "#define NAME 64" and "const int NAME = 64;"
Constants FindConstants(const Tokens &aToken)
{
    Constants constants;
    for (size_t i = 0; i + 5 < aToken.size(); i++) {
        const bool bDefine = aToken[i].text == "#" && aToken[i + 1].text == "define";
        const bool bConst = aToken[i].text == "const" && aToken[i + 3].text == "=" && aToken[i + 5].text == ";";
        const size_t iNumber = bDefine ? i + 3 : i + 4;
        const bool bAlone = !bDefine || aToken[i + 4].nDirective != aToken[i].nDirective;
        if ((bDefine || bConst) && bAlone && IsNumber(aToken[iNumber]))
            constants[aToken[i + 2].text] = NumberAt(aToken[iNumber]);
    }
    return constants;
}

bool SplitFor(const Tokens &aToken, size_t iOpen, size_t iClose, ForParts *pParts)
{
    int32_t iPart = 0, nOpen = 0;
    pParts->aiStart[0] = iOpen + 1;
    for (size_t i = iOpen + 1; i < iClose; i++) {
        const char ch = aToken[i].text[0];
        nOpen += ch == '(' || ch == '[' ? 1 : ch == ')' || ch == ']' ? -1 : 0;
        if (ch != ';' || nOpen)
            continue;
        if (iPart == 2)
            return false;
        pParts->aiEnd[iPart++] = i;
        pParts->aiStart[iPart] = i + 1;
    }
    pParts->aiEnd[iPart] = iClose;
    return iPart == 2;
}

// "i < 64", "i <= N": whether it has this shape, and a bound that is a reasonable number.
bool CountsToNumber(const Tokens &aToken, size_t iStart, size_t iEnd, const Constants &constants)
{
    const bool bEqual = iEnd - iStart == 4 && aToken[iStart + 2].text == "=";
    if (iEnd - iStart != 3 && !bEqual)
        return false;
    const ShaderToken &bound = aToken[iEnd - 1];
    const auto it = constants.find(bound.text);
    if (aToken[iStart + 1].text != "<" || (!IsNumber(bound) && it == constants.end()))
        return false;
    return (IsNumber(bound) ? NumberAt(bound) : it->second) <= PLAIN_LOOP_STEPS_MAX;
}

// Whether anything from iStart to iEnd gives the counter a new value.
bool ChangesCounter(const Tokens &aToken, size_t iStart, size_t iEnd, std::string_view counter)
{
    for (size_t i = iStart; i < iEnd; i++) {
        if (aToken[i].text != counter)
            continue;
        const char chNext = i + 1 < aToken.size() ? aToken[i + 1].text[0] : ' ';
        const char chAfter = i + 2 < aToken.size() ? aToken[i + 2].text[0] : ' ';
        const bool bBefore = i >= 2 && (aToken[i - 1].text == "+" || aToken[i - 1].text == "-") &&
                             aToken[i - 2].text == aToken[i - 1].text;
        if (bBefore || (chNext == '=' && chAfter != '=') ||
            (strchr("+-*/%&|^", chNext) && (chAfter == '=' || chAfter == chNext)))
            return true;
    }
    return false;
}

size_t EndOfBody(const Tokens &aToken, size_t iClose)
{
    size_t i = iClose + 1;
    if (i < aToken.size() && aToken[i].text == "{")
        return ClosingToken(aToken, i);
    while (i < aToken.size() && aToken[i].text != ";")
        i++;
    return i;
}

// "int i = 0", "float f = 1.0"
bool StartsAtNumber(const Tokens &aToken, size_t iStart, size_t iEnd, std::string_view counter)
{
    if (iEnd - iStart != 4 || aToken[iStart + 1].text != counter || aToken[iStart + 2].text != "=")
        return false;
    return IsWord(aToken[iStart]) && IsNumber(aToken[iStart + 3]);
}

// "i++", "++i", "i += 2"
bool StepsUp(const Tokens &aToken, size_t iStart, size_t iEnd, std::string_view counter)
{
    const auto Is = [&](size_t i, std::string_view text) { return aToken[iStart + i].text == text; };
    if (iEnd - iStart == 3)
        return (Is(0, counter) && Is(1, "+") && Is(2, "+")) || (Is(0, "+") && Is(1, "+") && Is(2, counter));
    return iEnd - iStart == 4 && Is(0, counter) && Is(1, "+") && Is(2, "=") && IsNumber(aToken[iStart + 3]) &&
           NumberAt(aToken[iStart + 3]) >= 1;
}

// "for (int i = 0; i < 64; i++)" with a body that leaves i alone.
bool CountsByItself(const Tokens &aToken, const ForParts &parts, size_t iClose, const Constants &constants)
{
    const size_t iCondition = parts.aiStart[1];
    if (parts.aiEnd[1] <= iCondition || !IsWord(aToken[iCondition]))
        return false;
    const std::string_view counter = aToken[iCondition].text;
    return StartsAtNumber(aToken, parts.aiStart[0], parts.aiEnd[0], counter) &&
           CountsToNumber(aToken, iCondition, parts.aiEnd[1], constants) &&
           StepsUp(aToken, parts.aiStart[2], parts.aiEnd[2], counter) &&
           !ChangesCounter(aToken, iClose + 1, EndOfBody(aToken, iClose), counter);
}

size_t TextEnd(const ShaderToken &token)
{
    return token.iAt + token.text.size();
}

void FindInLoop(const Tokens &aToken, size_t i, const Constants &constants, std::vector<LoopCondition> *pLoops)
{
    const size_t iOpen = i + 1, iClose = ClosingToken(aToken, iOpen);
    if (iClose == aToken.size())
        return;
    if (aToken[i].text == "while") {
        pLoops->push_back({TextEnd(aToken[iOpen]), aToken[iClose].iAt});
        return;
    }
    ForParts parts;
    if (!SplitFor(aToken, iOpen, iClose, &parts) || CountsByItself(aToken, parts, iClose, constants))
        return;
    const size_t iText = TextEnd(aToken[parts.aiStart[1] - 1]);
    const bool bEmpty = parts.aiStart[1] == parts.aiEnd[1];
    pLoops->push_back({iText, bEmpty ? iText : aToken[parts.aiEnd[1]].iAt});
}

} // namespace

std::vector<LoopCondition> FindOpenLoops(const Tokens &aToken)
{
    const Constants constants = FindConstants(aToken);
    std::vector<LoopCondition> aLoop;
    for (size_t i = 0; i + 1 < aToken.size(); i++)
        if ((aToken[i].text == "for" || aToken[i].text == "while") && aToken[i + 1].text == "(")
            FindInLoop(aToken, i, constants, &aLoop);
    return aLoop;
}
