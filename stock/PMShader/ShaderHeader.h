// ShaderHeader.h -- the inputs and passes that a shader's header comment declares
#ifndef VORTICADE_SHADER_HEADER_H
#define VORTICADE_SHADER_HEADER_H

#include "../common/StockControls.h"

#include <string>
#include <vector>

#define SHADER_INPUTS_MAX 128
#define SHADER_CHOICES_MAX 256
#define SHADER_PASSES_MAX 16
#define SHADER_TARGETS_MAX 8

enum InputKind {
    INPUT_FLOAT,
    INPUT_LONG,
    INPUT_BOOL,
    INPUT_COLOR,
    INPUT_POINT,
    INPUT_PICTURE,
    INPUT_SOUND,
    INPUT_NOISE,
    INPUT_TARGET
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

// The file is drawn once for each pass of a frame, in this order.
struct ShaderPass {
    int32_t iTarget;           // place in aTarget; -1: the picture itself
    std::string width, height; // formulas; empty: as the picture
};

// A picture that the file draws for itself. It keeps what was drawn last.
struct ShaderTarget {
    std::string name; // of the uniform
    bool bFloat;      // its numbers may be any
};

struct ShaderHeader {
    std::vector<ShaderInput> aInput; // a target is one, too: of the kind INPUT_TARGET
    std::vector<ShaderPass> aPass;   // empty: one, the picture
    std::vector<ShaderTarget> aTarget;
};

// Number of floats of the uniform.
int32_t InputParts(InputKind eKind);
// "float", "sampler2D"; how the uniform is declared.
const char *InputType(InputKind eKind);

// Reads the header comment's JSON, which is not trusted. What can be used is in *pHeader also on failure. False with
// *psError: a line of text for each fault, "LINE: words", LINE counted from nLine. [any-thread]
bool ReadShaderHeader(const std::string &json, int32_t nLine, ShaderHeader *pHeader, std::string *psError);

#endif
