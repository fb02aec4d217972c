/*{
    "DESCRIPTION": "The last seconds of sound as ribbons that flow from the middle",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "ribbons", "LABEL": "Ribbons", "TYPE": "long", "MIN": 1, "MAX": 12, "DEFAULT": 6},
        {"NAME": "span", "LABEL": "Seconds", "TYPE": "float", "MIN": 0.5, "MAX": 8, "DEFAULT": 3},
        {"NAME": "height", "LABEL": "Height", "TYPE": "float", "MIN": 0.1, "MAX": 1.5, "DEFAULT": 0.6},
        {"NAME": "wind", "LABEL": "Wind", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 0.5, "SUM": true},
        {"NAME": "warm", "LABEL": "Inner Color", "TYPE": "color", "DEFAULT": [1.0, 0.45, 0.15, 1]},
        {"NAME": "cold", "LABEL": "Outer Color", "TYPE": "color", "DEFAULT": [0.15, 0.3, 1.0, 1]}
    ]
}*/
#include "color.glsl"

void main()
{
    vec2 p = (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y;
    float age = abs(p.x) * 2.0 * RENDERSIZE.y / RENDERSIZE.x;
    vec3 light = vec3(0.004, 0.006, 0.015);
    for (int i = 0; i < ribbons; i++) {
        float share = (float(i) + 0.5) / float(ribbons), when = age * span / 8.53 + 0.004 * float(i);
        float level = mix(texture(iSoundHistory, vec2(when, 0.25)).r, texture(iSoundHistory, vec2(when, 0.75)).r, share);
        float sway = 0.1 * sin(3.0 * p.x + wind * (1.0 + share) + 4.0 * share) * (0.3 + age);
        float y = height * 0.5 * level * (1.0 - 0.6 * share) * (1.0 - 0.35 * age) + sway;
        float d = min(abs(p.y - y), abs(p.y + y)), body = smoothstep(y, y - 0.2, abs(p.y)) * step(abs(p.y), y);
        vec3 tone = mix(warm.rgb, cold.rgb, clamp(age + share - 0.4, 0.0, 1.0));
        light += tone * (0.006 / (0.004 + d) + 0.1 * body * level) * (1.05 - age);
    }
    gl_FragColor = vec4(expose(1.3 * light), 1.0);
}
