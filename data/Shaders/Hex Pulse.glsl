/*{
    "DESCRIPTION": "A floor of hexagons, each with a beat of its own",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "cells", "LABEL": "Cells", "TYPE": "float", "MIN": 2, "MAX": 30, "DEFAULT": 9, "SOURCE": "wave",
         "PERIOD": 40, "RANGE": [6, 12]},
        {"NAME": "beat", "LABEL": "Beat", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.5, "SOURCE": "sound",
         "SMOOTH": 4, "HELP": "How far the cells open"},
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.5, "SUM": true},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.05, "SOURCE": "wave", "PERIOD": 100, "WAVE": "ramp"},
        {"NAME": "look", "LABEL": "Look", "TYPE": "long", "VALUES": [0, 1, 2], "LABELS": ["Tiles", "Outlines", "Domes"],
         "DEFAULT": 0}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

// Distance to the rim of a hexagon of inner radius 0.5, and which one it is.
vec3 hexagon(vec2 p)
{
    const vec2 side = vec2(1.0, 1.7320508);
    vec2 a = mod(p, side) - 0.5 * side, b = mod(p - 0.5 * side, side) - 0.5 * side;
    vec2 q = dot(a, a) < dot(b, b) ? a : b;
    vec2 f = abs(q);
    return vec3(0.5 - max(f.x, dot(f, 0.5 * side)), p - q);
}

void main()
{
    vec2 p = (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y;
    p = rotate(0.12 * sin(0.2 * TIME)) * p * cells;
    vec3 hex = hexagon(p);
    float chance = hash1(hex.yz * vec2(2.0, 1.1547005) + 0.5); // whole numbers, rounded
    float wave = 0.5 + 0.5 * sin(6.2831853 * (chance + speed) - 0.7 * length(hex.yz));
    float open = 0.16 + 0.34 * wave * (0.4 + 0.6 * beat);
    float inside = smoothstep(0.0, 0.03, hex.x - 0.5 + open);
    float rim = exp(-60.0 * abs(hex.x - 0.5 + open));
    float dome = sqrt(clamp((hex.x - 0.5 + open) / open, 0.0, 1.0));
    vec3 tone = rainbow(hue + 0.25 * chance + 0.05 * length(hex.yz));
    float body = look == 1 ? 0.08 * inside : look == 2 ? inside * dome : inside * (0.35 + 0.65 * wave);
    gl_FragColor = vec4(expose(tone * (0.05 + 1.6 * body + rim * (0.6 + beat))), 1.0);
}
