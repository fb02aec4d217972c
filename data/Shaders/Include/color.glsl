// color.glsl -- colours that go together, and light that does not burn out

// A ring of colours: turn 0 to 1 goes once around. Bright at the start of every third.
vec3 rainbow(float turn)
{
    return 0.5 + 0.5 * cos(6.2831853 * (turn + vec3(0.0, 0.33, 0.67)));
}

// From black through a colour and its neighbour to white; level 0 to 1.
vec3 glow(float level, float hue)
{
    vec3 deep = rainbow(hue), light = rainbow(hue + 0.12);
    vec3 color = mix(deep * 0.25, deep, smoothstep(0.0, 0.45, level));
    color = mix(color, light * 0.6 + 0.4, smoothstep(0.4, 1.0, level));
    return color * smoothstep(0.0, 0.35, level);
}

// Light of any strength to a colour of the screen.
vec3 expose(vec3 light)
{
    return 1.0 - exp(-max(light, 0.0));
}
