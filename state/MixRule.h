// MixRule.h -- one rule of the plane mixer
#pragma once

#include "include/control.h"
#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

// Operators of the mixer; the numbers stand in preset files.
enum MixOperator : i32 {
    MIXOP_TILE_PLANES = 0,
    MIXOP_BLEND = 1,
    MIXOP_OVERWRITE_BACKGROUND = 2,
    MIXOP_ONLY_WRITE_FOREGROUND = 3,
    MIXOP_BLEND_XOR = 4,
    MIXOP_BLEND_MAX = 5,
    MIXOP_BLEND_ALPHA = 6,
    MIXOP_BLEND_BOOLEAN = 7,
    MIXOP_INVERT_X = 8,
    MIXOP_INVERT_Y = 9,
    MIXOP_INVERT_XY = 10,
    MIXOP_GUN_SHIFT_1 = 11,
    MIXOP_GUN_SHIFT_2 = 12,
    MIXOP_NEGATIVE = 13,
    MIXOP_INTENSITY_SCALE = 14,
    MIXOP_INTENSITY_SCALE_RGB = 15,
    MIXOP_DISPLACE = 16,
    MIXOP_COUNT = 17
};

// One rule: up to three sources, one operator, one result. Source indices: below nPlanes a plane's resolved image,
// from nPlanes on the result of rule index - nPlanes. Read from files: any number can stand in the fields.
struct MixRule {
    i32 SrcIdx1;
    i32 SrcIdx2;
    i32 AplhaIdx;              // the mask ("Mix Using"); spelled so in all files
    i32 MixOp;                 // MixOperator
    HostBitmap *hbmRule;       // result of this rule unless it is the last one; owned by the preset
    ControlRecord BlendWeight; // integer control, 0 to 255, default 128
};
