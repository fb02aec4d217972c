// ShaderDialect.cpp -- from the ways in which shader authors write their files to the one language that is compiled
//
// Everything becomes GLSL 3.30 of the core profile, which every driver of the last ten years has and takes alike. Words
// of older versions are replaced; names that a file uses and does not declare are declared for it.
#include "ShaderDialect.h"

#include "HostUniforms.h"
#include "ShaderFile.h"
#include "ShaderLimits.h"
#include "ShaderLoops.h"
#include "ShaderTokens.h"
#include "ShaderVariables.h"

#include <algorithm>
#include <cstdlib>
#include <set>

namespace {

#define DIALECT_VERSION 330
#define PLAIN_LOOPS_SHARE 64 // what loops that end by themselves may take more than the others
#define ADDED_LINES (SHADER_LINES_MAX * SHADER_FILES_MAX) // number of the first line that is not the author's

// Never true. Mesa's software renderer has a short way for very plain shaders, which gives wrong colours in some tiles
// of the picture; a shader that may leave pixels out does not go that way.
#define MAIN_BEGINS " if (vd_Place.x < -1.0) discard; "

using Words = std::set<std::string_view>;

struct Edit {
    size_t iAt, cch;  // what goes
    std::string text; // what comes in its place
};

struct Facts {
    std::vector<ShaderToken> aToken;
    Words used, declared, defined; // the last by #define
    std::vector<Edit> aEdit;
    std::string extensions;            // "#extension" lines, which have to stand before everything else
    std::vector<std::string> varyings; // "vec2 NAME" of every input from the vertex stage
    int32_t nVersion, nVersionMost;
    size_t iMainBody; // behind the brace of main; 0: there is none
    bool bMain, bMainImage;
};

struct Word {
    std::string_view old;
    const char *pszNew;
};
constexpr Word asWord[] = {{"gl_FragColor", "vd_FragColor"},
                           {"texture2D", "texture"},
                           {"texture2DLod", "textureLod"},
                           {"texture2DLodEXT", "textureLod"},
                           {"texture2DProj", "textureProj"},
                           {"textureCube", "texture"},
                           {"varying", "in"},
                           // Names that were free before.
                           {"active", "vd_active"},
                           {"common", "vd_common"},
                           {"filter", "vd_filter"},
                           {"partition", "vd_partition"}};

// The names of another convention, as macros over what stands here for them.
struct Macro {
    std::string_view name;
    const char *pszBody;
};
constexpr Macro asMacro[] = {{"isf_FragNormCoord", " vd_Place"},
                             {"vv_FragNormCoord", " vd_Place"},
                             {"IMG_NORM_PIXEL", "(p, c) texture(p, c)"},
                             {"IMG_PIXEL", "(p, c) texture(p, (c) / vec2(textureSize(p, 0)))"},
                             {"IMG_THIS_PIXEL", "(p) texture(p, vd_Place)"},
                             {"IMG_THIS_NORM_PIXEL", "(p) texture(p, vd_Place)"},
                             {"IMG_SIZE", "(p) vec2(textureSize(p, 0))"}};

bool IsSkipped(const std::string_view word)
{
    return word == "return" || word == "else" || word == "define";
}

size_t EndOfDirective(const Facts &facts, size_t i)
{
    size_t iEnd = i;
    while (iEnd < facts.aToken.size() && facts.aToken[iEnd].nDirective == facts.aToken[i].nDirective)
        iEnd++;
    return iEnd;
}

// "#version 310 es", "#extension NAME : behaviour"
void NoteDirective(Facts *pFacts, size_t i)
{
    const std::vector<ShaderToken> &aToken = pFacts->aToken;
    const size_t iEnd = EndOfDirective(*pFacts, i);
    if (iEnd - i < 3)
        return;
    const std::string_view what = aToken[i + 1].text, name = aToken[i + 2].text;
    if (what == "define")
        pFacts->defined.insert(name);
    if (what != "version" && what != "extension")
        return;
    if (what == "version") {
        const int32_t nVersion = atoi(std::string(name).c_str());
        const bool bEmbedded = iEnd - i > 3 && aToken[i + 3].text == "es";
        pFacts->nVersion = std::clamp(bEmbedded && nVersion > 300 ? 430
                                      : bEmbedded                 ? 0
                                                                  : nVersion,
                                      DIALECT_VERSION, pFacts->nVersionMost);
    } else if (!name.starts_with("GL_OES_") && iEnd - i == 5 && IsWord(aToken[i + 4])) {
        // What is required here may be a part of the language by now; what is really missing shows where it is used.
        const std::string_view behaviour = aToken[i + 4].text == "require" ? "enable" : aToken[i + 4].text;
        pFacts->extensions += "#extension " + std::string(name) + " : " + std::string(behaviour) + "\n";
    }
    const size_t iLast = aToken[iEnd - 1].iAt + aToken[iEnd - 1].text.size();
    pFacts->aEdit.push_back({aToken[i].iAt, iLast - aToken[i].iAt, ""});
}

void AddVarying(Facts *pFacts, std::string_view type, std::string_view name)
{
    const std::string varying = std::string(type) + " " + std::string(name);
    std::vector<std::string> &all = pFacts->varyings;
    if (!name.starts_with("gl_") && std::find(all.begin(), all.end(), varying) == all.end())
        all.push_back(varying); // a file may declare it twice, for two versions of the language
}

// "in vec2 a, b;" at the file's own level comes from the vertex stage.
void NoteVarying(Facts *pFacts, size_t i)
{
    const std::vector<ShaderToken> &aToken = pFacts->aToken;
    size_t iType = i + 1;
    while (iType < aToken.size() && (aToken[iType].text.ends_with("p") && IsWord(aToken[iType]))) // highp and its like
        iType++;
    for (size_t iName = iType + 1; iName + 1 < aToken.size() && IsWord(aToken[iName]); iName += 2) {
        if (aToken[iName + 1].text != ";" && aToken[iName + 1].text != ",")
            return;
        AddVarying(pFacts, aToken[iType].text, aToken[iName].text);
        if (aToken[iName + 1].text == ";")
            return;
    }
}

// The picture of a pixel begins black, also for a file that reads it before it writes it.
void BeginBlack(Facts *pFacts, size_t i)
{
    const std::vector<ShaderToken> &aToken = pFacts->aToken;
    const size_t iClose = aToken[i + 1].iClosing;
    if (aToken[i].text == "mainImage") {
        for (size_t iOut = i + 2; iOut < iClose; iOut++)
            if (aToken[iOut].text == "out")
                pFacts->aEdit.push_back({aToken[iOut].iAt, 3, "inout"});
    } else if (iClose + 1 < aToken.size() && aToken[iClose + 1].text == "{") {
        pFacts->iMainBody = aToken[iClose + 1].iAt + 1;
    }
}

void NoteGlobal(Facts *pFacts, size_t i)
{
    const std::vector<ShaderToken> &aToken = pFacts->aToken;
    const std::string_view word = aToken[i].text;
    const bool bAfterWord =
        i > 0 && IsWord(aToken[i - 1]) && !aToken[i - 1].nDirective && !IsSkipped(aToken[i - 1].text);
    const bool bFunction =
        bAfterWord && aToken[i - 1].text == "void" && i + 1 < aToken.size() && aToken[i + 1].text == "(";
    // At this level a comma stands between names that are declared together.
    if (bAfterWord || (i > 0 && (aToken[i - 1].text == "]" || aToken[i - 1].text == ",")))
        pFacts->declared.insert(word);
    pFacts->bMain |= bFunction && word == "main";
    pFacts->bMainImage |= bFunction && word == "mainImage";
    if (bFunction && (word == "main" || word == "mainImage"))
        BeginBlack(pFacts, i);
    if (word == "in" || word == "varying")
        NoteVarying(pFacts, i);
}

// "texture(iSound, p)": the same name serves for the level and for its history.
void NoteSoundPicture(Facts *pFacts, size_t i)
{
    const std::vector<ShaderToken> &aToken = pFacts->aToken;
    if (aToken[i].text != "iSound" || i < 2 || i + 1 == aToken.size() || aToken[i - 1].text != "(" ||
        aToken[i + 1].text != "," || !(aToken[i - 2].text.starts_with("texture") || aToken[i - 2].text == "texelFetch"))
        return;
    pFacts->aEdit.push_back({aToken[i].iAt, aToken[i].text.size(), "iSoundHistory"});
    pFacts->used.insert("iSoundHistory");
}

void NoteWords(Facts *pFacts)
{
    for (size_t i = 0; i < pFacts->aToken.size(); i++) {
        const ShaderToken &token = pFacts->aToken[i];
        if (token.text == "#" && (i == 0 || pFacts->aToken[i - 1].nDirective != token.nDirective))
            NoteDirective(pFacts, i);
        if (!IsWord(token))
            continue;
        pFacts->used.insert(token.text);
        if (!token.nDirective && token.nDepth == 0)
            NoteGlobal(pFacts, i);
        for (const Word &word : asWord)
            if (token.text == word.old)
                pFacts->aEdit.push_back({token.iAt, token.text.size(), word.pszNew});
        NoteSoundPicture(pFacts, i);
    }
    // It may be made by a macro; the driver tells if it is not.
    pFacts->bMainImage |= !pFacts->bMain && pFacts->used.contains("mainImage");
}

void FillVariables(Facts *pFacts)
{
    for (const BareVariable &variable : FindBareVariables(pFacts->aToken))
        pFacts->aEdit.push_back({variable.iAt, 0, " = " + std::string(variable.type) + "(0)"});
    if (pFacts->iMainBody)
        pFacts->aEdit.push_back({pFacts->iMainBody, 0, MAIN_BEGINS});
    if (pFacts->iMainBody && pFacts->used.contains("gl_FragColor") && !pFacts->defined.contains("gl_FragColor"))
        pFacts->aEdit.push_back({pFacts->iMainBody, 0, "vd_FragColor = vec4(0.0, 0.0, 0.0, 1.0); "});
}

void BoundLoops(Facts *pFacts, const std::string &text, int32_t nLoopSteps)
{
    for (const LoopCondition &loop : FindOpenLoops(pFacts->aToken, (double)nLoopSteps * PLAIN_LOOPS_SHARE)) {
        const bool bEmpty = text.find_first_not_of(" \t\n\\", loop.iStart) >= loop.iEnd;
        pFacts->aEdit.push_back({loop.iStart, 0, bEmpty ? " vd_Loop()" : "vd_Loop() && ("});
        if (!bEmpty)
            pFacts->aEdit.push_back({loop.iEnd, 0, ")"});
    }
}

std::string ApplyEdits(const std::string &text, std::vector<Edit> *paEdit)
{
    std::stable_sort(paEdit->begin(), paEdit->end(), [](const Edit &a, const Edit &b) { return a.iAt < b.iAt; });
    std::string edited;
    size_t iDone = 0;
    for (const Edit &edit : *paEdit) {
        if (edit.iAt < iDone)
            continue; // inside a line that went as a whole
        edited.append(text, iDone, edit.iAt - iDone).append(edit.text);
        iDone = edit.iAt + edit.cch;
    }
    return edited.append(text, iDone);
}

bool Needs(const Facts &facts, std::string_view name)
{
    return facts.used.contains(name) && !facts.declared.contains(name);
}

bool IsInput(const std::vector<ShaderInput> &inputs, std::string_view name)
{
    return std::any_of(inputs.begin(), inputs.end(), [&](const ShaderInput &input) { return input.name == name; });
}

std::string Renamed(const std::string &name)
{
    const auto it =
        std::find_if(std::begin(asWord), std::end(asWord), [&](const Word &word) { return word.old == name; });
    return it == std::end(asWord) ? name : it->pszNew;
}

std::string UniformLines(const Facts &facts, const std::vector<ShaderInput> &inputs)
{
    std::string text;
    for (const HostUniform &uniform : asHostUniform)
        if (uniform.pszType && Needs(facts, uniform.name) && !IsInput(inputs, uniform.name))
            text +=
                "uniform " + std::string(uniform.pszType) + " " + std::string(uniform.name) + uniform.pszAfter + ";\n";
    for (const ShaderInput &input : inputs)
        if (Needs(facts, input.name) || facts.used.contains("_" + input.name + "_imgSize"))
            text += "uniform " + std::string(InputType(input.eKind)) + " " + Renamed(input.name) + ";\n";
    return text;
}

std::string MacroLines(const Facts &facts, const std::vector<ShaderInput> &inputs)
{
    std::string text;
    const auto Add = [&](const std::string &name, const std::string &body) {
        if (Needs(facts, name) && !facts.defined.contains(name))
            text += "#define " + name + body + "\n";
    };
    for (const Macro &macro : asMacro)
        Add(std::string(macro.name), macro.pszBody);
    for (const ShaderInput &input : inputs) {
        if (std::string_view(InputType(input.eKind)) != "sampler2D")
            continue;
        Add("_" + input.name + "_imgRect", " vec4(0.0, 0.0, 1.0, 1.0)");
        Add("_" + input.name + "_imgSize", " vec2(textureSize(" + Renamed(input.name) + ", 0))");
        Add("_" + input.name + "_flip", " false");
    }
    return text;
}

std::string Declarations(const Facts &facts, const std::vector<ShaderInput> &inputs, int32_t nLoopSteps)
{
    std::string text = "#line " + std::to_string(ADDED_LINES) + "\nin vec2 vd_Place;\n";
    if (!facts.bMain || (facts.used.contains("gl_FragColor") && !facts.defined.contains("gl_FragColor")))
        text += "out vec4 vd_FragColor;\n";
    return text + UniformLines(facts, inputs) + MacroLines(facts, inputs) +
           "int vd_nLoop = 0;\nbool vd_Loop() { return ++vd_nLoop <= " + std::to_string(nLoopSteps) + "; }\n";
}

// A triangle that covers the picture, from no data but the number of the corner. Every input that the fragment stage
// asks for is the place in the picture, 0 to 1.
std::string VertexShader(const Facts &facts)
{
    std::string outputs, values;
    for (const std::string &varying : facts.varyings) {
        const size_t iName = varying.find(' ') + 1;
        const std::string name = varying.substr(iName), type = varying.substr(0, iName - 1);
        const char *pszValue = type == "vec2"   ? "vd_Place"
                               : type == "vec3" ? "vec3(vd_Place, 0.0)"
                               : type == "vec4" ? "vec4(vd_Place, 0.0, 1.0)"
                                                : nullptr;
        if (!pszValue || name == "vd_Place")
            continue;
        outputs += "out " + varying + ";\n";
        values += "    " + name + " = " + pszValue + ";\n";
    }
    return "#version 330 core\nout vec2 vd_Place;\n" + outputs +
           "void main()\n{\n    vd_Place = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2);\n"
           "    gl_Position = vec4(vd_Place * 2.0 - 1.0, 0.0, 1.0);\n" +
           values + "}\n";
}

// The number that a driver would give the line, from the "#line" before it.
std::string LineOf(const std::string &text, size_t iAt)
{
    const size_t iLine = text.rfind("#line ", iAt);
    const size_t iFrom = iLine == std::string::npos ? 0 : std::min(text.find('\n', iLine) + 1, iAt);
    const int64_t nFirst = iLine == std::string::npos ? 1 : atoll(text.c_str() + iLine + 6);
    return std::to_string(nFirst + std::count(text.begin() + (int64_t)iFrom, text.begin() + (int64_t)iAt, '\n'));
}

// What must not reach the driver, in the form of its messages; empty if there is nothing.
std::string FindFault(const std::vector<ShaderToken> &aToken, const std::string &text)
{
    size_t iToken = FindHiddenLoop(aToken);
    const char *pszWhat = iToken < aToken.size()
                              ? "a macro may hold a whole loop, but not a piece of one, and may not join words with ##"
                              : FindTooMuch(aToken, &iToken);
    return pszWhat ? "0:" + LineOf(text, aToken[iToken].iAt) + ": " + pszWhat : std::string();
}

} // namespace

