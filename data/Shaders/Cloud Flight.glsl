/*{
    "DESCRIPTION": "Above a sea of clouds at the end of the day",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 0.8, "SUM": true, "EASE": 2, "SOURCE": "sound",
         "SMOOTH": 26, "RANGE": [0.5, 2]},
        {"NAME": "cover", "LABEL": "Cover", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.5, "SOURCE": "wave", "PERIOD": 50,
         "RANGE": [0.4, 0.65]},
        {"NAME": "light", "LABEL": "Light", "TYPE": "color", "DEFAULT": [1.0, 0.62, 0.35, 1]},
        {"NAME": "shade", "LABEL": "Shade", "TYPE": "color", "DEFAULT": [0.2, 0.22, 0.45, 1]},
        {"NAME": "thunder", "LABEL": "Thunder", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.3, "SOURCE": "sound",
         "SMOOTH": 22, "RANGE": [0, 1], "EASE": 0.25, "HELP": "Light from within the clouds"},
        {"NAME": "evening", "LABEL": "Evening", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.3, "SOURCE": "wave", "PERIOD": 70,
         "HELP": "How far the sun has gone down"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y;
    p = rotate(0.05 * sin(0.23 * iTime)) * p;
    vec2 away = p - vec2(0.35 - 0.5 * evening, 0.3 - 0.3 * evening);
    vec3 sunlight = mix(light.rgb, vec3(1.0, 0.3, 0.38) * (light.rgb + 0.25), evening);
    vec3 shadow = mix(shade.rgb * 1.3, shade.rgb * 0.55, evening);
    vec3 sum = mix(sunlight * 1.1, shadow * 0.7, smoothstep(-0.05, 0.5, p.y)) + sunlight * 0.05 / (0.06 + length(away));
    sum += vec3(1.0, 0.9, 0.7) * smoothstep(0.06, 0.054, length(away));
    for (int i = 0; i < 9; i++) {
        // Banks stand one behind the other, the nearest one last.
        float near = float(i) / 8.0, scale = mix(3.4, 0.8, near), low = mix(0.13, -0.42, near * near);
        vec2 q = vec2(p.x * scale + speed * mix(0.12, 0.7, near) + 9.0 * float(i), (p.y - low) * scale * 1.7);
        float puff = clouds(q * 1.5 + vec2(0.0, 0.08 * iTime)), top = (puff - 0.55 + 0.5 * (cover - 0.5)) * 0.75 / scale;
        float h = low + top - p.y, body = smoothstep(0.0, 0.05 / scale, h);
        float lit = exp(-h * 7.0 * scale) * (0.5 + 0.8 * clouds(q * 3.0 + 40.0)) * (0.6 + 0.6 * exp(-2.0 * length(away)));
        vec3 tone = mix(mix(shadow, sunlight, 0.35 * (1.0 - near)) * 0.75, sunlight * 1.5 + 0.12, clamp(lit, 0.0, 1.0));
        tone += thunder * vec3(0.7, 0.75, 1.0) * pow(noise(vec2(q.x * 0.6, 3.0 * iTime + 7.0 * float(i))), 6.0) * 2.5 * near;
        sum = mix(sum, tone, body * mix(0.75, 0.95, near));
    }
    color = vec4(expose(1.4 * sum), 1.0);
}
