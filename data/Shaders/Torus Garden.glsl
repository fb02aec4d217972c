/*{
    "DESCRIPTION": "A flight over an endless garden of turning rings",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 0.8, "SUM": true, "EASE": 1},
        {"NAME": "thick", "LABEL": "Thickness", "TYPE": "float", "MIN": 0.05, "MAX": 0.45, "DEFAULT": 0.18, "SOURCE": "sound",
         "SMOOTH": 8, "RANGE": [0.12, 0.32], "EASE": 0.2},
        {"NAME": "turn", "LABEL": "Turn", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.6, "SUM": true},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.0, "SOURCE": "wave", "PERIOD": 80, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

float scene(vec3 p)
{
    vec2 cell = floor(p.xz / 2.2);
    p.xz = mod(p.xz, 2.2) - 1.1;
    float a = turn * (0.5 + hash1(cell)) + 6.28 * hash1(cell + 4.0);
    p.xy *= rotate(a);
    p.yz *= rotate(0.7 * a);
    return length(vec2(length(p.xz) - 0.55, p.y)) - thick;
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    vec3 from = vec3(0.4 * sin(0.3 * iTime), 1.25, speed * 1.6), ray = normalize(vec3(p.x, p.y - 0.42, 1.1));
    ray.xz *= rotate(0.25 * sin(0.17 * iTime));
    float t = 0.0, near = 9.0;
    int i = 0;
    for (; i < 90; i++) {
        float d = scene(from + ray * t);
        near = min(near, d / (0.4 + 0.1 * t));
        if (d < 0.002 * t || t > 18.0)
            break;
        t += min(d * 0.6, 0.5);
    }
    vec3 sky = mix(rainbow(hue + 0.55) * 0.28, rainbow(hue + 0.75) * 0.04, smoothstep(-0.5, 0.5, p.y));
    vec3 light = sky + rainbow(hue + 0.1) * 0.05 / (0.06 + near) * (0.3 + iSoundSlow);
    if (t < 18.0 && i < 90) {
        vec3 at = from + ray * t;
        vec2 e = vec2(0.004, -0.004);
        vec3 n = normalize(e.xyy * scene(at + e.xyy) + e.yyx * scene(at + e.yyx) + e.yxy * scene(at + e.yxy) + e.xxx * scene(at + e.xxx));
        vec3 tone = rainbow(hue + 0.3 * hash1(floor(at.xz / 2.2)));
        float day = max(dot(n, normalize(vec3(0.5, 0.8, -0.4))), 0.0), rim = pow(1.0 - max(-dot(n, ray), 0.0), 3.0);
        vec3 lit = tone * (0.12 + 1.1 * day) + rainbow(hue + 0.5) * rim * 0.8 + pow(max(reflect(ray, n).y, 0.0), 20.0);
        light = mix(sky, lit, exp(-0.012 * t * t));
    }
    color = vec4(expose(1.4 * light), 1.0);
}
