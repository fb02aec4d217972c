/*{
    "DESCRIPTION": "A chessboard with something moving beneath it; good on an indexed plane",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "checks", "LABEL": "Checks", "TYPE": "float", "MIN": 3, "MAX": 40, "DEFAULT": 12},
        {"NAME": "bulge", "LABEL": "Bulge", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.8, "SOURCE": "sound", "SMOOTH": 16,
         "RANGE": [0.3, 1.4], "EASE": 0.5},
        {"NAME": "roam", "LABEL": "Roam", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.6, "SUM": true},
        {"NAME": "pattern", "LABEL": "Pattern", "TYPE": "long", "VALUES": [0, 1, 2], "LABELS": ["Chessboard", "Stripes", "Dots"],
         "DEFAULT": 0, "SOURCE": "random"},
        {"NAME": "shading", "LABEL": "Shading", "TYPE": "bool", "DEFAULT": true}
    ]
}*/
#include "noise.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y, q = p;
    float lift = 0.0;
    for (int i = 0; i < 3; i++) {
        float k = float(i);
        vec2 d = p - vec2(0.6 * sin(roam * (0.7 + 0.2 * k) + 2.1 * k), 0.32 * cos(roam * (0.9 - 0.17 * k) + 1.3 * k));
        float hill = exp(-(9.0 + 4.0 * k) * dot(d, d));
        q -= d * hill * bulge * (k == 1.0 ? -0.6 : 1.0);
        lift += hill * (k == 1.0 ? -0.6 : 1.0) * (d.x + d.y) * 3.0;
    }
    q = rotate(0.15 * sin(0.21 * iTime)) * q * checks;
    float soft = 1.2 * checks / iResolution.y * (1.0 + abs(bulge));
    vec2 wave = sin(3.14159265 * q);
    float value = pattern == 1 ? wave.x : pattern == 2 ? (wave.x + wave.y) * 0.7 + 0.25 : wave.x * wave.y;
    float ink = smoothstep(-soft * 2.0, soft * 2.0, value);
    float shade = shading ? clamp(0.92 - 0.9 * lift * bulge, 0.15, 1.0) : 1.0;
    color = vec4(vec3(mix(0.02, 0.98, ink) * shade), 1.0);
}
