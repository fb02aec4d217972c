/*{
    "DESCRIPTION": "A globe of lines with the sound running around it",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "spin", "LABEL": "Spin", "TYPE": "float", "MIN": -2, "MAX": 2, "DEFAULT": 0.3, "SUM": true},
        {"NAME": "meridians", "LABEL": "Meridians", "TYPE": "long", "MIN": 3, "MAX": 40, "DEFAULT": 18},
        {"NAME": "size", "LABEL": "Size", "TYPE": "float", "MIN": 0.1, "MAX": 0.8, "DEFAULT": 0.4, "SOURCE": "sound", "SMOOTH": 12,
         "RANGE": [0.34, 0.46], "EASE": 0.2},
        {"NAME": "line", "LABEL": "Line Color", "TYPE": "color", "DEFAULT": [0.2, 0.9, 1.0, 1]},
        {"NAME": "wave", "LABEL": "Wave Color", "TYPE": "color", "DEFAULT": [1.0, 0.25, 0.6, 1]}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

vec3 surface(vec3 n, float far)
{
    n.xy *= rotate(0.4);
    n.yz *= rotate(0.35 + 0.2 * sin(0.3 * TIME));
    vec2 at = vec2(atan(n.x, n.z) / 6.2831853 + 0.5 + 0.1 * spin, acos(clamp(n.y, -1.0, 1.0)) / 3.14159265);
    vec2 grid = at * vec2(float(meridians), float(meridians) * 0.5), away = 0.5 - abs(fract(grid) - 0.5);
    away.x *= sin(at.y * 3.14159265);
    float lines = 0.05 / (0.025 + min(away.x, away.y)) - 0.1;
    float heard = texture(iSoundHistory, vec2(abs(at.y - 0.5) * 0.5, 0.25)).r;
    float tile = step(0.9 - 0.5 * heard, hash1(mod(floor(grid), float(meridians)) + 3.0));
    return far * (line.rgb * max(lines, 0.0) * 0.5 + wave.rgb * (tile * 0.45 + heard * heard * 0.5));
}

void main()
{
    vec2 p = (gl_FragCoord.xy - 0.5 * RENDERSIZE) / RENDERSIZE.y;
    float r = length(p) / size;
    vec3 light = 0.02 * line.rgb * (1.0 - length(p));
    if (r < 1.0) {
        float z = sqrt(1.0 - r * r);
        light += surface(vec3(p / size, z), 1.0) + surface(vec3(p / size, -z), 0.25);
    }
    light += mix(line.rgb, wave.rgb, iSoundSlow) * 0.02 / (0.015 + abs(r - 1.0)) * (0.4 + iSound) * exp(-1.5 * max(r - 1.0, 0.0));
    vec2 cell = floor(p * 40.0), at = fract(p * 40.0) - 0.3 - 0.4 * hash2(cell);
    light += step(0.93, hash1(cell + 2.0)) * exp(-120.0 * dot(at, at)) * smoothstep(1.0, 1.1, r) * 0.5;
    gl_FragColor = vec4(expose(1.5 * light), 1.0);
}
