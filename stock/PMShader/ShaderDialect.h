// ShaderDialect.h -- from the ways in which shader authors write their files to the one language that is compiled
#ifndef VORTICADE_SHADER_DIALECT_H
#define VORTICADE_SHADER_DIALECT_H

#include "ShaderHeader.h"

#include <string>
#include <vector>

// What all loops of a pixel may take together, of those whose end is not plain to see: on a graphics card, and where
// the processor draws.
#define SHADER_LOOP_STEPS 65536
#define SHADER_LOOP_STEPS_SLOW 8192

// Who compiles.
struct ShaderDriver {
    int32_t nVersionMost; // the newest version of the language that it takes, as in 450
    int32_t nLoopSteps;   // SHADER_LOOP_STEPS...
};

struct ShaderSources {
    std::string vertex, fragment;
};

// text: as ReadShaderText gives it, with "#line" lines. Adds what the file uses without declaring it, an entry point
// for mainImage, a value for variables that have none, and a bound for loops that might not end. False with *psError,
// in the form of a driver's message where a line is to blame.
bool TranslateShader(const std::string &text, const std::vector<ShaderInput> &inputs, const ShaderDriver &driver,
                     ShaderSources *pSources, std::string *psError);

#endif
