// ShaderControls.h -- the inputs of a shader as controls of the host
#ifndef VORTICADE_SHADER_CONTROLS_H
#define VORTICADE_SHADER_CONTROLS_H

#include "ShaderHeader.h"

#include <vector>

// An input with its controls. They live as long as the instance, whatever becomes of the file.
struct ShaderControl {
    ShaderInput input;
    ControlRecord *apControl[4]; // one for each part; null: the host had none left
    std::vector<ItemSelectRow> aRow;
    float afNow[4]; // eased
    double dSum;
};

// Asks the host for the controls of the inputs. The vector must not change from then on.
void AddShaderControls(const ControlMaker &maker, const std::vector<ShaderInput> &inputs,
                       std::vector<ShaderControl> *paControl);
// Takes the controls as they stand, without easing; sums start at 0.
void ResetShaderControls(std::vector<ShaderControl> *paControl);
void StepShaderControls(std::vector<ShaderControl> *paControl, float fSeconds);
// Four numbers for an input of the program that runs, which need not be the one that the controls were made for.
void ReadShaderInput(const std::vector<ShaderControl> &aControl, const ShaderInput &input, float *pfValue);

#endif
