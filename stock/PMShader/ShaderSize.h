// ShaderSize.h -- the sizes of a shader's buffers, which its author writes as formulas
#ifndef VORTICADE_SHADER_SIZE_H
#define VORTICADE_SHADER_SIZE_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// What stands behind a "$" in a formula: false if there is nothing of that name.
using SizeLookup = std::function<bool(std::string_view name, double *pdValue)>;

// "floor($WIDTH / 4.0)": numbers, names, + - * / and parentheses, floor, ceil, round, abs, sqrt, min, max, pow. False
// if it is not understood. [any-thread]
bool WorkOutSize(const std::string &formula, const SizeLookup &lookup, double *pdSize);

#endif
