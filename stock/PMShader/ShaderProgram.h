// ShaderProgram.h -- a shader file compiled on the current OpenGL context
#ifndef VORTICADE_SHADER_PROGRAM_H
#define VORTICADE_SHADER_PROGRAM_H

#include "HostUniforms.h"
#include "ShaderFile.h"
#include "ShaderHeader.h"

#include <string>
#include <vector>

// A uniform that the compiled shader really reads.
struct LiveUniform {
    int32_t nLocation;
    uint32_t dwType; // of OpenGL
    int32_t nCount;  // elements, if an array
    int32_t iHost;   // place in asHostUniform; -1: none
    int32_t iInput;  // place in aInput; -1: none
};

// Zero-filled: none.
struct ShaderProgram {
    uint32_t dwProgram; // of OpenGL
    std::vector<ShaderInput> aInput;
    std::vector<ShaderPass> aPass;
    std::vector<ShaderTarget> aTarget;
    std::vector<LiveUniform> aUniform;
    bool bReadsSound, bReadsNoise, bReadsLast; // which pictures it wants
};

// What the uniforms are to be.
struct UniformValues {
    float aafPlain[VALUES_PLAIN][12]; // by HostValue
    std::vector<float> afInput;       // four of each input of the program
};

// Texture units.
enum { UNIT_SOUND, UNIT_NOISE, UNIT_LAST, UNIT_TARGETS };

// Compiles and links. On failure *pProgram stays as it was and *psError has a line for each fault, with the file's name
// and the line's number before the driver's words. The context has to be current.
bool BuildProgram(const ShaderText &text, const ShaderHeader &header, ShaderProgram *pProgram, std::string *psError);
// Links two sources of our own; 0 on failure.
uint32_t LinkProgram(const char *pszVertex, const char *pszFragment);
void FreeProgram(ShaderProgram *pProgram);
// Makes it the program in use and gives it the values.
void UseProgram(const ShaderProgram &program, const UniformValues &values);

#endif