bool TranslateShader(const std::string &text, const std::vector<ShaderInput> &inputs, const ShaderDriver &driver,
                     ShaderSources *pSources, std::string *psError)
{
    Facts facts = {};
    facts.nVersion = DIALECT_VERSION;
    facts.nVersionMost = std::max(driver.nVersionMost, DIALECT_VERSION);
    facts.aToken = SplitShader(text);
    NoteWords(&facts);
    if (!facts.bMain && !facts.bMainImage) {
        *psError = "there is no function mainImage and no function main";
        return false;
    }
    if (const std::string fault = FindFault(facts.aToken, text); !fault.empty()) {
        *psError = fault;
        return false;
    }
    BoundLoops(&facts, text, driver.nLoopSteps);
    FillVariables(&facts);
    pSources->fragment = "#version " + std::to_string(facts.nVersion) + " core\n" + facts.extensions +
                         Declarations(facts, inputs, driver.nLoopSteps) + ApplyEdits(text, &facts.aEdit);
    if (!facts.bMain)
        pSources->fragment += "\n#line " + std::to_string(ADDED_LINES) +
                              "\nvoid main()\n{\n   " MAIN_BEGINS "\n    vec4 vd_Color = vec4(0.0, 0.0, 0.0, 1.0);\n"
                              "    mainImage(vd_Color, gl_FragCoord.xy);\n    vd_FragColor = vd_Color;\n}\n";
    pSources->vertex = VertexShader(facts);
    return true;
}
