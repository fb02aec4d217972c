// ShaderLimits.cpp -- what no driver should be given: files that its compiler would choke on
#include "ShaderLimits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>

namespace {

using Tokens = std::vector<ShaderToken>;

#define MACRO_DEPTH_MAX 64
#define TOO_MUCH 1e15 // more than every limit, and still a number after some sums and products

// What a name stands for in the end.
struct Load {
    double dWords, dOperators;
    double dTimes; // how often it repeats the argument that it repeats most; 0: it takes none
};
constexpr Load TooMuch = {TOO_MUCH, TOO_MUCH, TOO_MUCH};

// "#define NAME(PARAMETERS) body"; iEnd is behind the line.
struct Definition {
    std::string_view name;
    size_t iBody, iEnd;
    std::map<std::string_view, double> times; // by parameter
};

struct Macro {
    std::vector<Definition> aDefinition;
    bool bMeasuring, bMeasured;
    Load load; // of the largest definition
};

// Macros stand for what is defined at their use, wherever that is in the file.
struct Macros {
    const Tokens &aToken;
    std::map<std::string_view, Macro> byName;
};

// The parentheses of macros around a place.
struct Call {
    size_t iClosing;
    double dTimes; // how often all of them together repeat what is between them
};

void AddLoad(Load *pLoad, const Load &part, double dTimes)
{
    pLoad->dWords = std::min(pLoad->dWords + part.dWords * dTimes, TOO_MUCH);
    pLoad->dOperators = std::min(pLoad->dOperators + part.dOperators * dTimes, TOO_MUCH);
}

double TimesAround(std::vector<Call> *paCall, size_t i)
{
    while (!paCall->empty() && paCall->back().iClosing <= i)
        paCall->pop_back();
    return paCall->empty() ? 1 : paCall->back().dTimes;
}

Load LoadOf(Macros *pMacros, std::string_view name, int32_t nDepth);

// What the token at i adds. outer: the macro in whose body it stands, whose name means nothing there; empty: none.
Load LoadAt(Macros *pMacros, size_t i, std::string_view outer, int32_t nDepth, std::vector<Call> *paCall)
{
    const Tokens &aToken = pMacros->aToken;
    const double dTimes = TimesAround(paCall, i);
    // A sign before a number in a table is no operator.
    const bool bBehindValue =
        i > 0 && (IsWord(aToken[i - 1]) || IsNumber(aToken[i - 1]) || strchr(")]", aToken[i - 1].text[0]));
    Load load = {}, own = {1, bBehindValue && strchr("+-*/%&|^<>?", aToken[i].text[0]) ? 1.0 : 0.0, 0};
    if (IsWord(aToken[i]) && aToken[i].text != outer && pMacros->byName.contains(aToken[i].text)) {
        own = LoadOf(pMacros, aToken[i].text, nDepth + 1);
        const bool bInMacro = !outer.empty() || !paCall->empty();
        const bool bCalled = i + 1 < aToken.size() && aToken[i + 1].text == "(";
        if (bCalled && own.dTimes > 0)
            paCall->push_back({aToken[i + 1].iClosing, std::min(dTimes * own.dTimes, TOO_MUCH)});
        else if (bInMacro && own.dTimes > 1)
            own = TooMuch; // another macro may put the parentheses behind it
    }
    AddLoad(&load, own, dTimes);
    return load;
}

Load MeasureDefinition(Macros *pMacros, Definition *pDefinition, int32_t nDepth)
{
    Load load = {};
    std::vector<Call> aCall;
    for (size_t i = pDefinition->iBody; i < pDefinition->iEnd; i++) {
        AddLoad(&load, LoadAt(pMacros, i, pDefinition->name, nDepth, &aCall), 1);
        if (const auto it = pDefinition->times.find(pMacros->aToken[i].text); it != pDefinition->times.end())
            it->second += TimesAround(&aCall, i);
    }
    for (const auto &[name, dTimes] : pDefinition->times)
        load.dTimes = std::max(load.dTimes, std::clamp(dTimes, 1.0, TOO_MUCH));
    return load;
}

Load LoadOf(Macros *pMacros, std::string_view name, int32_t nDepth)
{
    Macro &macro = pMacros->byName[name];
    if (macro.bMeasured)
        return macro.load;
    if (macro.bMeasuring || nDepth > MACRO_DEPTH_MAX)
        return TooMuch; // macros in a circle
    macro.bMeasuring = true;
    for (Definition &definition : macro.aDefinition) {
        const Load load = MeasureDefinition(pMacros, &definition, nDepth);
        macro.load = {std::max(macro.load.dWords, load.dWords), std::max(macro.load.dOperators, load.dOperators),
                      std::max(macro.load.dTimes, load.dTimes)};
    }
    macro.bMeasured = true;
    return macro.load;
}

size_t EndOfDirective(const Tokens &aToken, size_t i)
{
    const uint32_t nDirective = aToken[i].nDirective;
    while (i < aToken.size() && aToken[i].nDirective == nDirective)
        i++;
    return i;
}

bool IsDefine(const Tokens &aToken, size_t i)
{
    return aToken[i].text == "#" && i + 2 < aToken.size() && aToken[i + 1].text == "define" && aToken[i].nDirective &&
           aToken[i + 2].nDirective == aToken[i].nDirective;
}

void NoteDefinition(Macros *pMacros, size_t i, size_t iEnd)
{
    const Tokens &aToken = pMacros->aToken;
    const ShaderToken &name = aToken[i + 2];
    Definition definition = {name.text, i + 3, iEnd, {}};
    if (i + 3 < iEnd && aToken[i + 3].text == "(" && aToken[i + 3].iAt == name.iAt + name.text.size()) {
        definition.iBody = std::min(aToken[i + 3].iClosing + 1, iEnd);
        for (size_t iName = i + 4; iName < definition.iBody; iName++)
            if (IsWord(aToken[iName]))
                definition.times[aToken[iName].text] = 0;
    }
    pMacros->byName[name.text].aDefinition.push_back(std::move(definition));
}

void NoteDefinitions(Macros *pMacros)
{
    for (size_t i = 0; i < pMacros->aToken.size(); i++)
        if (IsDefine(pMacros->aToken, i))
            NoteDefinition(pMacros, i, EndOfDirective(pMacros->aToken, i));
}

bool IsHugeArray(const Tokens &aToken, size_t i)
{
    return aToken[i].text == "[" && i + 1 < aToken.size() && IsNumber(aToken[i + 1]) &&
           strtod(std::string(aToken[i + 1].text).c_str(), nullptr) > SHADER_ARRAY_MAX;
}

} // namespace

const char *FindTooMuch(const Tokens &aToken, size_t *piToken)
{
    Macros macros = {aToken, {}};
    NoteDefinitions(&macros);
    std::vector<Call> aCall;
    Load all = {}, statement = {};
    for (size_t i = 0; i < aToken.size(); i++) {
        *piToken = i;
        if (IsDefine(aToken, i)) {
            i = EndOfDirective(aToken, i) - 1;
            continue;
        }
        const Load load = LoadAt(&macros, i, "", 0, &aCall);
        AddLoad(&all, load, 1);
        AddLoad(&statement, load, 1);
        if (strchr(";{}", aToken[i].text[0]))
            statement = {};
        if (all.dWords > SHADER_WORDS_MAX)
            return "the shader has more words than it may have, its macros put in";
        if (statement.dOperators > SHADER_OPERATORS_MAX)
            return "a statement has more operators than it may have";
        if (IsHugeArray(aToken, i))
            return "an array has at most 16384 elements";
    }
    return nullptr;
}
