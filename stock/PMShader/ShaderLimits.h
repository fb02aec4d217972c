// ShaderLimits.h -- what no driver should be given: files that its compiler would choke on
#ifndef VORTICADE_SHADER_LIMITS_H
#define VORTICADE_SHADER_LIMITS_H

#include "ShaderTokens.h"

#define SHADER_WORDS_MAX 400000   // with macros put in
#define SHADER_OPERATORS_MAX 2048 // in one statement, with macros put in: compilers walk an expression by recursion
#define SHADER_ARRAY_MAX 16384    // elements

// In words for the user what is too much, with the token in *piToken; null if nothing is.
const char *FindTooMuch(const std::vector<ShaderToken> &aToken, size_t *piToken);

#endif
