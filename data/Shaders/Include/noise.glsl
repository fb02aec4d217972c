// noise.glsl -- chance that is the same on every graphics card, and noise made of it

float hash1(uint n)
{
    n = (n << 13u) ^ n;
    n = n * (n * n * 15731u + 789221u) + 1376312589u;
    return float(n & 0x7FFFFFFFu) / float(0x7FFFFFFF);
}

float hash1(vec2 p)
{
    ivec2 i = ivec2(floor(p));
    return hash1(uint(i.x) * 1597334677u ^ uint(i.y) * 3812015801u);
}

vec2 hash2(vec2 p)
{
    return vec2(hash1(p), hash1(p + vec2(131.0, 57.0)));
}

// 0 to 1, smooth
float noise(vec2 p)
{
    vec2 i = floor(p), f = p - i;
    f = f * f * f * (f * (f * 6.0 - 15.0) + 10.0);
    return mix(mix(hash1(i), hash1(i + vec2(1, 0)), f.x), mix(hash1(i + vec2(0, 1)), hash1(i + vec2(1, 1)), f.x), f.y);
}

mat2 rotate(float angle)
{
    float c = cos(angle), s = sin(angle);
    return mat2(c, s, -s, c);
}

// four octaves, 0 to 1
float clouds(vec2 p)
{
    float sum = 0.0, weight = 0.53;
    for (int i = 0; i < 4; i++) {
        sum += weight * noise(p);
        p = rotate(0.6) * p * 2.03 + 17.1;
        weight *= 0.5;
    }
    return sum;
}
