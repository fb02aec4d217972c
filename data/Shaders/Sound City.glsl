/*{
    "DESCRIPTION": "Towers as high as the last seconds were loud, above still water",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "towers", "LABEL": "Towers", "TYPE": "long", "MIN": 8, "MAX": 80, "DEFAULT": 22},
        {"NAME": "seconds", "LABEL": "Seconds", "TYPE": "float", "MIN": 0.5, "MAX": 8, "DEFAULT": 4},
        {"NAME": "shore", "LABEL": "Shore", "TYPE": "float", "MIN": 0, "MAX": 0.6, "DEFAULT": 0.24},
        {"NAME": "hue", "LABEL": "Hue", "TYPE": "float", "DEFAULT": 0.62, "SOURCE": "wave", "PERIOD": 100, "WAVE": "ramp"},
        {"NAME": "beams", "LABEL": "Beams", "TYPE": "float", "MIN": 0, "MAX": 2, "DEFAULT": 0.8, "SOURCE": "sound", "SMOOTH": 10,
         "RANGE": [0.15, 1.3], "EASE": 0.2, "HELP": "How brightly searchlights sweep the sky"},
        {"NAME": "mirrored", "LABEL": "Mirrored", "TYPE": "bool", "DEFAULT": true}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

vec3 city(vec2 p)
{
    vec3 light = mix(rainbow(hue + 0.1) * 0.5, rainbow(hue + 0.6) * 0.08, smoothstep(0.0, 0.7, p.y));
    vec2 sky = p * vec2(RENDERSIZE.x / RENDERSIZE.y, 1.0) * 60.0, cell = floor(sky), at = fract(sky) - 0.5;
    light += step(0.97, hash1(cell)) * exp(-40.0 * dot(at, at)) * 0.7 * smoothstep(0.2, 0.6, p.y);
    for (int i = 0; i < 4; i++) {
        float foot = 0.14 + 0.24 * float(i), lean = 0.5 * sin(TIME * (0.31 + 0.07 * float(i)) + 2.1 * float(i));
        float aside = abs(p.x - foot - lean * p.y) / (0.012 + 0.05 * p.y);
        light += beams * rainbow(hue + 0.5 + 0.12 * float(i)) * 0.3 * exp(-aside * aside) * exp(-1.4 * p.y);
    }
    for (int row = 1; row >= 0; row--) {
        float x = (mirrored ? abs(p.x - 0.5) * 2.0 : p.x) * float(towers) * (row == 1 ? 0.7 : 0.5) + 31.0 * float(row);
        float number = floor(x), inside = abs(fract(x) - 0.5), chance = hash1(vec2(number, 4.0 + float(row)));
        float place = (number + 0.5 - 31.0 * float(row)) / (float(towers) * (row == 1 ? 0.7 : 0.5));
        float level = texture(iSoundHistory, vec2(place * seconds / 8.53, row == 1 ? 0.75 : 0.25)).r;
        float top = (row == 1 ? 0.2 : 0.05) + 0.2 * chance + 0.45 * level;
        float wall = step(p.y, top) * step(inside, 0.42 - 0.1 * chance);
        vec2 pane = vec2(inside * 8.0, p.y * 30.0);
        float lit = step(0.62 - 0.3 * level, hash1(floor(pane) + number * 7.0)) * step(0.25, fract(pane.x)) * step(0.35, fract(pane.y));
        vec3 tone = rainbow(hue + 0.15 * chance + 0.2 * p.y);
        vec3 face = tone * (row == 1 ? 0.11 : 0.03) + lit * mix(tone, vec3(1.0, 0.8, 0.5), 0.5) * (row == 1 ? 0.35 : 0.9);
        face += tone * exp(-90.0 * abs(top - p.y)) * level * 1.2;
        light = mix(light, face, wall);
    }
    return light;
}

void main()
{
    vec2 p = isf_FragNormCoord;
    float y = p.y - shore;
    vec3 light = city(vec2(p.x, abs(y)));
    if (y < 0.0) {
        float ripple = sin(30.0 * y / (0.2 - y) + 2.0 * TIME) * 0.005 * (0.5 + iSound) * (1.0 - 4.0 * y);
        light = city(vec2(p.x + ripple, -y * 1.25 + 0.4 * ripple)) * (0.55 + 0.9 * y) + rainbow(hue + 0.6) * 0.02;
    }
    gl_FragColor = vec4(expose(1.8 * light), 1.0);
}
