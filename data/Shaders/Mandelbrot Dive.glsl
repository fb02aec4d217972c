/*{
    "DESCRIPTION": "Down and up again, above the spirals of the Mandelbrot set",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "depth", "LABEL": "Depth", "TYPE": "float", "MIN": 0, "MAX": 11, "DEFAULT": 5, "SOURCE": "wave", "PERIOD": 80,
         "RANGE": [0.5, 10], "HELP": "Every step doubles the size"},
        {"NAME": "view", "LABEL": "View", "TYPE": "long", "VALUES": [0, 1, 2, 3],
         "LABELS": ["Seahorses", "Elephants", "Starfish", "Needle"], "DEFAULT": 0, "SOURCE": "random"},
        {"NAME": "cycle", "LABEL": "Cycle", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.12, "SUM": true, "EASE": 1,
         "SOURCE": "sound", "SMOOTH": 16, "RANGE": [0.05, 0.4]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.58, "SOURCE": "wave", "PERIOD": 97}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

#define STEPS 160

void main()
{
    vec2 middle = view == 0 ? vec2(-0.743643, 0.131826) : view == 1 ? vec2(0.2925755, 0.0149977)
                : view == 2 ? vec2(-0.3740, 0.6597) : vec2(-1.25066, 0.02012);
    vec2 p = rotate(0.06 * TIME) * (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y;
    vec2 c = middle + 2.2 * p * exp2(-depth), z = vec2(0.0), slope = vec2(1.0, 0.0);
    float m = 0.0;
    int i = 0;
    for (; i < STEPS; i++) {
        slope = 2.0 * vec2(z.x * slope.x - z.y * slope.y, z.x * slope.y + z.y * slope.x) + vec2(1.0, 0.0);
        z = vec2(z.x * z.x - z.y * z.y, 2.0 * z.x * z.y) + c;
        m = dot(z, z);
        if (m > 400.0)
            break;
    }
    vec3 light = vec3(0.01, 0.008, 0.02);
    if (i < STEPS) {
        float level = float(i) - log2(max(log2(m), 1.0)) + 3.0;
        float near = sqrt(m / dot(slope, slope)) * log(m) * exp2(depth);
        float turn = 0.16 * sqrt(max(level, 0.0)) * 2.0 - cycle;
        light = rainbow(hue + 0.22 * sin(3.0 * turn)) * (0.35 + 0.45 * sin(6.2831853 * turn));
        light += rainbow(hue + 0.45) * 0.02 / (0.012 + near) + vec3(1.0, 0.9, 0.8) * exp(-90.0 * near) * 0.8;
    }
    gl_FragColor = vec4(expose(1.4 * light), 1.0);
}
