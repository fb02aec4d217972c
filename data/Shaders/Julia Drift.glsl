/*{
    "DESCRIPTION": "A Julia set whose number wanders along the edge of the Mandelbrot set",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "walk", "LABEL": "Walk", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.15, "SUM": true, "EASE": 2,
         "SOURCE": "sound", "SMOOTH": 30, "RANGE": [0.05, 0.2]},
        {"NAME": "zoom", "LABEL": "Zoom", "TYPE": "float", "MIN": 0.4, "MAX": 6, "DEFAULT": 1, "SOURCE": "wave", "PERIOD": 61,
         "RANGE": [0.8, 1.9]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.6, "SOURCE": "wave", "PERIOD": 83, "WAVE": "ramp"},
        {"NAME": "bands", "LABEL": "Bands", "TYPE": "float", "MIN": 0.2, "MAX": 4, "DEFAULT": 1}
    ]
}*/
#include "color.glsl"

#define STEPS 96

void mainImage(out vec4 color, in vec2 place)
{
    vec2 z = 2.4 / zoom * (place - 0.5 * iResolution.xy) / iResolution.y;
    float a = walk + 2.1;
    vec2 c = 1.02 * (0.5 * vec2(cos(a), sin(a)) - 0.25 * vec2(cos(2.0 * a), sin(2.0 * a)));
    float trap = 1e3, cross = 1e3, m = 0.0;
    int i = 0;
    for (; i < STEPS; i++) {
        z = vec2(z.x * z.x - z.y * z.y, 2.0 * z.x * z.y) + c;
        m = dot(z, z);
        if (m > 200.0)
            break;
        trap = min(trap, m);
        cross = min(cross, abs(z.x * z.y));
    }
    float level = float(i) - log2(max(log2(max(m, 1.01)), 1e-3)) + 3.0;
    vec3 outside = glow(clamp(0.1 + 0.13 * level * 0.35, 0.0, 1.0), hue + bands * 0.03 * level);
    vec3 inside = rainbow(hue + 0.5 + sqrt(trap)) * exp(-14.0 * cross) + 0.12 * rainbow(hue + trap);
    vec3 light = i < STEPS ? outside + rainbow(hue + 0.3) * exp(-40.0 * cross) * 0.6 : inside;
    color = vec4(expose(light * 1.3), 1.0);
}
