/*{
    "DESCRIPTION": "Quarter circles join to endless roads with something running on them",
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "tiles", "LABEL": "Tiles", "TYPE": "float", "MIN": 2, "MAX": 20, "DEFAULT": 6},
        {"NAME": "speed", "LABEL": "Speed", "TYPE": "float", "MIN": -4, "MAX": 4, "DEFAULT": 1, "SUM": true, "EASE": 0.4,
         "SOURCE": "sound", "SMOOTH": 10, "RANGE": [0.3, 2.5]},
        {"NAME": "width", "LABEL": "Width", "TYPE": "float", "MIN": 0.03, "MAX": 0.3, "DEFAULT": 0.14, "SOURCE": "wave",
         "PERIOD": 19, "RANGE": [0.1, 0.19]},
        {"NAME": "flips", "LABEL": "Flips", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.15,
         "HELP": "How often the roads are laid anew, a second"},
        {"NAME": "road", "LABEL": "Road", "TYPE": "color", "DEFAULT": [0.1, 0.75, 0.95, 1]},
        {"NAME": "ground", "LABEL": "Ground", "TYPE": "color", "DEFAULT": [0.03, 0.02, 0.12, 1]}
    ]
}*/
#include "noise.glsl"
#include "color.glsl"

void mainImage(out vec4 color, in vec2 place)
{
    vec2 p = tiles * (place - 0.5 * iResolution.xy) / iResolution.y + vec2(0.2, 0.13) * iTime;
    vec2 cell = floor(p), f = p - cell;
    float when = iTime * flips + hash1(cell + 90.0), lay = floor(when);
    bool flip = hash1(cell + 37.0 * lay) > 0.5;
    if (flip)
        f.x = 1.0 - f.x;
    bool first = dot(f, f) < dot(1.0 - f, 1.0 - f);
    vec2 q = first ? f : 1.0 - f;
    float r = length(q), edge = abs(r - 0.5);
    float way = atan(q.y, q.x) / 1.5707963;
    // Roads run on from tile to tile where neighbours run in opposite senses, as on a chessboard.
    bool even = mod(cell.x + cell.y, 2.0) < 0.5;
    way = (even != flip) ? way : 1.0 - way;
    float run = fract(way + speed), bead = exp(-18.0 * pow(abs(run - 0.5), 2.0));
    float inside = smoothstep(width, width - 0.03, edge), rim = exp(-40.0 * abs(edge - width));
    float settle = smoothstep(0.0, 0.25, min(fract(when), 1.0 - fract(when)) * 4.0);
    vec3 light = ground.rgb * (0.6 + 0.6 * hash1(cell)) * (1.0 - inside);
    light += inside * road.rgb * (0.12 + 0.9 * bead) * settle + rim * road.gbr * 0.55 * settle;
    light += 0.1 * road.rgb * bead * exp(-6.0 * edge) * (1.0 + 2.0 * iSound);
    color = vec4(expose(1.6 * light), 1.0);
}
