/*{
    "DESCRIPTION": "A flight through a tube of moving panels",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 8, "DEFAULT": 1.5, "SUM": true, "EASE": 0.5,
         "SOURCE": "sound", "SMOOTH": 12, "RANGE": [0.8, 3.5]},
        {"NAME": "sides", "LABEL": "Sides", "TYPE": "long", "MIN": 3, "MAX": 24, "DEFAULT": 10, "SOURCE": "random",
         "RANGE": [5, 14]},
        {"NAME": "twist", "LABEL": "Twist", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.4, "SOURCE": "wave",
         "PERIOD": 27, "RANGE": [-0.9, 0.9]},
        {"NAME": "sway", "LABEL": "Sway", "TYPE": "float", "MIN": 0, "MAX": 0.5, "DEFAULT": 0.16},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.62, "SOURCE": "wave", "PERIOD": 75, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    p += sway * vec2(sin(0.7 * iTime), cos(0.53 * iTime)) * (0.6 - length(p));
    float r = max(length(p), 1e-3), depth = 0.32 / r;
    float turn = atan(p.y, p.x) / 6.2831853 + 0.25 * twist * depth / 3.0;
    vec2 wall = vec2(turn * float(sides), depth + speed);
    vec2 panel = vec2(mod(floor(wall.x), float(sides)), floor(wall.y * 2.0));
    vec2 inside = abs(fract(vec2(wall.x, wall.y * 2.0)) - 0.5);
    float chance = hash1(panel);
    float heard = texture(iSoundHistory, vec2(clamp(depth * 0.06, 0.0, 1.0), 0.25)).r;
    float face = smoothstep(0.5, 0.4, max(inside.x, inside.y)) * (0.25 + 0.9 * step(0.62 - 0.35 * heard, chance));
    float seam = exp(-24.0 * (0.5 - max(inside.x, inside.y)));
    vec3 tone = rainbow(hue + 0.2 * chance + 0.04 * depth);
    float fog = smoothstep(0.0, 0.3, r);
    vec3 light = (tone * face + seam * rainbow(hue + 0.5) * 0.55) * fog * (0.5 + heard);
    light += rainbow(hue + 0.1) * exp(-9.0 * r) * (0.35 + 0.6 * iSoundSlow);
    color = vec4(expose(1.7 * light), 1.0);
}
