/*{
    "DESCRIPTION": "Folds of silk that flow through each other",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "flow", "LABEL": "Flow", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.6, "SUM": true, "EASE": 1,
         "SOURCE": "sound", "SMOOTH": 20, "RANGE": [0.3, 1.6], "HELP": "How fast the folds move"},
        {"NAME": "fold", "LABEL": "Folds", "TYPE": "float", "MIN": 0.2, "MAX": 4, "DEFAULT": 1.3, "SOURCE": "wave",
         "PERIOD": 47, "RANGE": [0.9, 1.8]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.6, "SOURCE": "wave", "PERIOD": 90, "WAVE": "triangle"},
        {"NAME": "sheen", "LABEL": "Sheen", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 1}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

float height(vec2 p, out vec2 warp)
{
    warp = vec2(noise(p + 0.23 * flow), noise(rotate(1.1) * p + vec2(5.2, 1.3) - 0.19 * flow));
    warp += 0.5 * vec2(noise(rotate(0.6) * (2.1 * p + 3.0 * warp)), noise(rotate(1.9) * (2.1 * p - 3.0 * warp) + 8.0));
    vec2 q = p + fold * warp;
    return 0.6 * noise(rotate(0.45) * q + 0.1 * flow) + 0.28 * noise(rotate(0.8) * q * 2.3) + 0.12 * noise(q.yx * 5.0 - flow * 0.2);
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = 1.9 * (place - 0.5 * iResolution.xy) / iResolution.y;
    vec2 warp, other;
    float h = height(p, warp);
    float slope = (height(p + vec2(0.02, 0.03), other) - h) / 0.036;
    vec3 cloth = mix(rainbow(hue + 0.3 * warp.x), rainbow(hue + 0.25 + 0.4 * h), smoothstep(0.3, 1.2, warp.y));
    float light = 0.3 + 0.9 * smoothstep(0.25, 0.75, h) - 0.32 * slope;
    float spark = sheen * 0.9 * exp(-5.0 * abs(slope + 1.3));
    color = vec4(expose(cloth * max(light, 0.04) * 1.3 + spark), 1.0);
}
