// MixShader.h -- the one-pass kernel in the language of graphics cards
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <vector>

constexpr u32 MIX_SHADER_IMAGES = 4; // pictures at the bindings 0 to 3; the result stands at 4, the table at 5
constexpr u32 MIX_BINDING_RESULT = MIX_SHADER_IMAGES;
constexpr u32 MIX_BINDING_DISPLACEMENTS = MIX_SHADER_IMAGES + 1;
constexpr u32 MIX_GROUP_WIDTH = 32;
constexpr u32 MIX_GROUP_HEIGHT = 8;

// Places of the table that each pixel has: zeros, the pictures, then the result of each step.
constexpr i32 MIX_PLACE_ZERO = 0;
constexpr i32 MIX_PLACE_IMAGES = 1;
constexpr i32 MIX_PLACE_STEPS = MIX_PLACE_IMAGES + static_cast<i32>(MIX_SHADER_IMAGES);

// The text of the compute shader. Its uniforms: ivec2 vSize; int nImages, nSteps, iResult (a place); for each step
// ivec4 avStep (kernel, and the places of its three sources) and uint anWeight. One invocation a pixel.
std::string MixShaderText();

// For each pair of sums of colour bytes, how far Displace reads: columns + 64 in the low byte, rows + 64 in the high
// one, of 16 bits. Two pairs a word, the first in the low half; the sum of source #1 counts rows of DISPLACE_LEVELS.
std::vector<u32> MixDisplacements();
