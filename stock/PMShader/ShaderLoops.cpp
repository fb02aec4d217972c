// ShaderLoops.cpp -- finds the loops of a shader that might not end
#include "ShaderLoops.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

namespace {

#define PLAIN_LOOP_STEPS_MAX 4096
#define PLAIN_NEST_STEPS_MAX 65536.0 // of loops inside of each other
#define PLAIN_NEST_DEPTH_MAX 8

using Tokens = std::vector<ShaderToken>;

// What is known of the whole file before its loops are looked at.
struct LoopFacts {
    std::map<std::string_view, double> constants;
    std::set<std::string_view> others; // declared or given a value elsewhere: no constants, whatever else they are
    std::set<std::string_view> macros, inMacros; // their names; the words that they are made of
    std::set<std::string_view> changedInMacros;  // "NAME++" in a #define
    bool bArgumentsChange;                       // a function or a macro gives an argument of it a new value
    bool bMacrosHide;                            // who knows what: they change each other, or end with an operator
};

// A loop around the place that is looked at.
struct OuterLoop {
    size_t iEnd;
    double dSteps; // of it and all around it
};

// The walk through the file.
struct LoopSearch {
    const Tokens &aToken;
    const LoopFacts &facts;
    std::vector<OuterLoop> aOuter;
    std::vector<LoopCondition> aOpen, aPlain;
    std::map<std::string_view, double> steps; // of a function: what plain loops may take in it, calls of it included
    std::string_view function;                // at whose body the walk is
    double dMost;                             // of all functions
};

// Three parts of a for, as places of tokens: the first one, and one behind the last.
struct ForParts {
    size_t aiStart[3], aiEnd[3];
};

double NumberAt(const ShaderToken &token)
{
    return strtod(std::string(token.text).c_str(), nullptr);
}

// "#define NAME 64" and "const int NAME = 64;", i being the name. Where it has several, the largest counts.
bool NoteConstant(const Tokens &aToken, size_t i, LoopFacts *pFacts)
{
    const bool bDefine = aToken[i - 2].text == "#" && aToken[i - 1].text == "define";
    const bool bConst = aToken[i - 2].text == "const" && aToken[i + 1].text == "=" && aToken[i + 3].text == ";";
    const size_t iNumber = bDefine ? i + 1 : i + 2;
    const bool bAlone = !bDefine || (aToken[i + 1].nDirective == aToken[i].nDirective &&
                                     aToken[i + 2].nDirective != aToken[i].nDirective);
    if (!(bDefine || bConst) || !bAlone || !IsNumber(aToken[iNumber]))
        return false;
    double &dValue = pFacts->constants[aToken[i].text];
    dValue = std::max(dValue, NumberAt(aToken[iNumber]));
    return true;
}

// Whether what stands from iFirst to iLast gets a new value there: "i++", "--i", "i *= 2", "i = 0", "(i).x = 0".
bool IsChanged(const Tokens &aToken, size_t iFirst, size_t iLast)
{
    const auto TextAt = [&](size_t i) { return i < aToken.size() ? aToken[i].text : " "; };
    for (;;) {
        if (iFirst > 0 && aToken[iFirst - 1].text == "(" && TextAt(iLast + 1) == ")") {
            iFirst--;
            iLast++;
        } else if (TextAt(iLast + 1) == "." && iLast + 2 < aToken.size()) {
            iLast += 2;
        } else {
            break;
        }
    }
    const char chNext = TextAt(iLast + 1)[0], chAfter = TextAt(iLast + 2)[0];
    const bool bBefore = iFirst >= 2 && (aToken[iFirst - 1].text == "+" || aToken[iFirst - 1].text == "-") &&
                         aToken[iFirst - 2].text == aToken[iFirst - 1].text;
    const bool bShifted = strchr("<>", chNext) && chAfter == chNext && TextAt(iLast + 3) == "=";
    return bBefore || bShifted || (chNext == '=' && chAfter != '=') ||
           (strchr("+-*/%&|^", chNext) && (chAfter == '=' || chAfter == chNext));
}

// A macro beside the word may be an operator.
bool HasMacroBeside(const Tokens &aToken, size_t i, const LoopFacts &facts)
{
    const bool bBefore = i >= 2 && facts.macros.contains(aToken[i - 1].text) && aToken[i - 2].text != "define";
    return bBefore || (i + 1 < aToken.size() && aToken[i + 1].nDirective == aToken[i].nDirective &&
                       facts.macros.contains(aToken[i + 1].text));
}

// "inout int i", of whatever type a counter may have.
bool HandsNumberBack(const Tokens &aToken, size_t i)
{
    if (aToken[i].text != "inout" && aToken[i].text != "out")
        return false;
    const size_t iType = i + (aToken[i + 1].text.ends_with("p") ? 2u : 1u); // behind highp and its like
    return iType < aToken.size() &&
           (aToken[iType].text == "int" || aToken[iType].text == "uint" || aToken[iType].text == "float");
}

bool IsDefined(const Tokens &aToken, size_t i)
{
    return i > 0 && aToken[i].nDirective && aToken[i - 1].text == "define";
}

// "int NAME", "in float NAME", "#undef NAME", but no mention of it.
bool IsDeclared(const Tokens &aToken, size_t i)
{
    static const std::set<std::string_view> mentions = {"return", "else", "case", "ifdef",
                                                        "ifndef", "if",   "elif", "defined"};
    return IsWord(aToken[i - 1]) && !mentions.contains(aToken[i - 1].text);
}

void NoteMacroWord(const Tokens &aToken, size_t i, bool bOwnCounter, LoopFacts *pFacts)
{
    pFacts->inMacros.insert(aToken[i].text);
    if (!bOwnCounter && (IsChanged(aToken, i, i) || HasMacroBeside(aToken, i, *pFacts)))
        pFacts->changedInMacros.insert(aToken[i].text);
}

LoopFacts FindFacts(const Tokens &aToken)
{
    LoopFacts facts = {};
    size_t iForEnd = 0; // a macro that is a whole loop steps the counter that it declares
    std::string_view counter;
    for (size_t i = 0; i < aToken.size(); i++)
        if (IsDefined(aToken, i))
            facts.macros.insert(aToken[i].text);
    for (size_t i = 2; i + 3 < aToken.size(); i++) {
        facts.bArgumentsChange |= HandsNumberBack(aToken, i);
        const bool bLineEnds = aToken[i].nDirective && aToken[i + 1].nDirective != aToken[i].nDirective;
        facts.bMacrosHide |= bLineEnds && strchr("+-*/%&|^<>=", aToken[i].text[0]);
        if (!IsWord(aToken[i]))
            continue;
        if (!NoteConstant(aToken, i, &facts) && (IsDeclared(aToken, i) || IsChanged(aToken, i, i)))
            facts.others.insert(aToken[i].text);
        if (aToken[i].nDirective && aToken[i].text == "for" && aToken[i + 1].text == "(") {
            iForEnd = aToken[i + 1].iClosing;
            const bool bDeclares = aToken[i + 2].text == "int" || aToken[i + 2].text == "float";
            counter = bDeclares ? aToken[i + 3].text : "";
        }
        if (aToken[i].nDirective && !IsDefined(aToken, i) && aToken[i - 1].text != "#")
            NoteMacroWord(aToken, i, i < iForEnd && aToken[i].text == counter, &facts);
    }
    facts.bArgumentsChange |= !facts.changedInMacros.empty();
    for (const std::string_view name : facts.changedInMacros)
        facts.bMacrosHide |= facts.macros.contains(name);
    return facts;
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

// "i < 64", "i <= N": the number, or 0 if the condition has another shape or a bound that is not reasonable.
double BoundOf(const Tokens &aToken, size_t iStart, size_t iEnd, const LoopFacts &facts)
{
    const bool bEqual = iEnd - iStart == 4 && aToken[iStart + 2].text == "=";
    if (iEnd - iStart != 3 && !bEqual)
        return 0;
    const ShaderToken &bound = aToken[iEnd - 1];
    const auto it = facts.others.contains(bound.text) ? facts.constants.end() : facts.constants.find(bound.text);
    if (aToken[iStart + 1].text != "<" || (!IsNumber(bound) && it == facts.constants.end()))
        return 0;
    const double dBound = IsNumber(bound) ? NumberAt(bound) : it->second;
    return dBound <= PLAIN_LOOP_STEPS_MAX ? std::max(dBound, 1.0) : 0;
}

// "NAME(x) = 0": what the macro makes of its argument.
bool ChangesCall(const Tokens &aToken, size_t i)
{
    return i + 1 < aToken.size() && aToken[i + 1].text == "(" && aToken[i + 1].iClosing < aToken.size() &&
           IsChanged(aToken, i, aToken[i + 1].iClosing);
}

// Whether anything from iStart to iEnd gives the counter a new value, be it by another name.
bool ChangesCounter(const Tokens &aToken, size_t iStart, size_t iEnd, std::string_view counter, const LoopFacts &facts)
{
    if (facts.changedInMacros.contains(counter) || facts.macros.contains(counter) || facts.bMacrosHide)
        return true;
    const bool bOtherNames = facts.inMacros.contains(counter);
    for (size_t i = iStart; i < iEnd; i++) {
        const bool bCounter = aToken[i].text == counter, bMacro = facts.macros.contains(aToken[i].text);
        const bool bAlone = strchr("(,", aToken[i - 1].text[0]) && i + 1 < iEnd && strchr(",)", aToken[i + 1].text[0]);
        if ((bCounter && HasMacroBeside(aToken, i, facts)) || (bMacro && ChangesCall(aToken, i)))
            return true;
        if ((bCounter || (bMacro && bOtherNames)) && (IsChanged(aToken, i, i) || (bAlone && facts.bArgumentsChange)))
            return true;
    }
    return false;
}

// The end of the statement behind iClose, which may itself be an if, a for, a do.
size_t EndOfBody(const Tokens &aToken, size_t iClose)
{
    for (size_t i = iClose + 1; i < aToken.size(); i++) {
        const char ch = aToken[i].text[0];
        if (ch == '(' || ch == '[' || ch == '{')
            i = std::min(aToken[i].iClosing, aToken.size() - 1);
        const std::string_view next = i + 1 < aToken.size() ? aToken[i + 1].text : ";";
        if ((ch == ';' && next != "else") || (ch == '{' && next != "else" && next != "while"))
            return i;
    }
    return aToken.size();
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

// "for (int i = 0; i < 64; i++)" with a body that leaves i alone: the number of steps at most; 0: another loop.
double StepsOf(const Tokens &aToken, const ForParts &parts, size_t iClose, size_t iEnd, const LoopFacts &facts)
{
    const size_t iCondition = parts.aiStart[1];
    if (parts.aiEnd[1] <= iCondition || !IsWord(aToken[iCondition]))
        return 0;
    const std::string_view counter = aToken[iCondition].text;
    const bool bCounts = StartsAtNumber(aToken, parts.aiStart[0], parts.aiEnd[0], counter) &&
                         StepsUp(aToken, parts.aiStart[2], parts.aiEnd[2], counter) &&
                         !ChangesCounter(aToken, iClose + 1, iEnd, counter, facts);
    return bCounts ? BoundOf(aToken, iCondition, parts.aiEnd[1], facts) : 0;
}

size_t TextEnd(const ShaderToken &token)
{
    return token.iAt + token.text.size();
}

double StepsAround(LoopSearch *pSearch, size_t i)
{
    std::vector<OuterLoop> &aOuter = pSearch->aOuter;
    while (!aOuter.empty() && aOuter.back().iEnd < i)
        aOuter.pop_back();
    return aOuter.empty() ? 1 : aOuter.back().dSteps;
}

void CountSteps(LoopSearch *pSearch, double dSteps)
{
    double &dAll = pSearch->steps[pSearch->function];
    dAll = std::min(dAll + dSteps, 1e18);
    pSearch->dMost = std::max(pSearch->dMost, dAll);
}

void FindInFor(LoopSearch *pSearch, size_t iOpen)
{
    const Tokens &aToken = pSearch->aToken;
    const size_t iClose = aToken[iOpen].iClosing;
    const double dAround = StepsAround(pSearch, iOpen);
    ForParts parts;
    if (!SplitFor(aToken, iOpen, iClose, &parts))
        return;
    double dSteps = 0;
    if (pSearch->aOuter.size() < PLAIN_NEST_DEPTH_MAX) {
        const size_t iEnd = EndOfBody(aToken, iClose);
        dSteps = dAround * StepsOf(aToken, parts, iClose, iEnd, pSearch->facts);
        dSteps = dSteps <= PLAIN_NEST_STEPS_MAX ? dSteps : 0;
        pSearch->aOuter.push_back({iEnd, dSteps > 0 ? dSteps : dAround});
        CountSteps(pSearch, dSteps);
    }
    const size_t iText = TextEnd(aToken[parts.aiStart[1] - 1]);
    const bool bEmpty = parts.aiStart[1] == parts.aiEnd[1];
    (dSteps > 0 ? pSearch->aPlain : pSearch->aOpen).push_back({iText, bEmpty ? iText : aToken[parts.aiEnd[1]].iAt});
}

// "NAME(" at the file's own level begins a function, elsewhere it calls one.
void NoteFunction(LoopSearch *pSearch, size_t i)
{
    const ShaderToken &name = pSearch->aToken[i];
    if (name.nDirective || pSearch->aToken[i + 1].text != "(")
        return;
    if (name.nDepth == 0)
        pSearch->function = name.text;
    else if (const auto it = pSearch->steps.find(name.text); it != pSearch->steps.end())
        CountSteps(pSearch, StepsAround(pSearch, i) * it->second);
}

bool BeginsLoop(const Tokens &aToken, size_t i)
{
    return aToken[i].text == "for" || aToken[i].text == "while";
}

// Whether the loop's parentheses stand where its word does: all in the text, or all in one macro.
bool IsWholeLoop(const Tokens &aToken, size_t i)
{
    return i + 1 < aToken.size() && aToken[i + 1].text == "(" && aToken[i + 1].nDirective == aToken[i].nDirective &&
           aToken[i + 1].iClosing < aToken.size();
}

} // namespace

std::vector<LoopCondition> FindOpenLoops(const Tokens &aToken, double dPlainMost)
{
    const LoopFacts facts = FindFacts(aToken);
    LoopSearch search = {aToken, facts, {}, {}, {}, {}, {}, 0};
    for (size_t i = 0; i + 1 < aToken.size(); i++) {
        if (!BeginsLoop(aToken, i))
            NoteFunction(&search, i);
        else if (IsWholeLoop(aToken, i) && aToken[i].text == "for")
            FindInFor(&search, i + 1);
        else if (IsWholeLoop(aToken, i))
            search.aOpen.push_back({TextEnd(aToken[i + 1]), aToken[aToken[i + 1].iClosing].iAt});
    }
    if (search.dMost > dPlainMost)
        search.aOpen.insert(search.aOpen.end(), search.aPlain.begin(), search.aPlain.end());
    return search.aOpen;
}

size_t FindHiddenLoop(const Tokens &aToken)
{
    for (size_t i = 0; i < aToken.size(); i++) {
        const bool bJoins = aToken[i].text == "#" && i > 0 && aToken[i - 1].text == "#" &&
                            aToken[i].nDirective == aToken[i - 1].nDirective;
        if (bJoins || (BeginsLoop(aToken, i) && !IsWholeLoop(aToken, i)))
            return i;
    }
    return aToken.size();
}
