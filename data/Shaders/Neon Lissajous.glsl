/*{
    "DESCRIPTION": "A tube of light bent into slowly changing figures",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "across", "LABEL": "Across", "TYPE": "float", "MIN": 1, "MAX": 9, "DEFAULT": 3, "SOURCE": "periodic",
         "PERIOD": 15, "RANGE": [1, 5], "EASE": 8},
        {"NAME": "up", "LABEL": "Up", "TYPE": "float", "MIN": 1, "MAX": 9, "DEFAULT": 2, "SOURCE": "periodic", "PERIOD": 22,
         "RANGE": [1, 5], "EASE": 8},
        {"NAME": "drift", "LABEL": "Drift", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.35, "SUM": true},
        {"NAME": "power", "LABEL": "Power", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 1, "SOURCE": "sound", "SMOOTH": 6,
         "RANGE": [0.5, 2.2]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.85, "SOURCE": "wave", "PERIOD": 60, "WAVE": "ramp"}
    ]
}*/
#include "color.glsl"

#define PIECES 110

vec2 figure(float t)
{
    return vec2(0.75 * sin(across * t + drift), 0.42 * sin(up * t + 0.7 * drift)) * (0.9 + 0.1 * cos(5.0 * t + drift));
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y, a = figure(0.0);
    vec3 light = vec3(0.0);
    for (int i = 1; i <= PIECES; i++) {
        float t = 6.2831853 * float(i) / float(PIECES);
        vec2 b = figure(t), ab = b - a, ap = p - a;
        float d = length(ap - ab * clamp(dot(ap, ab) / max(dot(ab, ab), 1e-6), 0.0, 1.0));
        float run = (0.35 + 0.65 * pow(0.5 + 0.5 * sin(2.0 * t - 2.0 * iTime), 3.0)) * smoothstep(0.0, 0.7, min(t, 6.2831853 - t));
        light = max(light, run * (rainbow(hue + 0.05 * t) * 0.011 / (0.004 + d) + vec3(0.9) * smoothstep(0.007, 0.002, d)));
        a = b;
    }
    color = vec4(expose(power * light * 1.2) + 0.02 * rainbow(hue + 0.5) * (1.0 - length(p)), 1.0);
}
