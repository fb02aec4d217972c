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
            aToken.push_back({{text.data() + i, iEnd - i}, i, nDepth, bDirective ? nDirectives : 0});
            if (!bDirective && (ch == '(' || ch == '{' || ch == '['))
                nDepth++;
            i = iEnd;
        }
    }
    return aToken;
}

bool IsWord(const ShaderToken &token)
{
    return IsWordCharacter(token.text[0]) && !isdigit((unsigned char)token.text[0]);
}

bool IsNumber(const ShaderToken &token)
{
    return isdigit((unsigned char)token.text[0]) || (token.text[0] == '.' && token.text.size() > 1);
}

size_t ClosingToken(const std::vector<ShaderToken> &aToken, size_t i)
{
    const uint32_t nDirective = aToken[i].nDirective;
    const char chOpen = aToken[i].text[0], chClose = chOpen == '(' ? ')' : chOpen == '{' ? '}' : ']';
    int32_t nOpen = 0;
    for (; i < aToken.size(); i++) {
        if (aToken[i].nDirective != nDirective) {
            if (nDirective)
                break; // a macro ends with its line
            continue;
        }
        nOpen += aToken[i].text[0] == chOpen ? 1 : aToken[i].text[0] == chClose ? -1 : 0;
        if (nOpen == 0)
            return i;
    }
    return aToken.size();
}
