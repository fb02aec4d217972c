/*{
    "DESCRIPTION": "Lit drops fall past a window above a city",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "fall", "LABEL": "Fall", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 1, "SUM": true},
        {"NAME": "rain", "LABEL": "Rain", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.5, "SOURCE": "sound",
         "SMOOTH": 14, "RANGE": [0.25, 0.9], "EASE": 0.5},
        {"NAME": "slant", "LABEL": "Slant", "TYPE": "float", "MIN": -0.6, "MAX": 0.6, "DEFAULT": 0.1, "SOURCE": "wave",
         "PERIOD": 38, "RANGE": [-0.15, 0.25]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.6, "SOURCE": "wave", "PERIOD": 120}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    vec3 light = mix(rainbow(hue + 0.05) * 0.1, vec3(0.008, 0.01, 0.03), smoothstep(-0.5, 0.35, p.y));
    for (int i = 0; i < 4; i++) {
        float layer = float(i), scale = 2.2 + 1.1 * layer;
        vec2 q = p * scale + vec2(0.05 * iTime, 4.0 * layer), cell = floor(q);
        vec2 at = fract(q) - 0.3 - 0.4 * hash2(cell + layer);
        float chance = hash1(cell + 11.0 * layer), r = 0.16 + 0.12 * chance;
        float disc = smoothstep(r, r - 0.035, length(at)) * (0.45 + 0.55 * smoothstep(0.4 * r, r, length(at)));
        float low = smoothstep(0.45, -0.15, p.y), alight = step(0.55, hash1(cell + 3.0)) * (0.6 + 0.4 * sin(iTime * chance + 9.0 * chance));
        light += disc * low * alight * mix(rainbow(hue + 0.4 * chance), vec3(1.0, 0.7, 0.35), 0.4) * 0.55;
    }
    for (int i = 0; i < 5; i++) {
        float layer = float(i), scale = 7.0 + 5.0 * layer;
        vec2 q = vec2((p.x + slant * p.y) * scale * 3.0, p.y * scale * 0.42);
        float column = floor(q.x) + 57.0 * layer, chance = hash1(vec2(column, 3.0));
        q.y += fall * (2.4 + 1.5 * chance) + 31.0 * chance;
        float drop = hash1(vec2(column, floor(q.y))), f = fract(q.y);
        float streak = smoothstep(0.0, 0.12, f) * smoothstep(0.55, 0.12, f) * smoothstep(0.5, 0.1, abs(fract(q.x) - 0.5));
        light += streak * step(drop, 0.3 * rain) * mix(vec3(0.6, 0.75, 1.0), rainbow(hue + drop), 0.35) * (0.6 - 0.12 * layer);
    }
    color = vec4(expose(1.5 * light), 1.0);
}
