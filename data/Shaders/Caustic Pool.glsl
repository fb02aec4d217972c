/*{
    "DESCRIPTION": "Sunlight on the floor of a pool",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "depth", "LABEL": "Depth", "TYPE": "float", "MIN": 1, "MAX": 12, "DEFAULT": 5, "SOURCE": "wave", "PERIOD": 45,
         "RANGE": [4, 7]},
        {"NAME": "current", "LABEL": "Current", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.7, "SUM": true, "EASE": 1,
         "SOURCE": "sound", "SMOOTH": 24, "RANGE": [0.4, 1.5]},
        {"NAME": "sunlight", "LABEL": "Sunlight", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 1},
        {"NAME": "water", "LABEL": "Water", "TYPE": "color", "DEFAULT": [0.02, 0.35, 0.5, 1]}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

float net(vec2 p, float t)
{
    float sum = 0.0;
    for (int i = 0; i < 4; i++) {
        p = rotate(1.1) * p + 0.55 * sin(p.yx * 1.3 + t * (0.8 + 0.2 * float(i)) + float(i));
        sum += 0.5 - 0.5 * cos(p.x + p.y + sin(p.x - p.y));
    }
    return pow(1.0 - abs(sum * 0.5 - 1.0), 5.0);
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    vec2 bend = 0.012 * vec2(noise(7.0 * p + current), noise(7.0 * p - current + 20.0));
    float light = net(depth * (p + bend), current) + 0.6 * net(depth * 1.7 * (p - bend) + 5.0, current * 1.2);
    vec2 tile = abs(fract((p + 2.0 * bend) * 5.0) - 0.5);
    float grout = smoothstep(0.5, 0.46, max(tile.x, tile.y));
    vec3 floorTone = water.rgb * (0.55 + 0.35 * grout + 0.15 * hash1((p + 2.0 * bend) * 5.0));
    vec3 sum = floorTone + sunlight * light * (water.rgb * 0.8 + vec3(0.35, 0.5, 0.4)) * (0.8 + 0.5 * iSoundSlow);
    color = vec4(expose(1.3 * sum * (1.1 - 0.5 * length(p))), 1.0);
}
