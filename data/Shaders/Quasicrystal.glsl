// Plane waves from many sides add up to a pattern that never repeats.
/*{
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "waves", "LABEL": "Waves", "TYPE": "long", "MIN": 3, "MAX": 13, "DEFAULT": 7, "SOURCE": "random", "RANGE": [5, 11]},
        {"NAME": "scale", "LABEL": "Scale", "TYPE": "float", "MIN": 5, "MAX": 120, "DEFAULT": 40, "SOURCE": "wave", "PERIOD": 63,
         "RANGE": [26, 60]},
        {"NAME": "phase", "LABEL": "Speed", "TYPE": "float", "MIN": -6, "MAX": 6, "DEFAULT": 1.5, "SUM": true, "EASE": 0.5,
         "SOURCE": "sound", "SMOOTH": 12, "RANGE": [0.6, 3.5]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.7, "SOURCE": "wave", "PERIOD": 90, "WAVE": "ramp"},
        {"NAME": "folds", "LABEL": "Folds", "TYPE": "float", "MIN": 0.5, "MAX": 5, "DEFAULT": 1.5}
    ]
}*/
#version 330
#include "color.glsl"
out vec4 result;
uniform float iTime;
uniform vec3 iResolution;

void main()
{
    vec2 p = scale * (gl_FragCoord.xy - 0.5 * iResolution.xy) / iResolution.y;
    p += 22.0 * vec2(sin(0.13 * iTime), cos(0.09 * iTime));
    float sum = 0.0, count = float(waves);
    for (int i = 0; i < waves; i++) {
        float a = 3.14159265 * float(i) / count + 0.03 * iTime;
        sum += cos(dot(p, vec2(cos(a), sin(a))) + phase);
    }
    float level = abs(mod(folds * sum / count * 2.0 + 1.0, 2.0) - 1.0);
    vec3 light = glow(smoothstep(0.05, 0.95, 1.0 - level), hue + 0.3 * sum / count) + 0.25 * rainbow(hue + 0.5) * exp(-24.0 * level);
    result = vec4(expose(1.3 * light * (1.15 - 0.35 * length(gl_FragCoord.xy - 0.5 * iResolution.xy) / iResolution.y)), 1.0);
}
