// ShaderLimits.cpp -- what no driver should be given: files that its compiler would choke on
#include "ShaderLimits.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>

namespace {

using Tokens = std::vector<ShaderToken>;

struct Size {
    double dWords, dOperators;
};
using Macros = std::map<std::string_view, Size>;

Size SizeOf(const Tokens &aToken, size_t i, const Macros &macros)
{
    const auto it = IsWord(aToken[i]) ? macros.find(aToken[i].text) : macros.end();
    // A sign before a number in a table is no operator.
    const bool bBehindValue =
        i > 0 && (IsWord(aToken[i - 1]) || IsNumber(aToken[i - 1]) || strchr(")]", aToken[i - 1].text[0]));
    return it != macros.end() ? it->second
                              : Size{1, bBehindValue && strchr("+-*/%&|^<>?", aToken[i].text[0]) ? 1.0 : 0.0};
}

// "#define NAME body": what the name stands for. Gives the end of the line.
size_t NoteMacro(const Tokens &aToken, size_t i, Macros *pMacros)
{
    const uint32_t nDirective = aToken[i].nDirective;
    const bool bDefine =
        i + 2 < aToken.size() && aToken[i + 1].text == "define" && aToken[i + 2].nDirective == nDirective;
    const std::string_view name = bDefine ? aToken[i + 2].text : "";
    Size size = {0, 0};
    for (i += bDefine ? 3u : 1u; i < aToken.size() && aToken[i].nDirective == nDirective; i++) {
        const Size part = SizeOf(aToken, i, *pMacros);
        size = {size.dWords + part.dWords, size.dOperators + part.dOperators};
    }
    Size &known = (*pMacros)[name];
    known = {std::max(known.dWords, size.dWords), std::max(known.dOperators, size.dOperators)};
    return i;
}

bool IsHugeArray(const Tokens &aToken, size_t i)
{
    return aToken[i].text == "[" && i + 1 < aToken.size() && IsNumber(aToken[i + 1]) &&
           strtod(std::string(aToken[i + 1].text).c_str(), nullptr) > SHADER_ARRAY_MAX;
}

} // namespace

const char *FindTooMuch(const Tokens &aToken, size_t *piToken)
{
    Macros macros;
    Size all = {}, statement = {};
    for (size_t i = 0; i < aToken.size(); i++) {
        *piToken = i;
        if (aToken[i].nDirective) {
            i = NoteMacro(aToken, i, &macros) - 1;
            continue;
        }
        const Size part = SizeOf(aToken, i, macros);
        all.dWords += part.dWords;
        statement.dOperators += part.dOperators;
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
