// ShaderDialect.h -- from the ways in which shader authors write their files to the one language that is compiled
#ifndef VORTICADE_SHADER_DIALECT_H
#define VORTICADE_SHADER_DIALECT_H

#include "ShaderHeader.h"

#include <string>
#include <vector>

#define SHADER_LOOP_STEPS 8192 // of all loops together, of those whose end is not plain to see; for a pixel

struct ShaderSources {
    std::string vertex, fragment;
};

// text: as ReadShaderText gives it, with "#line" lines. Adds what the file uses without declaring it, an entry point
// for mainImage, and a bound for loops that might not end. nVersionMost: the
// newest version of the language that the driver takes, as in 450. False with *psError when there is no entry point.
bool TranslateShader(const std::string &text, const std::vector<ShaderInput> &inputs, int32_t nVersionMost,
                     ShaderSources *pSources, std::string *psError);

#endif
