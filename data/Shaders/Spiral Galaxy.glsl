/*{
    "DESCRIPTION": "A galaxy seen from the side turns with its dust and its young stars",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "spin", "LABEL": "Spin", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.2, "SUM": true, "EASE": 2,
         "SOURCE": "sound", "SMOOTH": 30, "RANGE": [0.1, 0.6]},
        {"NAME": "arms", "LABEL": "Arms", "TYPE": "long", "MIN": 1, "MAX": 6, "DEFAULT": 2, "SOURCE": "random", "RANGE": [2, 4]},
        {"NAME": "winding", "LABEL": "Winding", "TYPE": "float", "MIN": 0.5, "MAX": 8, "DEFAULT": 3.2, "SOURCE": "wave",
         "PERIOD": 77, "RANGE": [2.4, 4.2]},
        {"NAME": "tilt", "LABEL": "Tilt", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.55, "SOURCE": "wave", "PERIOD": 52,
         "RANGE": [0.2, 0.7]},
        {"NAME": "core", "LABEL": "Core", "TYPE": "color", "DEFAULT": [1.0, 0.75, 0.45, 1]},
        {"NAME": "young", "LABEL": "Young Stars", "TYPE": "color", "DEFAULT": [0.35, 0.5, 1.0, 1]}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void main()
{
    vec2 p = (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y, s = p;
    p = rotate(0.35) * p;
    p.y /= 1.0 - 0.85 * tilt;
    float r = length(p), angle = atan(p.y, p.x);
    float phase = angle + winding * log(r + 0.04) - spin;
    float arm = 0.5 + 0.5 * cos(float(arms) * phase);
    vec2 q = rotate(winding * log(r + 0.04) - spin) * p;
    float dust = clouds(9.0 * q + 20.0), fine = noise(38.0 * q);
    float disc = exp(-3.4 * r);
    vec3 light = young.rgb * disc * (0.12 + 2.2 * pow(arm, 2.0) * smoothstep(0.3, 0.75, dust));
    light += vec3(1.0, 0.35, 0.45) * disc * pow(arm, 4.0) * smoothstep(0.62, 0.85, fine) * 1.4;
    light *= 1.0 - 0.55 * smoothstep(0.4, 0.7, clouds(7.0 * q + 60.0)) * smoothstep(0.05, 0.2, r);
    light += core.rgb * (0.028 / (0.012 + r * r * 1.4)) * exp(-4.0 * r) * (0.9 + 0.5 * iSoundSlow);
    vec2 cell = floor(s * 70.0), at = fract(s * 70.0) - 0.2 - 0.6 * hash2(cell);
    light += step(0.86, hash1(cell + 5.0)) * exp(-60.0 * dot(at, at)) * (0.3 + 0.5 * hash1(cell));
    vec2 grain = floor(q * 130.0);
    light += step(0.93, hash1(grain)) * disc * arm * 0.8 * (0.6 + 0.4 * iSound);
    gl_FragColor = vec4(expose(1.5 * light), 1.0);
}
