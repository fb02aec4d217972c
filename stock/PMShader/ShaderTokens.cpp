// ShaderTokens.cpp -- a shader's text as words
#include "ShaderTokens.h"

#include <algorithm>

namespace {

bool IsWordCharacter(char ch)
{
    return isalnum((unsigned char)ch) || ch == '_';
}

// A number takes its points and the sign of its exponent along.
size_t EndOfToken(const std::string &text, size_t i)
{
    const bool bNumber = isdigit((unsigned char)text[i]) ||
                         (text[i] == '.' && i + 1 < text.size() && isdigit((unsigned char)text[i + 1]));
    if (!bNumber && !IsWordCharacter(text[i]))
        return i + 1;
    const size_t iStart = i;
    while (i < text.size()) {
        const bool bSign = (text[i] == '+' || text[i] == '-') && i > iStart && (text[i - 1] | 32) == 'e' &&
                           text.compare(iStart, 2, "0x") != 0;
        if (!IsWordCharacter(text[i]) && !(bNumber && (text[i] == '.' || bSign)))
            break;
        i++;
    }
    return i;
}

// Brackets inside of a directive are its own affair: a macro ends with its line. One walk, since hostile files nest.
void MatchBrackets(std::vector<ShaderToken> *paToken)
{
    std::vector<size_t> aiOpen, aiDirective;
    uint32_t nDirective = 0;
    for (size_t i = 0; i < paToken->size(); i++) {
        ShaderToken &token = (*paToken)[i];
        token.iClosing = paToken->size();
        if (token.nDirective && token.nDirective != nDirective)
            aiDirective.clear();
        nDirective = token.nDirective ? token.nDirective : nDirective;
        std::vector<size_t> &aiHere = token.nDirective ? aiDirective : aiOpen;
        const char ch = token.text[0];
        if (ch == '(' || ch == '[' || ch == '{')
            aiHere.push_back(i);
        if (ch != ')' && ch != ']' && ch != '}')
            continue;
        const char chOpen = ch == ')' ? '(' : ch == ']' ? '[' : '{';
        while (!aiHere.empty() && (*paToken)[aiHere.back()].text[0] != chOpen)
            aiHere.pop_back();
        if (!aiHere.empty()) {
            (*paToken)[aiHere.back()].iClosing = i;
            aiHere.pop_back();
        }
    }
}

} // namespace

std::vector<ShaderToken> SplitShader(const std::string &text)
{
    std::vector<ShaderToken> aToken;
    int32_t nDepth = 0;
    uint32_t nDirectives = 0;
    bool bDirective = false, bLineStart = true;
    for (size_t i = 0; i < text.size();) {
        const char ch = text[i];
        if (ch == '\\' && i + 1 < text.size() && text[i + 1] == '\n') {
            i += 2;
        } else if (ch == '\n') {
            bLineStart = true;
            bDirective = false;
            i++;
        } else if (ch == ' ' || ch == '\t' || ch == '\v' || ch == '\f') {
            i++;
        } else {
            if (ch == '#' && bLineStart) {
                bDirective = true;
                nDirectives++;
            }
            bLineStart = false;
            const size_t iEnd = EndOfToken(text, i);
            if (!bDirective && (ch == ')' || ch == '}' || ch == ']'))
                nDepth = std::max(nDepth - 1, 0);
            aToken.push_back({{text.data() + i, iEnd - i}, i, nDepth, bDirective ? nDirectives : 0, 0});
            if (!bDirective && (ch == '(' || ch == '{' || ch == '['))
                nDepth++;
            i = iEnd;
        }
    }
    MatchBrackets(&aToken);
    return aToken;
}

bool IsWord(std::string_view text)
{
    return IsWordCharacter(text[0]) && !isdigit((unsigned char)text[0]);
}

bool IsWord(const ShaderToken &token)
{
    return IsWord(token.text);
}

bool IsNumber(const ShaderToken &token)
{
    return isdigit((unsigned char)token.text[0]) || (token.text[0] == '.' && token.text.size() > 1);
}
