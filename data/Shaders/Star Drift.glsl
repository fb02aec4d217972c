/*{
    "DESCRIPTION": "Layers of stars drift past, with dust between them",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": -3, "MAX": 3, "DEFAULT": 0.25, "SUM": true, "EASE": 2,
         "SOURCE": "sound", "SMOOTH": 25, "RANGE": [0.12, 1]},
        {"NAME": "dust", "LABEL": "Dust", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 0.8},
        {"NAME": "tint", "LABEL": "Dust Color", "TYPE": "color", "DEFAULT": [0.35, 0.2, 0.75, 1]},
        {"NAME": "aim", "LABEL": "Aim", "TYPE": "point2D", "MIN": [0, 0], "MAX": [1, 1], "DEFAULT": [0.5, 0.5],
         "SOURCE": "wave", "PERIOD": 53}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 middle = mix(vec2(0.3), vec2(0.7), aim);
    vec2 p = (place - middle * iResolution.xy) / iResolution.y;
    p = rotate(0.05 * iTime) * p;
    vec3 light = vec3(0.0);
    for (int i = 0; i < 7; i++) {
        float layer = fract(float(i) / 7.0 + speed);
        float scale = mix(16.0, 0.6, layer), fade = smoothstep(0.0, 0.4, layer) * smoothstep(1.0, 0.85, layer);
        vec2 q = p * scale + 31.0 * float(i), cell = floor(q);
        vec2 at = fract(q) - 0.25 - 0.5 * hash2(cell);
        float chance = hash1(cell + 3.0), bright = 0.3 + 0.7 * chance * chance;
        float star = 0.0016 / (0.0006 + dot(at, at)) * smoothstep(0.25, 0.0, length(at));
        light += star * fade * bright * (0.7 + 0.5 * iSound) * mix(vec3(0.6, 0.75, 1.0), vec3(1.0, 0.75, 0.5), hash1(cell + 9.0));
        float haze = clouds(p * scale * 0.5 + 7.0 * float(i));
        light += dust * fade * 0.5 * mix(tint.rgb, tint.brg, clamp(haze + 0.55 * sin(0.15 * iTime + float(i)), 0.0, 1.0)) * smoothstep(0.45, 0.85, haze);
    }
    color = vec4(expose(light), 1.0);
}
