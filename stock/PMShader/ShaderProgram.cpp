// ShaderProgram.cpp -- a shader file compiled on the current OpenGL context
#include "ShaderProgram.h"

#include "ShaderDialect.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

#define UNIFORM_NAME_BYTES 128
#define LOG_BYTES_MAX 16384

std::string LogOf(GLuint uObject, bool bProgram)
{
    std::string log(LOG_BYTES_MAX, '\0');
    GLsizei cch = 0;
    if (bProgram)
        glGetProgramInfoLog(uObject, LOG_BYTES_MAX, &cch, log.data());
    else
        glGetShaderInfoLog(uObject, LOG_BYTES_MAX, &cch, log.data());
    log.resize((size_t)std::clamp(cch, 0, LOG_BYTES_MAX - 1));
    return log;
}

// Drivers begin a line with "0:23(4): ", "0(23) : ", "ERROR: 0:23: ". Gives it as "name:23: ".
std::string NamePlace(const std::string &line, const ShaderText &text)
{
    const size_t iStart = line.starts_with("ERROR: ") ? 7 : line.starts_with("WARNING: ") ? 9 : 0;
    const size_t iNumber = line.find_first_not_of("0123456789", iStart) + 1;
    char *pszEnd = nullptr;
    const unsigned long nPlace = iNumber > iStart + 1 ? strtoul(line.c_str() + iNumber, &pszEnd, 10) : 0;
    if (line.starts_with("0:0(0): "))
        return text.aPart[0].name + ": " + line.substr(8); // the file as a whole
    if (!nPlace || !strchr(":(", line[iNumber - 1]))
        return line;
    std::string words = pszEnd;
    words.erase(0, words.starts_with('(') ? words.find(')') : 0);
    words.erase(0, words.find_first_not_of(" ):"));
    const size_t iPart = nPlace / SHADER_LINES_MAX;
    const std::string name = iPart < text.aPart.size() ? text.aPart[iPart].name : "(added by the module)";
    return name + ":" + std::to_string(nPlace % SHADER_LINES_MAX) + ": " + words;
}

std::string NamePlaces(const std::string &log, const ShaderText &text)
{
    std::string named;
    for (size_t i = 0; i < log.size();) {
        const size_t iEnd = std::min(log.find('\n', i), log.size());
        if (iEnd > i)
            named += NamePlace(log.substr(i, iEnd - i), text) + "\n";
        i = iEnd + 1;
    }
    return named;
}

GLuint CompileStage(GLenum eStage, const char *pszSource, GLint cbSource, std::string *psLog)
{
    const GLuint uShader = glCreateShader(eStage);
    GLint bCompiled = 0;
    glShaderSource(uShader, 1, &pszSource, &cbSource);
    glCompileShader(uShader);
    glGetShaderiv(uShader, GL_COMPILE_STATUS, &bCompiled);
    if (bCompiled)
        return uShader;
    *psLog = LogOf(uShader, false);
    if (psLog->empty())
        *psLog = "the driver refuses the shader and does not say why";
    glDeleteShader(uShader);
    return 0;
}

GLuint Link(const std::string &vertex, const std::string &fragment, std::string *psLog)
{
    const GLuint uFragment = CompileStage(GL_FRAGMENT_SHADER, fragment.c_str(), (GLint)fragment.size(), psLog);
    const GLuint uVertex = uFragment ? CompileStage(GL_VERTEX_SHADER, vertex.c_str(), (GLint)vertex.size(), psLog) : 0;
    GLuint uProgram = 0;
    if (uVertex) {
        GLint bLinked = 0;
        uProgram = glCreateProgram();
        glAttachShader(uProgram, uVertex);
        glAttachShader(uProgram, uFragment);
        glLinkProgram(uProgram);
        glGetProgramiv(uProgram, GL_LINK_STATUS, &bLinked);
        if (!bLinked) {
            *psLog = LogOf(uProgram, true);
            glDeleteProgram(uProgram);
            uProgram = 0;
        }
    }
    glDeleteShader(uVertex);
    glDeleteShader(uFragment);
    return uProgram;
}

// "4.50 NVIDIA" is 450; 0 if unknown.
int32_t LanguageVersion()
{
    const auto *pszVersion = (const char *)glGetString(GL_SHADING_LANGUAGE_VERSION);
    int32_t nMajor = 0, nMinor = 0;
    return pszVersion && sscanf(pszVersion, "%d.%d", &nMajor, &nMinor) == 2 ? nMajor * 100 + nMinor : 0;
}

// A shader that never ends keeps the processor longer than a card.
ShaderDriver DescribeDriver()
{
    const auto *pszRenderer = (const char *)glGetString(GL_RENDERER);
    const std::string_view renderer = pszRenderer ? pszRenderer : "";
    const bool bSlow = renderer.empty() || renderer.find("llvmpipe") != renderer.npos ||
                       renderer.find("softpipe") != renderer.npos || renderer.find("Software") != renderer.npos;
    return {LanguageVersion(), bSlow ? SHADER_LOOP_STEPS_SLOW : SHADER_LOOP_STEPS};
}

HostValue PictureOf(const LiveUniform &uniform, const ShaderProgram &program)
{
    if (uniform.iHost >= 0 && asHostUniform[uniform.iHost].eValue >= VALUES_PLAIN)
        return asHostUniform[uniform.iHost].eValue;
    if (uniform.iInput < 0)
        return uniform.iHost >= 0 ? VALUE_PICTURE_SOUND : VALUE_PICTURE_NOISE; // a level by name: its history
    switch (program.aInput[(size_t)uniform.iInput].eKind) {
    case INPUT_SOUND:
        return VALUE_PICTURE_SOUND;
    case INPUT_NOISE:
        return VALUE_PICTURE_NOISE;
    default:
        return VALUE_PICTURE_LAST;
    }
}

