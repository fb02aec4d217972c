/*{
    "DESCRIPTION": "Panes with glowing seams that slowly change their neighbours",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "panes", "LABEL": "Panes", "TYPE": "float", "MIN": 1, "MAX": 14, "DEFAULT": 4, "SOURCE": "wave",
         "PERIOD": 71, "RANGE": [3, 6]},
        {"NAME": "motion", "LABEL": "Motion", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.5, "SUM": true},
        {"NAME": "seams", "LABEL": "Seams", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 1, "SOURCE": "sound", "SMOOTH": 5,
         "RANGE": [0.3, 2.2]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.55, "SOURCE": "wave", "PERIOD": 95, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

vec2 seed(vec2 cell)
{
    return 0.5 + 0.42 * sin(motion * (0.6 + hash1(cell)) + 6.2831853 * hash2(cell));
}

void main()
{
    vec2 p = panes * (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y + 0.15 * motion;
    vec2 cell = floor(p), f = p - cell, nearest = vec2(0.0), own = vec2(0.0);
    float best = 9.0, seam = 9.0;
    for (int i = 0; i < 9; i++) {
        vec2 g = vec2(i % 3 - 1, i / 3 - 1), d = g + seed(cell + g) - f;
        if (dot(d, d) < best) {
            best = dot(d, d);
            nearest = d;
            own = g;
        }
    }
    for (int i = 0; i < 25; i++) {
        vec2 g = own + vec2(i % 5 - 2, i / 5 - 2), d = g + seed(cell + g) - f;
        if (dot(d - nearest, d - nearest) > 1e-5)
            seam = min(seam, dot(0.5 * (nearest + d), normalize(d - nearest)));
    }
    float chance = hash1(cell + own);
    vec3 pane = rainbow(hue + 0.35 * chance) * (0.2 + 0.75 * chance);
    float tilt = 0.75 + 0.5 * dot(nearest, vec2(cos(6.28 * chance), sin(6.28 * chance)));
    vec3 light = pane * tilt * smoothstep(0.0, 0.05, seam) + seams * rainbow(hue + 0.5) * 0.02 / (0.012 + seam);
    gl_FragColor = vec4(expose(light), 1.0);
}
