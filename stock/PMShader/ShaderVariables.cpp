// ShaderVariables.cpp -- finds the variables of a shader that are declared without a value
#include "ShaderVariables.h"

#include <algorithm>
#include <utility>

namespace {

using Tokens = std::vector<ShaderToken>;

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

// "vec3", "ivec2", "mat4x3", "float".
bool IsPlainType(std::string_view word)
{
    if (IsOneOf(word, {"float", "int", "uint", "bool"}))
        return true;
    const auto IsSize = [](char ch) { return ch >= '2' && ch <= '4'; };
    if (word.starts_with("mat"))
        return (word.size() == 4 || (word.size() == 6 && word[4] == 'x')) && IsSize(word[3]) && IsSize(word.back());
    const size_t iName = IsOneOf(word.substr(0, 1), {"i", "u", "b"}) ? 1 : 0;
    return word.size() == iName + 4 && word.substr(iName, 3) == "vec" && IsSize(word.back());
}

// Whether a declaration may begin here: at the start of a statement or a for. The last two tokens are at hand as text.
bool BeginsBehind(std::string_view before, std::string_view last)
{
    return last == "(" ? before == "for" : IsOneOf(last, {"{", "}", ";", ":", "else", "do"});
}

size_t NextOf(const Tokens &aToken, size_t i)
{
    for (i++; i < aToken.size() && aToken[i].nDirective; i++) {
    }
    return std::min(i, aToken.size());
}

// What ends a value from i on: the comma or semicolon behind it, or something that has no place there.
size_t EndOfValue(const Tokens &aToken, size_t i)
{
    while (i < aToken.size() && !IsOneOf(aToken[i].text, {",", ";", ")", "}"})) {
        if (IsOneOf(aToken[i].text, {"(", "[", "{"}))
            i = aToken[i].iClosing;
        i = NextOf(aToken, i);
    }
    return i;
}

// iType: the type. Gives where it stopped: only "NAME, NAME = VALUE;" is understood.
size_t FindInDeclaration(const Tokens &aToken, size_t iType, std::vector<BareVariable> *pVariables)
{
    for (size_t i = iType;;) {
        const size_t iName = NextOf(aToken, i), iAfter = NextOf(aToken, iName);
        if (iAfter == aToken.size() || !IsWord(aToken[iName]) || aToken[iAfter].text == "(")
            return iType;
        if (IsOneOf(aToken[iAfter].text, {",", ";"}))
            pVariables->push_back({aToken[iName].iAt + aToken[iName].text.size(), aToken[iType].text});
        i = EndOfValue(aToken, iAfter);
        if (i == aToken.size() || aToken[i].text != ",")
            return i;
    }
}

} // namespace

std::vector<BareVariable> FindBareVariables(const Tokens &aToken)
{
    std::vector<BareVariable> aVariable;
    std::string_view before = ";", last = ";"; // without precisions
    for (size_t i = 0; i < aToken.size(); i++) {
        if (aToken[i].nDirective || IsOneOf(aToken[i].text, {"highp", "mediump", "lowp"}))
            continue;
        if (IsPlainType(aToken[i].text) && BeginsBehind(before, last))
            i = FindInDeclaration(aToken, i, &aVariable);
        // "struct NAME {", "uniform NAME {": what follows are members.
        else if (aToken[i].text == "{" && IsWord(last) && !IsOneOf(last, {"else", "do"}))
            i = aToken[i].iClosing;
        before = std::exchange(last, aToken[std::min(i, aToken.size() - 1)].text);
    }
    return aVariable;
}