// The unit of a target that the file draws for itself; 0 if it is none.
GLint TargetUnit(const LiveUniform &uniform, const ShaderProgram &program)
{
    for (size_t i = 0; i < program.aTarget.size(); i++)
        if (uniform.iInput >= 0 && program.aInput[(size_t)uniform.iInput].name == program.aTarget[i].name)
            return UNIT_TARGETS + (GLint)i;
    return 0;
}

// The unit of a picture never changes.
void BindPicture(const LiveUniform &uniform, ShaderProgram *pProgram)
{
    if (const GLint nUnit = TargetUnit(uniform, *pProgram)) {
        glUniform1i(uniform.nLocation, nUnit);
        return;
    }
    const HostValue ePicture = PictureOf(uniform, *pProgram);
    pProgram->bReadsSound |= ePicture == VALUE_PICTURE_SOUND;
    pProgram->bReadsNoise |= ePicture == VALUE_PICTURE_NOISE;
    pProgram->bReadsLast |= ePicture == VALUE_PICTURE_LAST;
    glUniform1i(uniform.nLocation, ePicture == VALUE_PICTURE_SOUND   ? UNIT_SOUND
                                   : ePicture == VALUE_PICTURE_NOISE ? UNIT_NOISE
                                                                     : UNIT_LAST);
}

LiveUniform FindUniform(const ShaderProgram &program, uint32_t iUniform)
{
    char szName[UNIFORM_NAME_BYTES] = "";
    LiveUniform uniform = {-1, 0, 0, -1, -1};
    glGetActiveUniform(program.dwProgram, iUniform, UNIFORM_NAME_BYTES, nullptr, &uniform.nCount, &uniform.dwType,
                       szName);
    uniform.nLocation = glGetUniformLocation(program.dwProgram, szName);
    const std::string name = std::string(szName).substr(0, std::string(szName).find('['));
    for (size_t i = 0; i < program.aInput.size(); i++)
        if (program.aInput[i].name == name || "vd_" + program.aInput[i].name == name)
            uniform.iInput = (int32_t)i;
    for (size_t i = 0; i < std::size(asHostUniform); i++)
        if (uniform.iInput < 0 && asHostUniform[i].name == name)
            uniform.iHost = (int32_t)i;
    return uniform;
}

void FindUniforms(ShaderProgram *pProgram)
{
    GLint nUniforms = 0;
    glUseProgram(pProgram->dwProgram);
    glGetProgramiv(pProgram->dwProgram, GL_ACTIVE_UNIFORMS, &nUniforms);
    for (GLint i = 0; i < nUniforms; i++) {
        const LiveUniform uniform = FindUniform(*pProgram, (uint32_t)i);
        if (uniform.nLocation < 0)
            continue;
        if (uniform.dwType == GL_SAMPLER_2D)
            BindPicture(uniform, pProgram);
        else if (uniform.iHost >= 0 || uniform.iInput >= 0)
            pProgram->aUniform.push_back(uniform);
    }
}

// pf: of four elements for arrays of three floats, else of one.
void SetUniform(const LiveUniform &uniform, const float *pf)
{
    const GLint nLocation = uniform.nLocation;
    switch (uniform.dwType) {
    case GL_FLOAT:
        for (GLint i = 0; i < std::min(uniform.nCount, 4); i++)
            glUniform1f(nLocation + i, pf[i]);
        break;
    case GL_FLOAT_VEC2:
        glUniform2fv(nLocation, 1, pf);
        break;
    case GL_FLOAT_VEC3:
        glUniform3fv(nLocation, std::min(uniform.nCount, 4), pf);
        break;
    case GL_FLOAT_VEC4:
        glUniform4fv(nLocation, 1, pf);
        break;
    case GL_INT:
    case GL_BOOL:
        glUniform1i(nLocation, (GLint)pf[0]);
        break;
    case GL_UNSIGNED_INT:
        glUniform1ui(nLocation, (GLuint)std::max(pf[0], 0.0f));
        break;
    default:
        break;
    }
}

} // namespace

uint32_t LinkProgram(const char *pszVertex, const char *pszFragment)
{
    std::string log;
    return Link(pszVertex, pszFragment, &log);
}

bool BuildProgram(const ShaderText &text, const ShaderHeader &header, ShaderProgram *pProgram, std::string *psError)
{
    ShaderSources sources;
    std::string log;
    if (!TranslateShader(text.text, header.aInput, DescribeDriver(), &sources, &log)) {
        const std::string named = NamePlace(log, text);
        *psError = (named == log ? text.aPart[0].name + ": " + log : named) + "\n";
        return false;
    }
    const GLuint uProgram = Link(sources.vertex, sources.fragment, &log);
    if (!uProgram) {
        *psError = NamePlaces(log, text);
        return false;
    }
    FreeProgram(pProgram);
    pProgram->dwProgram = uProgram;
    pProgram->aInput = header.aInput;
    pProgram->aPass = header.aPass;
    pProgram->aTarget = header.aTarget;
    FindUniforms(pProgram);
    return true;
}

void FreeProgram(ShaderProgram *pProgram)
{
    if (pProgram->dwProgram)
        glDeleteProgram(pProgram->dwProgram);
    *pProgram = {};
}

void UseProgram(const ShaderProgram &program, const UniformValues &values)
{
    glUseProgram(program.dwProgram);
    for (const LiveUniform &uniform : program.aUniform)
        SetUniform(uniform, uniform.iInput >= 0 ? &values.afInput[4 * (size_t)uniform.iInput]
                                                : values.aafPlain[asHostUniform[uniform.iHost].eValue]);
}
