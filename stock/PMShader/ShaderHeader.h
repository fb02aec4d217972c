// ShaderHeader.h -- the inputs that a shader's header comment declares
#ifndef VORTICADE_SHADER_HEADER_H
#define VORTICADE_SHADER_HEADER_H

#include "../common/StockControls.h"

#include <string>
#include <vector>

#define SHADER_INPUTS_MAX 128
#define SHADER_CHOICES_MAX 256

enum InputKind {
    INPUT_FLOAT,
    INPUT_LONG,
    INPUT_BOOL,
    INPUT_COLOR,
    INPUT_POINT,
    INPUT_PICTURE,
    INPUT_SOUND,
    INPUT_NOISE
};

struct ShaderInput {
    std::string name; // of the uniform
    InputKind eKind;
    std::u16string label; // what the user sees; without full stops
    std::u16string group; // empty: none
    std::u16string help;
    float afMin[4], afMax[4], afDefault[4];
    FloatRange range;                      // what the animated sources sweep by default, of a float or a long
    std::vector<int32_t> anValue;          // the choices of a long; empty: every number from afMin to afMax
    std::vector<std::u16string> aszChoice; // their texts
    FluidDefault source;
    float fEase; // seconds in which the uniform follows a jump of the control; 0: at once
    bool bSum;   // the uniform is the control summed up over time: a way from a speed
};

// Number of floats of the uniform.
int32_t InputParts(InputKind eKind);
// "float", "sampler2D"; how the uniform is declared.
const char *InputType(InputKind eKind);

// Reads the header comment's JSON, which is not trusted. What can be used is in *paInput also on failure. False with
// *psError: a line of text for each fault, "LINE: words", LINE counted from nLine. [any-thread]
bool ReadShaderHeader(const std::string &json, int32_t nLine, std::vector<ShaderInput> *paInput, std::string *psError);

#endif
