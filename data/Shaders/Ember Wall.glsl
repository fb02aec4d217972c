/*{
    "DESCRIPTION": "A wall of fire that leaps with the sound",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "draught", "LABEL": "Draught", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 1.2, "SUM": true},
        {"NAME": "flame", "LABEL": "Flame", "TYPE": "float", "MIN": 0.1, "MAX": 1.5, "DEFAULT": 0.6, "SOURCE": "sound",
         "SMOOTH": 10, "RANGE": [0.4, 1.1], "EASE": 0.2},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.0, "HELP": "0 burns like wood, the rest does not"},
        {"NAME": "sparks", "LABEL": "Sparks", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 1}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void main()
{
    vec2 p = vec2(isf_FragNormCoord.x * RENDERSIZE.x / RENDERSIZE.y, isf_FragNormCoord.y);
    vec2 q = vec2(p.x * 2.6, p.y * 1.7 - 1.1 * draught);
    vec2 lick = vec2(noise(q * 1.3), noise(q * 1.3 + 31.0)) - 0.5;
    float body = clouds(q + 1.3 * lick + vec2(0.0, -0.5 * draught));
    float tongue = clouds(vec2(p.x * 5.0 + 0.8 * lick.x, p.y * 1.6 - 1.9 * draught) + 11.0);
    float tall = flame * (0.75 + 0.5 * noise(vec2(p.x * 1.7, 0.35 * TIME)));
    float heat = (0.65 * body + 0.5 * tongue + 0.25) * (1.0 - p.y / tall * 0.85);
    heat = clamp(heat * 1.25, 0.0, 1.4);
    vec3 light = vec3(1.6, 0.35, 0.06) * smoothstep(0.12, 0.6, heat) + vec3(0.9, 0.75, 0.18) * smoothstep(0.45, 0.95, heat);
    light += vec3(0.4, 0.55, 0.7) * smoothstep(0.85, 1.3, heat);
    for (int i = 0; i < 3; i++) {
        vec2 s = p * (11.0 + 5.0 * float(i)) + vec2(1.2 * sin(2.0 * p.y + TIME + float(i)), -3.2 * draught);
        vec2 cell = floor(s), at = fract(s) - 0.25 - 0.5 * hash2(cell);
        float live = step(0.9, hash1(cell + 19.0)) * smoothstep(1.15, 0.2, p.y / max(tall, 0.3));
        light += sparks * live * vec3(1.8, 0.8, 0.25) * exp(-160.0 * dot(at, at));
    }
    float turn = 6.2831853 * hue;
    vec3 axis = vec3(0.57735), bent = mix(axis * dot(axis, light), light, cos(turn)) + cross(axis, light) * sin(turn);
    gl_FragColor = vec4(expose(bent), 1.0);
}
