/*{
    "DESCRIPTION": "Warm drops rise, meet and part",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "heat", "LABEL": "Heat", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.5, "SUM": true, "EASE": 2,
         "SOURCE": "sound", "SMOOTH": 30, "RANGE": [0.3, 1.2]},
        {"NAME": "drops", "LABEL": "Drops", "TYPE": "long", "MIN": 2, "MAX": 16, "DEFAULT": 10},
        {"NAME": "size", "LABEL": "Size", "TYPE": "float", "MIN": 0.3, "MAX": 2, "DEFAULT": 1, "SOURCE": "wave", "PERIOD": 37,
         "RANGE": [0.8, 1.25]},
        {"NAME": "wax", "LABEL": "Wax", "TYPE": "color", "DEFAULT": [1.0, 0.28, 0.05, 1]},
        {"NAME": "water", "LABEL": "Water", "TYPE": "color", "DEFAULT": [0.16, 0.03, 0.3, 1]}
    ]
}*/
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    float field = 0.0;
    vec2 pull = vec2(0.0);
    for (int i = 0; i < drops; i++) {
        float a = fract(0.5 + 0.7549 * float(i)), b = fract(0.5 + 0.5698 * float(i)), c = fract(0.3820 * float(i) + 0.1);
        vec2 at = vec2((a - 0.5) * 1.7 + 0.12 * sin(heat * (0.5 + b) + 9.0 * c),
                       0.5 * sin(heat * (0.35 + 0.6 * b) + 6.28 * c + 0.3 * sin(heat * 0.7 + a * 5.0)));
        float r = size * (0.07 + 0.085 * c);
        vec2 d = p - at;
        float f = r * r / (dot(d, d) + 1e-4);
        field += f;
        pull += f * f * d / r;
    }
    float body = smoothstep(0.9, 1.06, field);
    vec3 normal = normalize(vec3(pull / max(field * field, 0.3), 0.55));
    float light = 0.5 + 0.5 * dot(normal, normalize(vec3(-0.3, 0.75, 0.6)));
    vec3 inside = wax.rgb * (0.35 + 1.3 * light * light) + vec3(1.0, 0.9, 0.7) * pow(light, 22.0) * 0.7;
    inside += vec3(1.0, 0.6, 0.2) * smoothstep(0.4, -0.6, p.y) * 0.5;
    vec3 outside = water.rgb * (1.1 - p.y) + wax.rgb * 0.35 * field * field;
    color = vec4(expose(1.25 * mix(outside, inside, body)), 1.0);
}
