// MixArithmetic-inl.h -- what each mix operator computes, as a function of pixels: the one text of it
//
// Compiled over vectors of pixels for each instruction set, and in words that a compute shader's language shares,
// so that its text can become part of a shader. Who includes it provides
//   Pixel      32-bit words b + 256 g + 65536 r + 2^24 a, with & ^ + and shifts to the right by 8
//   Channels   the three colour bytes, each in a field of 16 bits or more
//   Flag       one truth value a pixel
//   Word(n)    the same word for every pixel          Split(p)        the colour bytes of p
//   Spread(p)  the word p as each of the channels     Assemble(c)     b + 256 g + 65536 r, channels below 256
//   EachByte(p) the word p, below 256, as each of     AssembleWide(c) the same by OR, channels may run over
//              the colour bytes
//   TimesOver255(c, s), TimesOver768(c, s)
//              c * s / 255 (768), truncated, c to 255, s to 765
//   WeightedOver255(w, p1, p2), ProductOver255(p1, p2)
//              (w p1 + (255 - w) p2) / 255 and p1 p2 / 255, truncated, for each of the colour bytes; alpha 0
//   BlueAndRed(p, m, n) m times the blue byte and n times the red one, added
//   Bytes(p, i, j, k)   the word whose blue, green, red bytes are the bytes i, j, k of p (0 blue, 1 green, 2 red)
//   IsZero(p), Less(p, q) (words below 2^31), Select(f, p, q)

// clang-format off
VD_MIX_ARITHMETIC(

// Sum of the colour bytes, 0 to 765: the measure of both scales and of the displacement.
VD_MIX_FUNCTION Pixel MixSum(Pixel p)
{
    return BlueAndRed(p, 1, 1) + ((p >> 8) & Word(0xFFu));
}

// Red and twice blue, 0 to 765; green does not count.
VD_MIX_FUNCTION Pixel MixMeasure(Pixel p)
{
    return BlueAndRed(p, 2, 1);
}

VD_MIX_FUNCTION Pixel MixBlend(Pixel p1, Pixel p2, Pixel w)
{
    return WeightedOver255(EachByte(w), p1, p2);
}

VD_MIX_FUNCTION Pixel MixBlendAlpha(Pixel p1, Pixel p2, Pixel m)
{
    return WeightedOver255(m, p1, p2);
}

VD_MIX_FUNCTION Pixel MixBlendBoolean(Pixel p1, Pixel p2, Pixel m)
{
    return Select(IsZero(m), p2, p1);
}

VD_MIX_FUNCTION Pixel MixOverwriteBackground(Pixel p1, Pixel p2)
{
    return Select(IsZero(p2 & Word(0x00FFFFFFu)), p1, p2);
}

VD_MIX_FUNCTION Pixel MixOnlyWriteForeground(Pixel p1, Pixel p2)
{
    return Select(IsZero(p2 & Word(0x00FFFFFFu)), Word(0u), p1);
}

VD_MIX_FUNCTION Pixel MixBlendXor(Pixel p1, Pixel p2)
{
    return p1 ^ p2;
}

VD_MIX_FUNCTION Pixel MixBlendMax(Pixel p1, Pixel p2)
{
    return Select(Less(MixMeasure(p2), MixMeasure(p1)), p1, p2);
}

VD_MIX_FUNCTION Pixel MixGunShift1(Pixel p)
{
    return Bytes(p, 2, 0, 1);
}

VD_MIX_FUNCTION Pixel MixGunShift2(Pixel p)
{
    return Bytes(p, 1, 2, 0);
}

VD_MIX_FUNCTION Pixel MixNegative(Pixel p)
{
    return p ^ Word(0x00FFFFFFu);
}

VD_MIX_FUNCTION Pixel MixIntensityScale(Pixel p1, Pixel p2)
{
    return Assemble(TimesOver768(Split(p2), Spread(MixSum(p1))));
}

// The twin of the one-pass path: scales by the measure of Blend Max over 255, and what runs over a byte runs into
// the next one.
VD_MIX_FUNCTION Pixel MixIntensityScaleOnePass(Pixel p1, Pixel p2)
{
    return AssembleWide(TimesOver255(Split(p2), Spread(MixMeasure(p1))));
}

VD_MIX_FUNCTION Pixel MixIntensityScaleRgb(Pixel p1, Pixel p2)
{
    return ProductOver255(p1, p2);
}

)
// clang-format on
