// ShaderDrawing_test.cpp -- tests stock/PMShader: what shader files draw, say and do when they change
#include "tests/ShaderHost.h"

#include <cmath>
#include <thread>

namespace {

constexpr uint32_t RED = 0xFF0000, GREEN = 0x00FF00;

// Red where the condition holds, blue elsewhere.
std::string RedIf(const std::string &condition)
{
    return "void mainImage(out vec4 c, in vec2 p) { c = " + condition + " ? vec4(1, 0, 0, 1) : vec4(0, 0, 1, 1); }\n";
}

std::string LastMessage()
{
    return ShaderMessages.empty() ? "" : ShownText(ShaderMessages.back());
}

TEST_F(ShaderDrawing, TakesTheWaysInWhichAuthorsWrite)
{
    const std::string files[] = {
        "void mainImage(out vec4 c, in vec2 p) { c = vec4(p.x > 0.0 ? 1 : 0, 0, iTime * 0.0, 0); } // no line end",
        "\xEF\xBB\xBF#version 300 es\r\nprecision highp float;\r\nout vec4 o;\r\nvoid main() {\r\n o = vec4(1, 0, 0, "
        "1);\r\n}\r\n",
        "#ifdef GL_ES\nprecision mediump float;\n#endif\n#extension GL_OES_standard_derivatives : enable\nuniform "
        "float time;\n"
        "uniform vec2 resolution, mouse;\nvoid main(void) { gl_FragColor = vec4(step(0.1, resolution.x), time * 0.0, "
        "0, 1); }",
        "/*{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"float\",\"MIN\":0,\"MAX\":4,\"DEFAULT\":1},{\"NAME\":\"i\",\"TYPE\":"
        "\"image\"}]}*/\n"
        "void main() { vec2 u = isf_FragNormCoord; gl_FragColor = vec4(a * step(u.x, 2.0) * step(1.0, RENDERSIZE.x), "
        "TIME * 0.0 + IMG_NORM_PIXEL(i, u).g + IMG_THIS_PIXEL(i).g, float(FRAMEINDEX) * 0.0, 1); }",
        "varying vec2 vUv;\nvoid main() { gl_FragColor = vec4(vUv.x > 0.4 && vUv.y > 0.4 ? 1.0 : 0.0, 0, 0, 1); }",
        "#version 460 core\nin highp vec2 uv;\nlayout(location = 0) out vec4 fragColor;\nuniform vec3 iResolution;\n"
        "void main() { fragColor = vec4(uv.x * 0.0 + iResolution.z, 0, 0, 1); }",
        "uniform sampler2D iChannel0, iChannel1;\nvoid mainImage(out vec4 c, in vec2 p) { c = vec4(1, "
        "texture2D(iChannel0, p).x, 0, 1); "
        "c.b = texture(iChannel1, p / 64.0).x * 0.0 + iChannelResolution[2].x - iResolution.x + iMouse.z + iDate.x - "
        "2000.0; }",
        "void mainImage(out vec4 c, in vec2 p);\n#define T(x) (x)\nvoid mainImage(out vec4 c, in vec2 p) { /* { */ c = "
        "T(vec4(1,0,0,1)); }",
        "#if __VERSION__ <= 120\nvarying vec2 left_coord;\n#else\nin vec2 left_coord;\n#endif\nvarying vec2 a, b;\n"
        "void main() { gl_FragColor = vec4(step(0.1, left_coord.x + a.x + b.y), 0, 0, 1); }",
        "#version 300 es\nprecision highp float;\nout vec4 outColor;\n#define gl_FragColor outColor\nvoid main() { "
        "gl_FragColor = vec4(1, 0, 0, 1); }",
        "#define iTime (iTime * 0.5)\n#define M(c, p) void mainImage(out vec4 c, in vec2 p)\nM(c, p) { c = vec4(1, "
        "iTime "
        "* 0.0, 0, 1); }",
        "#extension GL_EXT_shader_texture_lod : require\nvoid mainImage(out vec4 c, in vec2 p) { c = vec4(1, 0, 0, "
        "textureLod(iSound, p, 0.0).r); c.b = texelFetch(iSound, ivec2(0), 0).r * iSound; }",
        "void main() { float filter = 1.0, active = filter; gl_FragColor.r += active; }",
        // Variables without a value, an output that is read first: zeros, as in a browser.
        "void mainImage(out vec4 o, vec2 u) { vec3 p, q = vec3(1); float i, d; mat2 m; bool b; uint n; for (o *= i; "
        "i++ "
        "< 9.; d += .25) p += q; o.r += d + m[0][1] + p.x - 9. - float(n); o.g = b ? 1. : 0.; }",
        "struct S { float x; vec2 y; }; float g; vec3 f(float a, vec2 b); vec3 f(float a, vec2 b) { switch (int(a)) { "
        "case 0: float h, k = 1.0; g += h + k; } return vec3(g, b); }\n"
        "void mainImage(out vec4 o, vec2 u) { S s = S(0.0, vec2(0)); float a[2]; a[0] = 0.0; for (float v, w = 1.; v < "
        "w; v++) o.rgb = f(v, s.y) + a[0]; }",
        "/*{\"INPUTS\":[{\"NAME\":\"iMouse\",\"TYPE\":\"point2D\"},{\"NAME\":\"filter\",\"TYPE\":\"float\",\"DEFAULT\":"
        "1},"
        "{\"NAME\":\"iSeed\",\"TYPE\":\"float\",\"DEFAULT\":0},{\"NAME\":\"i\",\"TYPE\":\"image\"}]}*/\n"
        "void main() { gl_FragColor = vec4(filter, iMouse.xy + iMouse.zw + iSeed, 1) * step(1.0, _i_imgSize.x) * "
        "_i_imgRect.z; }",
        "/*{\"INPUTS\":[{\"NAME\":\"filter\",\"TYPE\":\"image\"}]}*/\n"
        "void main() { gl_FragColor = vec4(step(1.0, _filter_imgSize.x), IMG_THIS_PIXEL(filter).gb, 1); }",
        "vec3 iSoundOf(float iSound) { return vec3(iSound, 0, 0); }\nvoid mainImage(out vec4 c, in vec2 p) { c.rgb = "
        "iSoundOf(1.0); }",
    };
    for (const std::string &file : files) {
        SCOPED_TRACE(file);
        const auto p = Open(file);
        p->Draw();
        EXPECT_EQ(RED, p->Middle());
        EXPECT_EQ("", LastMessage());
    }
}

TEST_F(ShaderDrawing, TellsTheFileAndTheLineOfAFault)
{
    const std::string good = "void mainImage(out vec4 c, in vec2 p) { c = vec4(1); }\n";
    Write("Include/part.glsl", "float part() { return 1.0; }\nfloat bad() { return nothing; }\n");
    Write("Include/fine.glsl", "float fine() { return 1.0; }\n");
    const struct {
        std::string text, place;
    } as[] = {{"// one\n" + good + "/* two\n three */ float f() { return unknown; }\n", "Test.glsl:4: "},
              {"#include \"part.glsl\"\n" + good, "part.glsl:2: "},
              {"#include \"fine.glsl\"\n" + good + "int i = oops;\n", "Test.glsl:3: "},
              {good + "#include \"absent.glsl\"\n", "Test.glsl:2: there is no file \"absent.glsl\""},
              {good + "\n#include fine\n", "Test.glsl:3: #include needs"},
              {good + "/* without end", "a comment has no end"},
              {"float f;\n", "no function mainImage"},
              {"/*{\n \"INPUTS\": [ 5 }\n}*/\n" + good, "Test.glsl:2: the header comment is no valid JSON"},
              {"/*{\"INPUTS\": [\n{\"NAME\": \"x\", \"TYPE\": \"cube\"}]}*/\n" + good,
               "Test.glsl:2: the input x has no TYPE"},
              {"/*{\n\"IMPORTED\": {\"pic\": {\"PATH\": \"a.jpg\"}}}*/\nvoid main() { gl_FragColor = vec4(1) + "
               "IMG_THIS_PIXEL(pic); }",
               "Test.glsl:2: pictures from files (IMPORTED) are not supported: pic"},
              {"float f(float x) { return f(x); }\nvoid main() { gl_FragColor = vec4(f(1.0)); }", "Test.glsl: error"}};
    for (const auto &[text, place] : as) {
        SCOPED_TRACE(text);
        ShaderMessages.clear();
        const auto p = Open(text);
        p->plane.Fill(0x123456);
        p->Draw(3);
        EXPECT_EQ(text.starts_with("/*{") ? 0xFFFFFFu : 0x123456u, p->Middle())
            << "a faulty header still draws, a faulty text does not";
        ASSERT_EQ(1u, ShaderMessages.size());
        EXPECT_NE(std::string::npos, LastMessage().find(place)) << LastMessage();
    }
}

TEST_F(ShaderDrawing, SaysWhatFilesAndDriversSayLetterByLetter)
{
    const std::string name = "100% {odd} %d \\rtf \xC3\xBC\xF0\x9F\x8C\x88.glsl";
    ShaderInstance instance(Write(name, "void mainImage(out vec4 c, in vec2 p) { c = oops; }\n"), 8, 8, false, 256);
    EXPECT_NE(std::string::npos, LastMessage().find(name + " does not compile")) << LastMessage();
    Open("#error " + std::string(20000, '{') + "\n" + RedIf("true"));
    EXPECT_TRUE(IsRichText(ShaderMessages.back()));
    EXPECT_LE(ShaderMessages.back().size(), 4095u);
}

TEST_F(ShaderDrawing, IncludesOnlyFromItsFolderAndEachFileOnce)
{
    Write("Include/a.glsl", "#include \"sub/b.glsl\"\nfloat a() { return b(); }\n");
    std::filesystem::create_directories(folder / "Include/sub");
    Write("Include/sub/b.glsl", "#include \"a.glsl\"\n#include <sub\\b.glsl>\nfloat b() { return 1.0; }\n");
    const auto p = Open("#include \"a.glsl\"\n  #  include \"sub/b.glsl\"\n" + RedIf("a() + b() == 2.0"));
    p->Draw();
    EXPECT_EQ(RED, p->Middle()) << LastMessage();

    Write("secret.glsl", "const float secret = 1.0;\n");
    std::filesystem::create_symlink(folder / "secret.glsl", folder / "Include/link.glsl");
    for (const std::string &name :
         {std::string("../secret.glsl"), (folder / "secret.glsl").string(), std::string("sub/../../secret.glsl"),
          std::string("link.glsl"), std::string("."), std::string("sub")}) {
        SCOPED_TRACE(name);
        ShaderMessages.clear();
        Open("#include \"" + name + "\"\n" + RedIf("true"))->Draw();
        EXPECT_EQ(1u, ShaderMessages.size());
    }
}

TEST_F(ShaderDrawing, ReadsTheFileAgainWhenItChanges)
{
    const std::string header = "/*{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"float\",\"DEFAULT\":0.25}]}*/";
    Write("Include/part.glsl", "const float part = 0.0;\n");
    const auto p = Open(header + "#include \"part.glsl\"\n" + RedIf("a + part == 1.0"));
    p->pModule->Set("a", 1);
    p->Draw();
    EXPECT_EQ(RED, p->Middle());

    Write("Test.glsl", header + "garbage\n" + RedIf("false"));
    p->Draw(3, 300);
    EXPECT_EQ(RED, p->Middle()) << "the old version runs on";
    ASSERT_EQ(1u, ShaderMessages.size());

    // The control stays; an input that came with the change has its default.
    const std::string more =
        "/*{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"float\"},{\"NAME\":\"b\",\"TYPE\":\"float\",\"DEFAULT\":0.5}]}*/";
    Write("Test.glsl", more + "#include \"part.glsl\"\n" + RedIf("a == 1.0 && b == 0.5 && part == 7.0"));
    p->Draw(3, 300);
    EXPECT_NE(RED, p->Middle());
    EXPECT_TRUE(ShaderMessages.back().empty()) << "the message of the fault goes when it is mended";
    EXPECT_EQ(1u, p->pModule->apControl.size());
    Write("Include/part.glsl", "const float part = 7.0;\n");
    p->Draw(3, 300);
    EXPECT_EQ(RED, p->Middle());

    std::filesystem::remove(folder / "Test.glsl");
    p->Draw(3, 300);
    EXPECT_EQ(RED, p->Middle()) << "without its file it runs on";
    // It comes back by a rename, is cut short, and comes back with its input under another name.
    const std::string renamed = "/*{\"INPUTS\":[{\"NAME\":\"z\",\"TYPE\":\"float\",\"DEFAULT\":0.5}]}*/";
    std::filesystem::rename(Write("Next.glsl", RedIf("false")), folder / "Test.glsl");
    p->Draw(3, 300);
    EXPECT_NE(RED, p->Middle());
    Write("Test.glsl", "");
    p->Draw(3, 300);
    EXPECT_NE(RED, p->Middle());
    EXPECT_FALSE(ShaderMessages.back().empty()) << "an empty file is a fault";
    Write("Test.glsl", renamed + RedIf("z == 0.5"));
    p->Draw(3, 300);
    EXPECT_EQ(RED, p->Middle()) << "it has its default, since the control of another name is not its own";
    EXPECT_EQ(1u, p->pModule->apControl.size());
    EXPECT_TRUE(ShaderMessages.back().empty());
    p->plane.context.bFixedClock = 1;
    Write("Test.glsl", RedIf("false"));
    p->Draw(3, 300);
    EXPECT_EQ(RED, p->Middle()) << "a film does not change under way";
}

TEST_F(ShaderDrawing, MakesBrightnessThePaletteIndex)
{
    const std::string ramp =
        "void mainImage(out vec4 c, in vec2 p) { c = vec4(vec3((p.x - 0.5) / (iResolution.x - 1.0)), 1) * 1.0; }";
    for (const int32_t nColors : {0, 1, 2, 97, 256, 2048}) {
        SCOPED_TRACE(nColors);
        const auto p = Open(ramp, 1025, 3, true, nColors);
        const std::vector<uint32_t> adw = p->Draw();
        const double dTop = (nColors ? nColors : 256) - 1;
        for (size_t x = 0; x < 1025; x++)
            EXPECT_NEAR(dTop * (double)x / 1024, adw[x], 0.6) << x;
    }
    const auto p =
        Open("void mainImage(out vec4 c, in vec2 p) { c = vec4(-9, 0.0 / (p.x - p.x), 9e9, 1); }", 16, 8, true, 97);
    for (const uint32_t dw : p->Draw())
        EXPECT_LT(dw, 97u);
}

TEST_F(ShaderDrawing, ComesToAnEndOfEveryLoop)
{
    const std::string loops[] = {
        "for (;;) n += 1.0;",
        "while (true) { n += 1.0; }",
        "do n += 1.0; while (n > 0.0);",
        "for (int i = 0; i < 10; i++) { n += 1.0; i--; }",
        "for (float f = 0.0; f < 1e30; f += 1.0) n += f;",
        "for (int i = 0; i >= 0; i = i) n += 1.0;",
        "FOREVER",
        "for (int i = 0; i < 10; i++) { Zero(i); n += 1.0; }",
        "for (int m = 0; m < 10; m++) { n += 1.0; BACK; }",
        "for (int i = 0; i < 10; i++) for (int j = 0; j < 2; j++) { n += 1.0; i = 0; }",
        "for (int i = 0; i < 10; i++) if (n < 0.0) n = 0.0; else { n += 1.0; i = 0; }",
        "for (int i = 0; i < N; i++) n += 1.0;",
        "for (int i = 0; i < 4000; i++) for (int j = 0; j < 4000; j++) for (int k = 0; k < 4000; "
        "k++) n += 1.0;",
        "for (int i = 0; i < 4000; i++) n += Twice(n);"};
    for (const std::string &loop : loops) {
        SCOPED_TRACE(loop);
        const auto p = Open(
            "#define FOREVER for (;;) { n += 1.0; }\n#define BACK m = 0\nfloat n = 0.0;\n"
            "void Zero(inout int i) { i = 0; }\n"
            "float Once(float f) { for (int i = 0; i < 4000; i++) f = sin(f); return f; }\n"
            "float Twice(float f) { for (int i = 0; i < 4000; i++) f = Once(f) + 1.0; return f; }\n"
            "const int N = 2000000000; void Unused() { const int N = 10; }\nvoid mainImage(out vec4 c, in vec2 p) { " +
            loop + " c = vec4(0, n >= 1.0 ? 1.0 : 0.0, 0, 1); }");
        p->Draw();
        EXPECT_EQ(GREEN, p->Middle()) << LastMessage();
    }
    const auto p =
        Open("const int N = 50;\nvoid mainImage(out vec4 c, in vec2 p) { int n = 0, k = 0; for (int i = 0; i < N; i++) "
             "n++;\n"
             "while (k < 60) k++; for (; k < 70 && k >= 0; ) { k += 1; }\n for (int i = 3, j = 9; i < j; i++) n++;\n"
             "for (float f = 0.0; f < 4.0; f++) n++; c = n == 60 && k == 70 ? vec4(1, 0, 0, 1) : vec4(0); }");
    p->Draw();
    EXPECT_EQ(RED, p->Middle()) << "honest loops run as they are written; " << LastMessage();
}

// The steps of a pixel are counted over all such loops: where the first one used them up, the second takes none.
TEST_F(ShaderDrawing, SeesThroughOtherNamesForACounter)
{
    const struct {
        std::string before, loop;
    } as[] = {
        {"", "for (int i = 0; i < 10; i++) { (i)--; n += 1.0; }"},
        {"", "for (int i = 0; i < 10; i++) { --((i)); n += 1.0; }"},
        {"#define A i\n", "for (int i = 0; i < 10; i++) { A = 0; n += 1.0; }"},
        {"#define A i\n#define B A = 0\n", "for (int i = 0; i < 10; i++) { B; n += 1.0; }"},
        {"#define A i\nvoid Zero(inout int k) { k = 0; }\n", "for (int i = 0; i < 10; i++) { Zero(A); n += 1.0; }"},
        {"#define A(x) x\n", "for (int i = 0; i < 10; i++) { A(i) = 0; n += 1.0; }"},
        {"#define A =\n", "for (int i = 0; i < 10; i++) { i A 0; n += 1.0; }"},
        {"#define A =\n#define B(x) x A 0\n", "for (int i = 0; i < 10; i++) { B(i); n += 1.0; }"},
        {"#define A(x) --\n", "for (int i = 0; i < 10; i++) { A(0) i; n += 1.0; }"},
        {"#define i k\nint k;\n", "for (int i = 0; i < 10; i++) { k = 0; n += 1.0; }"},
        {"#define A for (i = 0; i < 5; i++)\n", "for (int i = 0; i < 10; i++) { A n += 1.0; }"},
        {"const int N = 10;\n", "int N = 2000000000; for (int i = 0; i < N; i++) n += 1.0;"},
        {"#define N 10\n#undef N\n#define N 2000000000 + 0\n", "for (int i = 0; i < N; i++) n += 1.0;"}};
    for (const auto &[before, loop] : as) {
        SCOPED_TRACE(before + loop);
        const auto p = Open(before + "void mainImage(out vec4 c, in vec2 p) { float n = 0.0; { " + loop +
                            " } float m = n; { " + loop + " } c = n > 0.0 && n == m ? vec4(0, 1, 0, 1) : vec4(0); }");
        p->Draw();
        EXPECT_EQ(GREEN, p->Middle()) << LastMessage();
    }
    const std::string loop = "for (int i = 0; i < N; i++) { float f = S(T) + float(i); if (f < 0.0) continue; F n++; }";
    const auto p = Open("#define N 3000\n#ifdef N\n#define T iTime\n#define S(x) sin(x)\n#endif\n#define F for (int j "
                        "= 0; j < 1; j++)\nvoid mainImage(out vec4 c, in vec2 p) { int n = 0; " +
                        loop + loop + loop + " c = n >= 8192 ? vec4(0, 1, 0, 1) : vec4(0, 0, n, 1); }");
    p->Draw();
    EXPECT_EQ(GREEN, p->Middle()) << "macros as such make no loop suspicious; " << LastMessage();
}

// Files that crash a compiler, or keep it for minutes, do not get there.
TEST_F(ShaderDrawing, KeepsFromTheDriverWhatItWouldChokeOn)
{
    std::string doubling = "#define A0 + 1.0\n", sum = "0.0", table = "float a[] = float[](-1.0", late, calls;
    for (int i = 0; i < 30; i++) {
        late = "#define A" + std::to_string(i + 1) + " A" + std::to_string(i) + " A" + std::to_string(i) + "\n" + late;
        calls += "C(D,";
        doubling += "#define A" + std::to_string(i + 1) + " A" + std::to_string(i) + " A" + std::to_string(i) + "\n";
    }
    calls += "1.0" + std::string(30, ')') + ";\n";
    for (int i = 0; i < 100000; i++)
        sum += "+1.0";
    for (int i = 0; i < 3000; i++)
        table += ", -1.0";
    const std::string red = RedIf("true");
    const struct {
        std::string text, place;
    } as[] = {
        {"#define W while\n" + red, "Test.glsl:1: a macro may hold a whole loop"},
        {red + "#define F(a) for (a;;\n", "Test.glsl:2: a macro may hold a whole loop"},
        {"#define J(a, b) a##b\n" + red, "Test.glsl:1: a macro may"},
        {doubling + "float f = 0.0 A30;\n" + red, "Test.glsl:32: the shader has more words"},
        {late + "#define A0 + 1.0\nfloat f = 0.0 A30;\n" + red, "Test.glsl:32: the shader has more words"},
        {"#define D +\n#define C(f, x) x f x\nfloat f = " + calls + red, "Test.glsl:3: a statement has"},
        {"#define D(x) x + x\n#define C(f, x) f(x)\nfloat f = " + calls + red, "Test.glsl:3: the shader has"},
        {"#define X B G\n#define B X\n#define G + 1.0\nfloat f = 0.0 B;\n" + red, "Test.glsl:4: the shader"},
        {"#define sin(a) sin(a)\n#define S(a, b) mix(a + a, b, a)\nfloat S = S(1.0, S(2.0, sin(S(3.0, 4.0))));\n" + red,
         ""},
        {"float f = " + sum + ";\n" + red, "Test.glsl:1: a statement has more operators"},
        {"float f[100000000];\n" + red, "Test.glsl:1: an array has at most"},
        {std::string(500000, ';') + red, "Test.glsl:1: the shader has more words"},
        {"\xFF\xFE/\0/\0", "in UTF-16"},
        {std::string(100000, '(') + std::string(100000, '{') + red, "Test.glsl:1: "},
        {table + ");\n" + red, ""}};
    for (const auto &[text, place] : as) {
        SCOPED_TRACE(text.substr(0, 200));
        ShaderMessages.clear();
        const auto p = Open(text);
        p->Draw();
        EXPECT_EQ(place.empty(), p->Middle() == RED);
        EXPECT_NE(std::string::npos, LastMessage().find(place)) << LastMessage();
    }
}

// A software renderer draws very plain shaders by another way, tile by tile.
TEST_F(ShaderDrawing, GivesEveryPixelOfAPlainPictureItsColour)
{
    const auto p =
        Open("/*{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"color\",\"DEFAULT\":[1,0,0,1]},{\"NAME\":\"b\",\"TYPE\":"
             "\"float\",\"DEFAULT\":0.5}]}*/\nvoid main() { gl_FragColor = a * b; }",
             320, 180);
    for (const uint32_t dw : p->Draw(2))
        ASSERT_EQ(0x800000u, dw);
    const auto q = Open("void mainImage(out vec4 c, in vec2 p) { c = vec4(1, 0, 0, 1); if (p.y < 4.0 && iFrame > 0) "
                        "discard; }");
    EXPECT_EQ(0u, q->Draw(2)[0]) << "what is left out is black, not the frame before";
}

// Two buffers: a small one that keeps what it held, one that may hold any number; the picture shows both.
TEST_F(ShaderDrawing, DrawsItsPassesOneAfterTheOther)
{
    const std::string inputs = "\"INPUTS\":[{\"NAME\":\"part\",\"TYPE\":\"float\",\"MIN\":1,\"MAX\":9,\"DEFAULT\":4}]",
                      passes =
                          "{\"TARGET\":\"small\",\"PERSISTENT\":true,\"WIDTH\":\"floor($WIDTH / $part)\",\"HEIGHT\":"
                          "\"max(2, -1.0 * ($HEIGHT - 8) / 2.0)\"},{\"TARGET\":\"sum\",\"FLOAT\":true}",
                      body =
                          "void main() { vec2 u = isf_FragNormCoord;\nif (PASSINDEX == 0) gl_FragColor = "
                          "IMG_NORM_PIXEL(small, u) + vec4(RENDERSIZE == vec2(4, 2) ? 0.25 : 0.0, 0, 0, 1);\n"
                          "else if (PASSINDEX == 1) gl_FragColor = IMG_THIS_PIXEL(sum) + IMG_NORM_PIXEL(small, u) - "
                          "vec4(0, 2, 0, 0);\n"
                          "else gl_FragColor = vec4(IMG_SIZE(small) == vec2(4, 2) ? IMG_NORM_PIXEL(small, u).r : 0.0,"
                          "IMG_THIS_PIXEL(sum).r * 0.5, -0.1 * IMG_THIS_PIXEL(sum).g, 1); }";
    for (const bool bPicture : {true, false}) {
        const auto p = Open("/*{" + inputs + ",\"PASSES\":[" + passes + (bPicture ? ",{}" : ",{\"TARGET\":\"x\"}") +
                            "]}*/\n" + body);
        for (int32_t i = 0; i < 2; i++) {
            p->Draw(2);
            EXPECT_NEAR(0.5 * 255, p->Middle() >> 16, 1) << LastMessage();
            EXPECT_NEAR(0.375 * 255, p->Middle() >> 8 & 255, 1);
            EXPECT_NEAR(0.4 * 255, p->Middle() & 255, 1);
            p->pModule->Reset(p->plane, 3); // all buffers black
        }
    }
    const auto changing = Open("/*{\"PASSES\":[{\"TARGET\":\"a\"},{}]}*/\n" + RedIf("PASSINDEX == 1"));
    changing->Draw();
    EXPECT_EQ(RED, changing->Middle());
    Write("Test.glsl", RedIf("PASSINDEX == 0"));
    changing->Draw(3, 300);
    EXPECT_EQ(RED, changing->Middle()) << "a version without passes has the first one";
    std::string many;
    for (int i = 0; i < 16; i++)
        many += ",{}";
    const struct {
        std::string passes, fault;
    } as[] = {{"{\"TARGET\":\"a\",\"WIDTH\":\"$WIDTH /\"}", "the WIDTH of a pass"},
              {"{\"TARGET\":\"a\",\"HEIGHT\":\"$PART\"}", "the HEIGHT of a pass"},
              {"{\"TARGET\":\"a\",\"WIDTH\":\"" + std::string(9999, '(') + "\"}", "the WIDTH of a pass"},
              {"{\"TARGET\":\"part\"}", "there is an input and a pass part"},
              {"{\"TARGET\":\"2x\"}", "the TARGET of a pass"},
              {"{\"TARGET\":\"a\"}" + many + ",{\"TARGET\":\"b\"}", "there are more than 16 passes"},
              {"{\"TARGET\":\"a\",\"WIDTH\":-1e30,\"HEIGHT\":\"1/0\"},5,[],{\"TARGET\":7}", ""}};
    for (const auto &[list, fault] : as) {
        SCOPED_TRACE(list);
        ShaderMessages.clear();
        const auto p = Open("/*{" + inputs + ",\"PASSES\":[" + list + "]}*/\n" + RedIf("true"));
        p->Draw(2);
        EXPECT_EQ(RED, p->Middle()) << LastMessage();
        EXPECT_NE(std::string::npos, LastMessage().find("Test.glsl:1: " + fault)) << LastMessage();
    }
}

TEST_F(ShaderDrawing, DrawsTwoPlanesAtOnceAsOneAfterTheOther)
{
    const std::string file =
        Write("Both.glsl", "/*{\"PASSES\":[{\"TARGET\":\"sum\",\"FLOAT\":true},{}]}*/\nvoid main() { gl_FragColor = "
                           "IMG_THIS_PIXEL(sum) * 0.9 + texture2D(iNoise, isf_FragNormCoord + TIME) * 0.1; }");
    std::vector<uint32_t> aPicture[2][2];
    for (const bool bAtOnce : {false, true}) {
        ShaderInstance p(file, 64, 32, false, 256), q(file, 32, 64, true, 97);
        std::thread other([&] { aPicture[bAtOnce][0] = p.Draw(10); });
        if (!bAtOnce)
            other.join();
        aPicture[bAtOnce][1] = q.Draw(10);
        if (bAtOnce)
            other.join();
    }
    EXPECT_EQ(aPicture[0][0], aPicture[1][0]);
    EXPECT_EQ(aPicture[0][1], aPicture[1][1]);
}

TEST_F(ShaderDrawing, HearsTheSoundOfNowAndBefore)
{
    const auto p = Open("void mainImage(out vec4 c, in vec2 p) { c = vec4(iSound, texelFetch(iSoundHistory, ivec2(20, "
                        "0), 0).r, iSoundTime, 1); }");
    p->plane.sound.fRawLevel = 0.25f;
    p->Draw(20, 50);
    p->plane.sound.fRawLevel = 0.75f;
    p->Draw(4, 50);
    const uint32_t dw = p->Middle();
    EXPECT_NEAR(0.75 * 255, dw >> 16 & 255, 1);
    EXPECT_NEAR(0.25 * 255, dw >> 8 & 255, 1) << "a third of a second ago";
    EXPECT_NEAR((0.95 * 0.25 + 0.2 * 0.75) * 255, dw & 255, 2);
    for (const float fLevel : {std::nanf(""), 1e30f, -5.0f}) {
        p->plane.sound.fRawLevel = fLevel;
        p->Draw(3);
        EXPECT_EQ(fLevel > 1 ? 255u : 0u, p->Middle() >> 16 & 255);
    }
}

TEST_F(ShaderDrawing, FollowsItsControlsAtOnceEasedOrSummedUp)
{
    const auto p = Open("/*{\"INPUTS\":[{\"NAME\":\"a\",\"TYPE\":\"float\",\"DEFAULT\":0},{\"NAME\":\"b\",\"TYPE\":"
                        "\"float\",\"DEFAULT\":0,\"EASE\":1},"
                        "{\"NAME\":\"s\",\"TYPE\":\"float\",\"DEFAULT\":0,\"SUM\":true}]}*/\n"
                        "void mainImage(out vec4 c, in vec2 p) { c = vec4(a, b, s, 1); }");
    p->Draw(1);
    for (const char *pszName : {"a", "b", "s"})
        p->pModule->Set(pszName, 1);
    p->Draw(1, 250);
    EXPECT_EQ(255u, p->Middle() >> 16);
    EXPECT_NEAR(255 * (1 - std::exp(-0.75)), p->Middle() >> 8 & 255, 2);
    EXPECT_NEAR(0.25 * 255, p->Middle() & 255, 1);
    p->pModule->Reset(p->plane, 3);
    p->Draw(1);
    EXPECT_EQ(0xFFFF00u, p->Middle()) << "a reset takes the controls as they stand";
}

TEST_F(ShaderDrawing, RepeatsItselfByteForByte)
{
    const std::string file = "void mainImage(out vec4 c, in vec2 p) { vec2 u = p / iResolution.xy; c = "
                             "vec4(fract(sin(u.x * 40.0 + iTime) + iSeed.xyz), 1);\n"
                             "c.rgb = mix(c.rgb, texture(iLastFrame, u).rgb, 0.7) + 0.1 * texture(iNoise, u).r + "
                             "iSound * 0.1 + fract(iDate.w) * 0.01; }";
    std::vector<uint32_t> aadw[3];
    const auto p = Open(file, 33, 17);
    for (std::vector<uint32_t> &adw : aadw) {
        p->pModule->Reset(p->plane, &adw == &aadw[2] ? 6 : 5);
        p->plane.context.qwTick = 1000000;
        adw = p->Draw(12);
    }
    EXPECT_EQ(aadw[0], aadw[1]) << "the last frame starts black after a reset";
    EXPECT_NE(aadw[0], aadw[2]) << "another seed";
    const auto q = Open(file, 33, 17);
    q->pModule->Reset(q->plane, 5);
    q->plane.context.qwTick = 2000000;
    EXPECT_EQ(aadw[0], q->Draw(12));
}

TEST_F(ShaderDrawing, FillsEverySizeOfEitherPlane)
{
    for (const bool bIndexed : {false, true}) {
        const auto p = Open(RedIf("iResolution.x > 0.0 && texture(iLastFrame, p).a >= 0.0"), 16, 8, bIndexed);
        for (const auto &[nWidth, nHeight] : {std::pair{1, 1}, {257, 3}, {3, 333}, {640, 360}}) {
            p->Resize(nWidth, nHeight);
            p->plane.Fill(0xABCDEF);
            for (const uint32_t dw : p->Draw(2))
                ASSERT_EQ(bIndexed ? 54u : RED, dw);
        }
        // A window that could not be made anew, and none at all: nothing is drawn.
        void *pSurface = std::exchange(p->hwndGL->pSurface, nullptr);
        p->plane.Fill(5);
        EXPECT_EQ(5u, p->Draw()[0]);
        p->hwndGL->pSurface = pSurface;
        p->plane.info.hwndGL = nullptr;
        EXPECT_EQ(5u, p->Draw()[0]);
        p->plane.info.hwndGL = p->hwndGL;
    }
}

// The shaders that ship: each compiles, is a picture, and moves.
TEST_F(ShaderDrawing, IsLivelyInEveryShaderOfTheDataFolder)
{
    setenv("FOLDER_SHADERINCLUDE", SOURCE_FOLDER "/data/Shaders/Include", 1);
    int nShaders = 0;
    for (const auto &entry : std::filesystem::directory_iterator(SOURCE_FOLDER "/data/Shaders")) {
        if (entry.path().extension() != ".glsl")
            continue;
        SCOPED_TRACE(entry.path().filename());
        nShaders++;
        ShaderInstance instance(entry.path().string(), 96, 54, false, 256);
        instance.plane.sound.fRawLevel = 0.5f;
        std::vector<uint32_t> aadw[2] = {instance.Draw(20, 100), instance.Draw(20, 100)};
        EXPECT_EQ("", LastMessage());
        EXPECT_FALSE(instance.pModule->apControl.empty());
        double dSum = 0, dSquares = 0, dMoved = 0;
        for (size_t i = 0; i < aadw[0].size(); i++) {
            const double d0 = aadw[0][i] >> 8 & 255, d1 = aadw[1][i] >> 8 & 255, n = (double)aadw[0].size();
            dSum += d1 / n;
            dSquares += d1 * d1 / n;
            dMoved += std::abs(d1 - d0) / n;
        }
        EXPECT_GT(std::sqrt(dSquares - dSum * dSum), 8) << "flat";
        EXPECT_GT(dMoved, 1.0) << "still";
    }
    EXPECT_GE(nShaders, 30);
}

} // namespace
