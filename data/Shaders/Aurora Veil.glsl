/*{
    "DESCRIPTION": "Curtains of northern light over a dark horizon",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "drift", "LABEL": "Drift", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 0.4, "SUM": true, "SOURCE": "sound",
         "SMOOTH": 24, "RANGE": [0.35, 1.5], "EASE": 1},
        {"NAME": "power", "LABEL": "Power", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 1, "SOURCE": "sound",
         "SMOOTH": 16, "RANGE": [0.75, 2.0], "EASE": 0.3},
        {"NAME": "low", "LABEL": "Lower Color", "TYPE": "color", "DEFAULT": [0.1, 1.0, 0.5, 1]},
        {"NAME": "high", "LABEL": "Upper Color", "TYPE": "color", "DEFAULT": [0.65, 0.15, 0.95, 1]},
        {"NAME": "stars", "LABEL": "Stars", "TYPE": "bool", "DEFAULT": true}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

vec3 curtain(vec2 p, float layer)
{
    float x = p.x * (1.1 + 0.35 * layer) + 3.7 * layer;
    float way = clouds(vec2(x * 0.7 + drift * 0.12, layer + drift * 0.09));
    float foot = 0.08 + 0.16 * layer + 0.5 * (way - 0.5);
    float h = p.y - foot;
    float fringe = noise(vec2(x * 9.0 + 6.0 * way, drift * 0.7 + layer * 9.0));
    // What was heard runs along the curtain from the middle.
    float heard = texture(iSoundHistory, vec2(abs(p.x - 0.5 * iResolution.x / iResolution.y) * (0.25 + 0.08 * layer), 0.25)).r;
    float tall = 0.16 + 0.22 * heard + 0.35 * noise(vec2(x * 2.3 - drift * 0.2, layer * 5.0));
    float rays = (0.35 + 0.65 * fringe * fringe) * (0.7 + 0.9 * heard);
    float light = smoothstep(-0.02, 0.03, h) * exp(-max(h, 0.0) / tall * 2.2) * rays;
    return light * mix(low.rgb, high.rgb, smoothstep(0.0, 0.3 + 0.3 * way, h));
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = place / iResolution.y;
    vec3 light = mix(vec3(0.01, 0.03, 0.07), vec3(0.0, 0.005, 0.02), p.y);
    for (int i = 0; i < 3; i++)
        light += power * curtain(p, float(i)) * (0.9 - 0.2 * float(i));
    if (stars) {
        vec2 cell = floor(p * 60.0), at = fract(p * 60.0) - 0.2 - 0.6 * hash2(cell);
        float lit = step(0.9, hash1(cell + 7.0));
        light += lit * exp(-90.0 * dot(at, at)) * (0.6 + 0.4 * sin(iTime * (1.0 + 3.0 * hash1(cell)) + cell.x));
    }
    float hill = 0.05 + 0.06 * noise(vec2(p.x * 3.0, 2.0)) + 0.012 * noise(vec2(p.x * 30.0, 4.0));
    light *= smoothstep(hill, hill + 0.006, p.y);
    color = vec4(expose(light * 1.5), 1.0);
}
