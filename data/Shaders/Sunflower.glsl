/*{
    "DESCRIPTION": "Seeds set by the golden angle, which wanders a little",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "seeds", "LABEL": "Seeds", "TYPE": "float", "MIN": 40, "MAX": 900, "DEFAULT": 320, "SOURCE": "wave",
         "PERIOD": 57, "RANGE": [180, 480]},
        {"NAME": "detune", "LABEL": "Detune", "TYPE": "float", "MIN": -1, "MAX": 1, "DEFAULT": 0, "SOURCE": "wave", "PERIOD": 41,
         "RANGE": [-0.25, 0.25]},
        {"NAME": "swell", "LABEL": "Swell", "TYPE": "float", "MIN": 0.2, "MAX": 1.4, "DEFAULT": 0.8, "SOURCE": "sound",
         "SMOOTH": 8, "RANGE": [0.5, 1.15], "EASE": 0.15},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.05, "SOURCE": "wave", "PERIOD": 73, "WAVE": "ramp"}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = rotate(0.05 * iTime) * (place - 0.5 * iResolution.xy) / iResolution.y;
    float golden = 2.39996323 + 0.002 * detune, r = length(p), size = 0.92 / sqrt(seeds), best = 9.0, which = 0.0;
    // Only the seeds of a ring around this place can reach it.
    float middle = r * r / (size * size), ring = 3.2 * sqrt(max(middle, 1.0)) + 6.0;
    for (float k = max(floor(middle - ring), 0.0); k < middle + ring; k++) {
        float a = k * golden + 0.2 * iTime, radius = size * sqrt(k + 0.5);
        float d = length(p - radius * vec2(cos(a), sin(a)));
        if (d < best) {
            best = d;
            which = k;
        }
    }
    float share = which / seeds, heard = texture(iSoundHistory, vec2(min(share * 0.25, 1.0), 0.25)).r;
    float seed = size * (0.62 + 0.5 * heard) * swell;
    float dome = sqrt(clamp(1.0 - best * best / (seed * seed), 0.0, 1.0));
    vec3 tone = rainbow(hue + 0.35 * share + 0.1 * sin(which * 0.05 + iTime));
    vec3 light = tone * (dome * (0.75 + 0.9 * heard) + 0.35 * pow(dome, 8.0)) + 0.2 * tone * exp(-3.0 * best / size);
    color = vec4(expose(1.6 * light * smoothstep(1.15, 0.75, share)), 1.0);
}
