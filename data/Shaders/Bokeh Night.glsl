/*{
    "DESCRIPTION": "Lights out of focus sail by and breathe with the music",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "lights", "LABEL": "Lights", "TYPE": "long", "MIN": 4, "MAX": 48, "DEFAULT": 40},
        {"NAME": "sail", "LABEL": "Sail", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.3, "SUM": true},
        {"NAME": "size", "LABEL": "Size", "TYPE": "float", "MIN": 0.2, "MAX": 3, "DEFAULT": 1, "SOURCE": "wave", "PERIOD": 26,
         "RANGE": [0.7, 1.5]},
        {"NAME": "breath", "LABEL": "Breath", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 1, "SOURCE": "sound",
         "SMOOTH": 7, "RANGE": [0.75, 1.8]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.06, "SOURCE": "wave", "PERIOD": 88, "WAVE": "ramp"},
        {"NAME": "edges", "LABEL": "Edges", "TYPE": "long", "VALUES": [0, 6, 8],
         "LABELS": ["Round", "Six blades", "Eight blades"], "DEFAULT": 6}
    ]
}*/
#include "color.glsl"

float radius(vec2 d)
{
    vec2 q = abs(d);
    float six = max(q.x, dot(q, vec2(0.5, 0.8660254))), eight = max(max(q.x, q.y), 0.7071068 * (q.x + q.y));
    return edges == 0 ? length(d) : edges == 6 ? six : eight;
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    float wide = iResolution.x / iResolution.y + 0.6;
    vec3 light = mix(rainbow(hue + 0.55), rainbow(hue + 0.7), p.y + 0.5) * 0.09;
    for (int i = 0; i < lights; i++) {
        // Evenly spread without chance: multiples of what no fraction comes near to. The speed goes by squares, since
        // lights at evenly stepped places and speeds would line up one day.
        float a = fract(0.5 + 0.7549 * float(i)), b = fract(0.5 + 0.5698 * float(i)), c = fract(0.1373 * float(i * i)), far = 0.3 + 0.7 * c;
        vec2 at = vec2((fract(a + sail * 0.06 * far) - 0.5) * wide, 1.1 * (b - 0.5) + 0.05 * sin(sail * (1.0 + a) + 6.28 * b));
        float r = size * (0.035 + 0.085 * far) * (0.9 + 0.1 * sin(iTime * (0.5 + b) + 6.28 * c));
        float d = radius(p - at);
        float disc = smoothstep(r, r * 0.92, d) * (0.35 + 0.65 * smoothstep(0.2 * r, r, d));
        float lit = 0.4 + 0.6 * sin(iTime * (0.3 + 0.9 * a) + 6.28 * b);
        light += disc * (0.3 + 0.7 * max(lit, 0.0)) * breath * rainbow(hue + 0.3 * (a - 0.5) + 0.1 * far) * mix(1.6, 0.9, far);
    }
    color = vec4(expose(1.7 * light), 1.0);
}
