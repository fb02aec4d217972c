/*{
    "DESCRIPTION": "Ridges roll past under a low sun",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "travel", "LABEL": "Travel", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.4, "SUM": true, "SOURCE": "sound",
         "SMOOTH": 26, "RANGE": [0.25, 1.4], "EASE": 1},
        {"NAME": "swell", "LABEL": "Swell", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 1, "SOURCE": "sound",
         "SMOOTH": 20, "RANGE": [0.5, 2], "EASE": 0.4, "HELP": "How high the ridges stand"},
        {"NAME": "sun", "LABEL": "Sun", "TYPE": "point2D", "MIN": [0, 0], "MAX": [1, 1], "DEFAULT": [0.65, 0.7]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.02, "SOURCE": "wave", "PERIOD": 110}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void main()
{
    vec2 p = isf_FragNormCoord * vec2(RENDERSIZE.x / RENDERSIZE.y, 1.0);
    vec2 s = vec2(sun.x * RENDERSIZE.x / RENDERSIZE.y, sun.y);
    float away = length(p - s);
    vec3 sky = mix(rainbow(hue + 0.08) * 0.9, rainbow(hue + 0.6) * 0.25, smoothstep(0.2, 1.0, p.y));
    vec3 light = sky + vec3(1.0, 0.8, 0.55) * (0.9 * smoothstep(0.085, 0.08, away) + (0.05 + 0.07 * iSoundSlow) / (0.05 + away));
    for (int i = 0; i < 8; i++) {
        float depth = float(i) / 7.0, scale = mix(2.4, 0.9, depth);
        float x = p.x * scale + travel * mix(0.12, 0.9, depth) + 13.7 * float(i);
        float ridge = noise(vec2(x, float(i))) + 0.3 * noise(vec2(x * 2.7 + 0.3 * TIME * depth, float(i) + 9.0));
        float top = mix(0.52, -0.03, depth) + 0.17 * swell * (ridge - 0.5);
        float h = top - p.y, heard = texture(iSoundHistory, vec2(abs(p.x - s.x) * 0.2 + 0.04 * float(i), 0.25)).r;
        vec3 sand = mix(sky * 0.9, rainbow(hue + 0.9) * mix(0.45, 0.06, depth), 0.25 + 0.75 * depth);
        float crest = exp(-h * 40.0) * (0.25 + 0.75 * exp(-1.5 * abs(p.x - s.x)));
        float line = 0.9 + 0.1 * sin(x * 8.0 + h * 160.0);
        light = mix(light, (sand * line + vec3(1.0, 0.6, 0.35) * crest * (0.3 + 1.1 * heard)), smoothstep(0.0, 0.006, h));
    }
    gl_FragColor = vec4(expose(1.3 * light), 1.0);
}
