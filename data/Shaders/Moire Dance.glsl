// Two gratings of rings and what they make of each other.
/*{
    "CREDIT": "Vorticade",
    "INPUTS": [
        {"NAME": "lines", "LABEL": "Lines", "TYPE": "float", "MIN": 5, "MAX": 120, "DEFAULT": 42, "SOURCE": "wave", "PERIOD": 29,
         "RANGE": [25, 55]},
        {"NAME": "apart", "LABEL": "Apart", "TYPE": "float", "MIN": 0, "MAX": 1, "DEFAULT": 0.3, "SOURCE": "sound",
         "SMOOTH": 18, "RANGE": [0.12, 0.5], "EASE": 0.6},
        {"NAME": "first", "LABEL": "First Color", "TYPE": "color", "DEFAULT": [0.95, 0.2, 0.35, 1]},
        {"NAME": "second", "LABEL": "Second Color", "TYPE": "color", "DEFAULT": [0.1, 0.5, 1.0, 1]},
        {"NAME": "crisp", "LABEL": "Crisp", "TYPE": "bool", "DEFAULT": false}
    ]
}*/
#ifdef GL_ES
precision mediump float;
#endif
uniform float time;
uniform vec2 resolution;

float rings(vec2 p, float phase)
{
    float wave = 0.5 + 0.5 * cos(lines * length(p) - phase);
    return crisp ? smoothstep(0.45, 0.55, wave) : wave;
}

void main(void)
{
    vec2 p = (gl_FragCoord.xy - 0.5 * resolution) / resolution.y;
    vec2 d = apart * vec2(cos(0.37 * time), sin(0.53 * time));
    float a = rings(p - d, 2.0 * time), b = rings(p + d, 2.3 * time), c = rings(p + d.yx * vec2(-1.0, 1.0), 1.7 * time);
    // Both colors change slowly, each at a pace of its own.
    vec3 one = mix(first.rgb, first.gbr, 0.5 - 0.5 * cos(0.13 * time)), two = mix(second.rgb, second.gbr, 0.5 - 0.5 * cos(0.09 * time));
    vec3 light = one * a + two * b;
    light = mix(light, (one + two) * a * b * 1.4, 0.5) + vec3(1.0, 0.9, 0.7) * pow(a * b * c, 3.0) * 0.9;
    gl_FragColor = vec4(light * (1.05 - 0.6 * dot(p, p)), 1.0);
}
