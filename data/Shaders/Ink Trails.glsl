/*{
    "DESCRIPTION": "Pens of light leave trails that drift outwards and fade",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "pens", "LABEL": "Pens", "TYPE": "long", "MIN": 1, "MAX": 12, "DEFAULT": 5, "SOURCE": "random", "RANGE": [3, 7]},
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 1, "SUM": true},
        {"NAME": "zoom", "LABEL": "Zoom", "TYPE": "float", "MIN": -1, "MAX": 1, "DEFAULT": 0.25, "SOURCE": "wave",
         "PERIOD": 31, "RANGE": [-0.1, 0.5], "EASE": 1},
        {"NAME": "swirl", "LABEL": "Swirl", "TYPE": "float", "MIN": -1, "MAX": 1, "DEFAULT": 0.2, "SOURCE": "wave",
         "PERIOD": 43, "RANGE": [-0.45, 0.45], "EASE": 1},
        {"NAME": "memory", "LABEL": "Memory", "TYPE": "float", "MIN": 0.2, "MAX": 10, "DEFAULT": 2.5,
         "HELP": "Seconds until a trail has faded to a third"},
        {"NAME": "pressure", "LABEL": "Pressure", "TYPE": "float", "MIN": 0.2, "MAX": 3, "DEFAULT": 1, "SOURCE": "sound",
         "SMOOTH": 4, "RANGE": [0.5, 2.4]}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

vec2 way(float t, float a, float b)
{
    return vec2(0.6 * sin(1.1 * t + 6.28 * a) + 0.2 * sin(2.7 * t + 6.28 * b), 0.38 * cos(0.9 * t + 6.28 * b));
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 size = iResolution.xy, p = (place - 0.5 * size) / size.y;
    float dt = min(iTimeDelta, 0.1);
    vec2 flow = rotate(swirl * dt * (1.2 - length(p))) * p * (1.0 - zoom * dt);
    flow += 0.03 * dt * (vec2(noise(6.0 * p + iTime * 0.3), noise(6.0 * p + 40.0 - iTime * 0.3)) - 0.5);
    vec3 light = texture(iLastFrame, flow * size.y / size + 0.5).rgb * exp(-dt / memory);
    for (int i = 0; i < pens; i++) {
        float a = hash1(vec2(i, 1)) + iSeed.x, b = hash1(vec2(i, 2)) + iSeed.y, t = speed * (0.6 + 0.5 * fract(b));
        vec2 pen = way(t, a, b), before = way(t - 1.5 * dt, a, b) - pen, ap = p - pen;
        float r = 0.012 * pressure, d = length(ap - before * clamp(dot(ap, before) / max(dot(before, before), 1e-7), 0.0, 1.0));
        vec3 ink = rainbow(fract(a) + 0.05 * t);
        light = mix(light, ink, smoothstep(r, 0.4 * r, d));
        light += ink * dt * pressure * 0.0016 / (0.002 + d * d);
    }
    color = vec4(min(light, 1.0), 1.0);
}
