// MixShader.cpp -- the one-pass kernel in the language of graphics cards, around the text of the mix arithmetic
#include "output/mixer/MixShader.h"

#include "output/mixer/MixKernelList.h"
#include "output/mixer/remap.h"

namespace {

#define VD_MIX_TEXT(...) #__VA_ARGS__
#define VD_MIX_ARITHMETIC(...) VD_MIX_TEXT(__VA_ARGS__)
#define VD_MIX_FUNCTION
constexpr char szArithmetic[] =
#include "output/mixer/MixArithmetic-inl.h"
    ;

constexpr char szWords[] = R"(
#define Pixel uint
#define Channels uvec3
#define Flag bool

uint Word(uint n) { return n; }
bool IsZero(uint p) { return p == 0u; }
bool Less(uint p, uint q) { return p < q; }
uint Select(bool f, uint p, uint q) { return f ? p : q; }
uvec3 Split(uint p) { return uvec3(p & 0xFFu, (p >> 8) & 0xFFu, (p >> 16) & 0xFFu); }
uvec3 Spread(uint p) { return uvec3(p); }
uint EachByte(uint p) { return p * 0x010101u; }
uvec3 TimesOver255(uvec3 c, uvec3 s) { return c * s / 255u; }
uvec3 TimesOver768(uvec3 c, uvec3 s) { return c * s / 768u; }
uint AssembleWide(uvec3 c) { return c.x | (c.y << 8) | (c.z << 16); }
uint Assemble(uvec3 c) { return AssembleWide(c); }
uint WeightedOver255(uint w, uint p1, uint p2)
{
    return Assemble((Split(w) * Split(p1) + (255u - Split(w)) * Split(p2)) / 255u);
}
uint ProductOver255(uint p1, uint p2) { return Assemble(Split(p1) * Split(p2) / 255u); }
uint Byte(uint p, int i) { return (p >> (8 * i)) & 0xFFu; }
uint BlueAndRed(uint p, int m, int n) { return uint(m) * Byte(p, 0) + uint(n) * Byte(p, 2); }
uint Bytes(uint p, int i, int j, int k) { return Byte(p, i) | (Byte(p, j) << 8) | (Byte(p, k) << 16); }
)";

// Pixels of a picture come from one buffer each, so that none is larger than drivers allow.
constexpr char szFrame[] = R"(
uniform ivec2 vSize;
uniform int nImages;
uniform int nSteps;
uniform int iResult;
uniform ivec4 avStep[STEPS_MAX];
uniform uint anWeight[STEPS_MAX];

uint ImagePixel(int iImage, int i)
{
    switch (iImage) {
    case 0: return aImage0[i];
    case 1: return aImage1[i];
    case 2: return aImage2[i];
    default: return aImage3[i];
    }
}

int Reflect(int v, int n)
{
    int nDistance = abs(v);
    int nQuotient = nDistance / n;
    int nRest = nDistance - nQuotient * n;
    return (nQuotient & 1) != 0 ? n - 1 - nRest : nRest;
}

ivec2 Displaced(ivec2 at, uint nFar, uint nDirection)
{
    uint i = nFar * LEVELS + nDirection;
    uint n = aDisplacement[i >> 1] >> (16u * (i & 1u));
    ivec2 to = at + ivec2(n & 0xFFu, (n >> 8) & 0xFFu) - 64;
    return ivec2(Reflect(to.x, vSize.x), Reflect(to.y, vSize.y));
}

uint Moved(int iKernel, int iImage, uint p1, uint p2, ivec2 at)
{
    ivec2 last = vSize - 1;
    if (iKernel == INVERT_X || iKernel == INVERT_XY)
        at.x = last.x - at.x;
    if (iKernel == INVERT_Y || iKernel == INVERT_XY)
        at.y = last.y - at.y;
    if (iKernel == DISPLACE)
        at = Displaced(at, MixSum(p1), MixSum(p2));
    return ImagePixel(iImage, at.y * vSize.x + at.x);
}

bool IsSpatial(int iKernel)
{
    return iKernel == INVERT_X || iKernel == INVERT_Y || iKernel == INVERT_XY || iKernel == DISPLACE;
}

