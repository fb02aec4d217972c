// ShaderVariables.h -- finds the variables of a shader that are declared without a value
#ifndef VORTICADE_SHADER_VARIABLES_H
#define VORTICADE_SHADER_VARIABLES_H

#include "ShaderTokens.h"

struct BareVariable {
    size_t iAt;            // in the text, behind its name
    std::string_view type; // a plain one: of numbers, vectors, matrices
};

// "float i, d = 1.0;" gives i. Left out are parameters, members, arrays, what comes from outside, and what stands in
// macros. Browsers begin such variables at zero and short shaders are written for that; drivers leave in them whatever
// was in the register, so that no two frames would have to be alike.
std::vector<BareVariable> FindBareVariables(const std::vector<ShaderToken> &aToken);

#endif
