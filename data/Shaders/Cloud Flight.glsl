/*{
    "DESCRIPTION": "Above a sea of clouds at the end of the day",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 0.8, "SUM": true, "EASE": 2},
        {"NAME": "cover", "LABEL": "Cover", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.5, "SOURCE": "wave", "PERIOD": 50,
         "RANGE": [0.4, 0.65]},
        {"NAME": "light", "LABEL": "Light", "TYPE": "color", "DEFAULT": [1.0, 0.62, 0.35, 1]},
        {"NAME": "shade", "LABEL": "Shade", "TYPE": "color", "DEFAULT": [0.2, 0.22, 0.45, 1]},
        {"NAME": "thunder", "LABEL": "Thunder", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.3, "SOURCE": "sound",
         "SMOOTH": 22, "RANGE": [0, 0.6], "EASE": 0.5, "HELP": "Light from within the clouds"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    p = rotate(0.05 * sin(0.23 * iTime)) * p;
    float high = p.y - 0.12;
    vec3 sky = mix(light.rgb * 1.1, shade.rgb * 0.8, smoothstep(0.0, 0.45, high)) + light.rgb * 0.25 * exp(-9.0 * length(p - vec2(0.2, 0.16)));
    vec3 sum = sky + vec3(1.0, 0.9, 0.7) * smoothstep(0.05, 0.044, length(p - vec2(0.2, 0.2))) * 1.2;
    for (int i = 0; i < 10; i++) {
        float level = float(i) / 10.0, down = 0.35 + 0.5 * (1.0 - level) - 0.1;
        float far = down / max(-high + 0.06 + 0.2 * level, 0.02);
        if (-high + 0.06 + 0.2 * level < 0.02)
            continue;
        vec2 q = vec2(p.x * far * 1.4, far * 1.4 + speed);
        float d = clouds(q * 1.2 + 0.04 * float(i)) - (0.72 - 0.42 * cover) - 0.25 * abs(level - 0.35);
        float a = smoothstep(0.0, 0.16, d) * 0.55 * smoothstep(14.0, 5.0, far);
        vec3 tone = mix(shade.rgb * 0.55, light.rgb * 1.25, level * 0.9 + 0.25 * smoothstep(0.25, 0.0, d));
        tone += thunder * vec3(0.7, 0.75, 1.0) * pow(noise(q * 0.35 + vec2(0.4 * iTime, 0.0)), 5.0) * 1.6 * (1.0 - level);
        sum = mix(sum, mix(tone, sky, smoothstep(2.0, 13.0, far)), a);
    }
    color = vec4(expose(1.5 * sum), 1.0);
}