void main()
{
    ivec2 at = ivec2(gl_GlobalInvocationID.xy);
    if (at.x >= vSize.x || at.y >= vSize.y)
        return;
    int i = at.y * vSize.x + at.x;
    uint aPlace[PLACE_STEPS + STEPS_MAX];
    aPlace[0] = 0u;
    for (int iImage = 0; iImage < nImages; iImage++)
        aPlace[PLACE_IMAGES + iImage] = ImagePixel(iImage, i);
    for (int s = 0; s < nSteps; s++) {
        ivec4 rule = avStep[s];
        uint p1 = aPlace[rule.y];
        uint p2 = aPlace[rule.z];
        aPlace[PLACE_STEPS + s] = IsSpatial(rule.x) ? Moved(rule.x, rule.y - PLACE_IMAGES, p1, p2, at)
                                                    : Mixed(rule.x, p1, p2, aPlace[rule.w], anWeight[s]);
    }
    aResult[i] = aPlace[iResult];
}
)";

std::string Define(const char *pszName, u32 n)
{
    return std::string("#define ") + pszName + " " + std::to_string(n) + "\n";
}

std::string DefineKernel(const char *pszName, MixKernel eKernel)
{
    return Define(pszName, static_cast<u32>(eKernel));
}

std::string Buffer(const char *pszAccess, const std::string &sName, u32 iBinding)
{
    return "layout(std430, binding = " + std::to_string(iBinding) + ") " + pszAccess + " buffer B" +
           std::to_string(iBinding) + " { uint " + sName + "[]; };\n";
}

std::string Head()
{
    std::string s = "#version 430 core\nlayout(local_size_x = " + std::to_string(MIX_GROUP_WIDTH) +
                    ", local_size_y = " + std::to_string(MIX_GROUP_HEIGHT) + ") in;\n";
    for (u32 i = 0; i < MIX_SHADER_IMAGES; i++)
        s += Buffer("readonly", "aImage" + std::to_string(i), i);
    s += Buffer("writeonly", "aResult", MIX_BINDING_RESULT);
    s += Buffer("readonly", "aDisplacement", MIX_BINDING_DISPLACEMENTS);
    s += Define("STEPS_MAX", MIX_STEPS_MAX) + Define("PLACE_IMAGES", MIX_PLACE_IMAGES) +
         Define("PLACE_STEPS", MIX_PLACE_STEPS) + "#define LEVELS " + std::to_string(DISPLACE_LEVELS) + "u\n";
    return s + DefineKernel("INVERT_X", MixKernel::InvertX) + DefineKernel("INVERT_Y", MixKernel::InvertY) +
           DefineKernel("INVERT_XY", MixKernel::InvertXY) + DefineKernel("DISPLACE", MixKernel::Displace);
}

// The kernels that look at their own pixel only, chosen by number.
std::string Choice()
{
    std::string s = "\nuint Mixed(int iKernel, uint p1, uint p2, uint m, uint w)\n{\n    switch (iKernel) {\n";
#define VD_CASE(name, nSources, nInstructions, expression)                                                             \
    s += "    case " + std::to_string(static_cast<u32>(MixKernel::name)) + ": return " #expression ";\n";
    VD_MIX_KERNELS(VD_CASE)
#undef VD_CASE
    return s + "    }\n    return 0u;\n}\n";
}

} // namespace

std::string MixShaderText()
{
    return Head() + szWords + szArithmetic + Choice() + szFrame;
}

std::vector<u32> MixDisplacements()
{
    const DisplaceDirection *pDirections = GetDisplaceDirections();
    std::vector<u32> table((DISPLACE_LEVELS * DISPLACE_LEVELS + 1) / 2);
    for (u32 nFar = 0; nFar < DISPLACE_LEVELS; nFar++)
        for (u32 n = 0; n < DISPLACE_LEVELS; n++) {
            const f32 fFar = static_cast<f32>(nFar) * DISPLACE_MAGNITUDE_UNIT;
            const u32 x = static_cast<u32>(static_cast<i32>(fFar * pDirections[n].fCos) + DISPLACE_WAY_MAX + 1);
            const u32 y = static_cast<u32>(static_cast<i32>(fFar * pDirections[n].fSin) + DISPLACE_WAY_MAX + 1);
            const u32 i = nFar * DISPLACE_LEVELS + n;
            table[i / 2] |= (x | y << 8) << (i % 2 * 16);
        }
    return table;
}
