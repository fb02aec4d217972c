/*{
    "DESCRIPTION": "What was heard runs outwards as rings of light",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "reach", "LABEL": "Reach", "TYPE": "float", "MIN": 0.1, "MAX": 1, "DEFAULT": 0.35,
         "HELP": "How much of the last eight seconds the picture shows"},
        {"NAME": "petals", "LABEL": "Petals", "TYPE": "long", "MIN": 0, "MAX": 12, "DEFAULT": 5, "SOURCE": "periodic",
         "PERIOD": 14, "RANGE": [3, 9]},
        {"NAME": "bend", "LABEL": "Bend", "TYPE": "float", "MIN": 0, "MAX": 0.5, "DEFAULT": 0.14, "SOURCE": "wave",
         "PERIOD": 23, "RANGE": [0.04, 0.2], "EASE": 1},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.55, "SOURCE": "wave", "PERIOD": 70, "WAVE": "ramp"},
        {"NAME": "center", "LABEL": "Center", "TYPE": "point2D", "MIN": [0, 0], "MAX": [1, 1], "DEFAULT": [0.5, 0.5]}
    ]
}*/
#include "color.glsl"

void main()
{
    vec2 p = (gl_FragCoord.xy - center * RENDERSIZE) / RENDERSIZE.y;
    float angle = atan(p.y, p.x);
    float r = length(p) * (1.0 + bend * sin(float(petals) * angle + 0.4 * TIME));
    float age = r * reach;
    float level = texture(iSoundHistory, vec2(age, 0.25)).r;
    float before = texture(iSoundHistory, vec2(age + 0.006, 0.25)).r;
    float edge = abs(level - before) * 9.0;
    float grain = 0.75 + 0.25 * cos(150.0 * r - 6.0 * iSoundTime);
    // Silence is not black: faint rings still go by.
    float rest = 0.16 + 0.12 * cos(26.0 * r - 1.6 * TIME) + 0.05 * cos(7.0 * r + 0.7 * TIME);
    vec3 light = glow(max(level, rest) * grain, hue + 0.5 * age + 0.06 * sin(angle * 2.0)) * 1.4;
    light += edge * rainbow(hue + 0.5 + age) * exp(-1.5 * r);
    light += rainbow(hue + 0.1) * iSound * 0.02 / (0.01 + r * r);
    gl_FragColor = vec4(expose(light), 1.0);
}
