/*{
    "DESCRIPTION": "A flower that folds into itself again and again",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "petals", "LABEL": "Petals", "TYPE": "long", "MIN": 2, "MAX": 16, "DEFAULT": 6, "SOURCE": "random",
         "RANGE": [4, 10]},
        {"NAME": "shift", "LABEL": "Shift", "TYPE": "float", "MIN": 0.2, "MAX": 1.2, "DEFAULT": 0.6, "SOURCE": "wave",
         "PERIOD": 33, "RANGE": [0.45, 0.85]},
        {"NAME": "turn", "LABEL": "Turn", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.2, "SUM": true},
        {"NAME": "shine", "LABEL": "Shine", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 1, "SOURCE": "sound",
         "SMOOTH": 8, "RANGE": [0.6, 1.8], "EASE": 0.15},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.9, "SOURCE": "wave", "PERIOD": 67, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void main()
{
    vec2 p = 1.7 * (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y;
    float wedge = 3.14159265 / float(petals);
    vec3 light = vec3(0.0);
    float size = 1.0, far = length(p);
    for (int i = 0; i < 5; i++) {
        float a = mod(atan(p.y, p.x) + turn * (0.3 + 0.1 * float(i)), 2.0 * wedge) - wedge;
        p = length(p) * vec2(cos(a), abs(sin(a))) - vec2(shift, 0.12 * sin(TIME * 0.31 + float(i)));
        p *= 1.45;
        size *= 1.45;
        float line = abs(length(p) - 0.5 - 0.15 * sin(TIME * 0.4)) / size;
        light += rainbow(hue + 0.13 * float(i) + 0.25 * far) * 0.012 / (0.006 + line) * exp(-0.35 * float(i));
    }
    gl_FragColor = vec4(expose(shine * light * exp(-0.8 * far)), 1.0);
}
