// ShaderTokens.h -- a shader's text as words, for those who change it
#ifndef VORTICADE_SHADER_TOKENS_H
#define VORTICADE_SHADER_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct ShaderToken {
    std::string_view text; // into the shader's text
    size_t iAt;
    int32_t nDepth;      // of braces and parentheses around it; 0: the file's own level
    uint32_t nDirective; // which "#" line it stands in, from 1; 0: none
    size_t iClosing;     // of an opening bracket: the token that closes it; the number of tokens if none does
};

// The text has no comments left. An operator of several characters is several tokens.
std::vector<ShaderToken> SplitShader(const std::string &text);

bool IsWord(const ShaderToken &token);
bool IsWord(std::string_view text); // not empty
bool IsNumber(const ShaderToken &token);

#endif
