/*{
    "DESCRIPTION": "A way through a cave without floor or ceiling",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.6, "SUM": true, "EASE": 1},
        {"NAME": "wall", "LABEL": "Wall", "TYPE": "float", "MIN": 0.05, "MAX": 0.8, "DEFAULT": 0.15, "SOURCE": "wave", "PERIOD": 34,
         "RANGE": [0.06, 0.3], "EASE": 1},
        {"NAME": "lamp", "LABEL": "Lamp", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 1, "SOURCE": "sound", "SMOOTH": 9,
         "RANGE": [0.6, 1.9], "EASE": 0.15},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.0, "SOURCE": "wave", "PERIOD": 85, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

float cave(vec3 p)
{
    p *= 1.7;
    float big = dot(sin(p), cos(p.yzx)), small = dot(sin(p * 3.1), cos(p.zxy * 3.1));
    return (abs(big) - wall - 0.09 * small) * 0.32;
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    // This line stays in the open: along it, both sides of the wall are equally far.
    vec3 from = vec3(vec2(1.5708, 3.1416) / 1.7 + 0.12 * vec2(sin(0.3 * iTime), cos(0.37 * iTime)), speed * 1.4);
    vec3 ray = normalize(vec3(p, 0.6));
    ray.xy *= rotate(0.2 * iTime);
    ray.xz *= rotate(0.3 * sin(0.21 * iTime));
    float t = 0.05, glowing = 0.0;
    for (int i = 0; i < 64; i++) {
        float d = cave(from + ray * t);
        glowing += 0.012 / (0.02 + abs(d)) * exp(-0.25 * t);
        if (d < 0.002 || t > 16.0)
            break;
        t += d;
    }
    vec3 at = from + ray * t;
    vec2 e = vec2(0.006, -0.006);
    vec3 n = normalize(e.xyy * cave(at + e.xyy) + e.yyx * cave(at + e.yyx) + e.yxy * cave(at + e.yxy) + e.xxx * cave(at + e.xxx));
    float day = max(-dot(n, ray), 0.0), rim = pow(1.0 - day, 3.0), vein = exp(-9.0 * abs(sin(at.z * 7.0 + 5.0 * noise(at.xy * 2.5))));
    vec3 tone = rainbow(hue + 0.06 * at.z + 0.12 * at.y);
    vec3 light = lamp * tone * day * 1.5 / (0.6 + 0.35 * t * t) + rainbow(hue + 0.5) * (0.25 * rim + vein * (0.25 + iSound)) * exp(-0.3 * t);
    color = vec4(expose(1.6 * (light + 0.05 * glowing * rainbow(hue + 0.6))), 1.0);
}
