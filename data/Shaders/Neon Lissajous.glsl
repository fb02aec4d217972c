/*{
    "DESCRIPTION": "A tube of light bent into slowly changing figures",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "across", "LABEL": "Across", "TYPE": "float", "MIN": 1, "MAX": 9, "DEFAULT": 3, "SOURCE": "periodic",
         "PERIOD": 15, "RANGE": [1, 5], "EASE": 8},
        {"NAME": "up", "LABEL": "Up", "TYPE": "float", "MIN": 1, "MAX": 9, "DEFAULT": 2, "SOURCE": "periodic", "PERIOD": 22,
         "RANGE": [1, 5], "EASE": 8},
        {"NAME": "drift", "LABEL": "Drift", "TYPE": "float", "MIN": 0, "MAX": 3, "DEFAULT": 0.35, "SUM": true},
        {"NAME": "power", "LABEL": "Power", "TYPE": "float", "MIN": 0, "MAX": 4, "DEFAULT": 1, "SOURCE": "sound", "SMOOTH": 6,
         "RANGE": [0.5, 2.2]},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.85, "SOURCE": "wave", "PERIOD": 60, "WAVE": "ramp"}
    ]
}*/
#include "color.glsl"

#define PIECES 110

vec2 turn(vec2 v, vec2 by)
{
    return vec2(v.x * by.x - v.y * by.y, v.x * by.y + v.y * by.x);
}

vec2 direction(float angle)
{
    return vec2(cos(angle), sin(angle));
}

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = (place - 0.5 * iResolution.xy) / iResolution.y, a = vec2(0.0);
    vec3 light = vec3(0.0);
    float step = 6.2831853 / float(PIECES);
    // Angles grow evenly along the tube: turning a direction is much cheaper than a sine at every piece.
    vec2 x = direction(drift), y = direction(0.7 * drift), wave = direction(drift), run = direction(-2.0 * iTime);
    vec2 dx = direction(across * step), dy = direction(up * step), dw = direction(5.0 * step), dr = direction(2.0 * step);
    for (int i = 0; i <= PIECES; i++) {
        float t = step * float(i);
        vec2 b = vec2(0.75 * x.y, 0.42 * y.y) * (0.9 + 0.1 * wave.x);
        vec2 ab = b - a, ap = p - a;
        float d = length(ap - ab * clamp(dot(ap, ab) / max(dot(ab, ab), 1e-6), 0.0, 1.0));
        float pulse = 0.5 + 0.5 * run.y, lit = 0.35 + 0.65 * pulse * pulse * pulse;
        lit *= smoothstep(0.0, 0.7, min(t, 6.2831853 - t)) * min(float(i), 1.0);
        vec2 shine = lit * vec2(0.011 / (0.004 + d), smoothstep(0.007, 0.002, d));
        if (shine.x > light.x)
            light = vec3(shine, t);
        a = b;
        x = turn(x, dx);
        y = turn(y, dy);
        wave = turn(wave, dw);
        run = turn(run, dr);
    }
    vec3 tube = rainbow(hue + 0.05 * light.z) * light.x + 0.9 * light.y;
    color = vec4(expose(power * tube * 1.2) + 0.02 * rainbow(hue + 0.5) * (1.0 - length(p)), 1.0);
}
