// ShaderSize.cpp -- the sizes of a shader's buffers, which its author writes as formulas
#include "ShaderSize.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace {

#define FORMULA_DEPTH_MAX 32

struct Formula {
    const char *psz; // what is left
    const SizeLookup &lookup;
    int32_t nDepth;
    bool bGood;
};

struct Function {
    std::string_view name;
    int32_t nParts;
    double (*pfn)(double, double);
};
constexpr Function asFunction[] = {{"floor", 1, [](double a, double) { return std::floor(a); }},
                                   {"ceil", 1, [](double a, double) { return std::ceil(a); }},
                                   {"round", 1, [](double a, double) { return std::round(a); }},
                                   {"abs", 1, [](double a, double) { return std::abs(a); }},
                                   {"sqrt", 1, [](double a, double) { return std::sqrt(a); }},
                                   {"min", 2, [](double a, double b) { return std::min(a, b); }},
                                   {"max", 2, [](double a, double b) { return std::max(a, b); }},
                                   {"pow", 2, [](double a, double b) { return std::pow(a, b); }}};

double Sum(Formula *pFormula);

void SkipBlanks(Formula *pFormula)
{
    while (*pFormula->psz == ' ' || *pFormula->psz == '\t')
        pFormula->psz++;
}

// Takes the character if it is the next one, blanks aside.
bool Take(Formula *pFormula, char ch)
{
    SkipBlanks(pFormula);
    if (*pFormula->psz != ch)
        return false;
    pFormula->psz++;
    return true;
}

void Need(Formula *pFormula, char ch)
{
    pFormula->bGood = Take(pFormula, ch) && pFormula->bGood;
}

std::string_view TakeName(Formula *pFormula)
{
    const char *pszStart = pFormula->psz;
    while (isalnum((unsigned char)*pFormula->psz) || *pFormula->psz == '_')
        pFormula->psz++;
    return {pszStart, (size_t)(pFormula->psz - pszStart)};
}

double Call(Formula *pFormula)
{
    const std::string_view name = TakeName(pFormula);
    const auto it = std::find_if(std::begin(asFunction), std::end(asFunction),
                                 [&](const Function &function) { return function.name == name; });
    pFormula->bGood = pFormula->bGood && it != std::end(asFunction);
    if (!pFormula->bGood)
        return 0;
    Need(pFormula, '(');
    const double dFirst = Sum(pFormula);
    if (it->nParts == 2)
        Need(pFormula, ',');
    const double dSecond = it->nParts == 2 ? Sum(pFormula) : 0;
    Need(pFormula, ')');
    return it->pfn(dFirst, dSecond);
}

double Part(Formula *pFormula)
{
    double dSign = 1, dValue = 0;
    while (Take(pFormula, '-'))
        dSign = -dSign;
    if (Take(pFormula, '(')) {
        dValue = Sum(pFormula);
        Need(pFormula, ')');
    } else if (Take(pFormula, '$')) {
        pFormula->bGood = pFormula->lookup(TakeName(pFormula), &dValue) && pFormula->bGood;
    } else if (isdigit((unsigned char)*pFormula->psz) || *pFormula->psz == '.') {
        char *pszEnd = nullptr;
        dValue = strtod(pFormula->psz, &pszEnd);
        pFormula->bGood = pFormula->bGood && pszEnd > pFormula->psz;
        pFormula->psz = pszEnd;
    } else {
        dValue = Call(pFormula);
    }
    return dSign * dValue;
}

double Product(Formula *pFormula)
{
    double dValue = Part(pFormula);
    while (pFormula->bGood) {
        if (Take(pFormula, '*'))
            dValue *= Part(pFormula);
        else if (Take(pFormula, '/'))
            dValue /= Part(pFormula);
        else
            break;
    }
    return dValue;
}

double Sum(Formula *pFormula)
{
    pFormula->bGood = pFormula->bGood && ++pFormula->nDepth <= FORMULA_DEPTH_MAX;
    if (!pFormula->bGood)
        return 0;
    double dValue = Product(pFormula);
    while (pFormula->bGood) {
        if (Take(pFormula, '+'))
            dValue += Product(pFormula);
        else if (Take(pFormula, '-'))
            dValue -= Product(pFormula);
        else
            break;
    }
    pFormula->nDepth--;
    return dValue;
}

} // namespace

bool WorkOutSize(const std::string &formula, const SizeLookup &lookup, double *pdSize)
{
    Formula left = {formula.c_str(), lookup, 0, true};
    const double dSize = Sum(&left);
    SkipBlanks(&left);
    if (!left.bGood || *left.psz || !std::isfinite(dSize))
        return false;
    *pdSize = dSize;
    return true;
}
