// ShaderHeader.cpp -- the inputs and passes that a shader's header comment declares
#include "ShaderHeader.h"

#include "ShaderFile.h"
#include "ShaderSize.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>

namespace {

using Json = nlohmann::json;

#define HEADER_BYTES_MAX (64 << 10)
#define HEADER_NUMBER_MAX 1e6f // keeps every sum of a few inputs well within what a float holds
#define HEADER_FAULTS_MAX 8

struct KindName {
    const char *pszType;
    InputKind eKind;
};
constexpr KindName asKind[] = {{"float", INPUT_FLOAT},   {"long", INPUT_LONG},   {"bool", INPUT_BOOL},
                               {"event", INPUT_BOOL},    {"color", INPUT_COLOR}, {"point2D", INPUT_POINT},
                               {"image", INPUT_PICTURE}, {"audio", INPUT_SOUND}, {"audioFFT", INPUT_SOUND}};

const Json *Member(const Json &object, const char *pszName)
{
    const auto it = object.find(pszName);
    return it == object.end() ? nullptr : &*it;
}

std::string TextMember(const Json &object, const char *pszName)
{
    const Json *pText = Member(object, pszName);
    return pText && pText->is_string() ? pText->get<std::string>() : std::string();
}

// A number, or the part of an array of numbers; booleans count as 0 and 1.
std::optional<float> NumberOf(const Json *pValue, size_t iPart = 0)
{
    if (pValue && pValue->is_array())
        pValue = iPart < pValue->size() ? &(*pValue)[iPart] : nullptr;
    if (pValue && pValue->is_boolean())
        return pValue->get<bool>() ? 1.0f : 0.0f;
    if (!pValue || !pValue->is_number())
        return {};
    return std::clamp((float)pValue->get<double>(), -HEADER_NUMBER_MAX, HEADER_NUMBER_MAX);
}

// Text for the user, on one line; full stops would part the control's name in files.
std::u16string Displayed(const std::string &text, size_t nMost)
{
    std::u16string wide = WideText(text).substr(0, nMost);
    std::replace(wide.begin(), wide.end(), u'.', u' ');
    std::replace_if(
        wide.begin(), wide.end(), [](char16_t ch) { return ch < u' '; }, u' ');
    return wide;
}

// The types and the statements; an author who uses one of the others is told so by the driver.
bool IsLanguageWord(const std::string &name)
{
    static const std::set<std::string> words = {
        "float", "int",    "uint",   "bool",  "void",    "vec2",   "vec3",  "vec4",      "mat2",    "mat3",   "mat4",
        "if",    "else",   "for",    "while", "do",      "return", "break", "continue",  "in",      "out",    "inout",
        "const", "struct", "switch", "case",  "default", "true",   "false", "sampler2D", "uniform", "discard"};
    return words.contains(name);
}

bool IsName(const std::string &name)
{
    const auto Fits = [](char ch) { return isalnum((unsigned char)ch) || ch == '_'; };
    return !name.empty() && name.size() <= 64 && std::all_of(name.begin(), name.end(), Fits) &&
           !isdigit((unsigned char)name[0]) && !name.starts_with("gl_") && !name.starts_with("vd_") &&
           name.find("__") == std::string::npos && name != "main" && name != "mainImage" && !IsLanguageWord(name);
}

void ReadRange(const Json &object, ShaderInput *pInput)
{
    for (size_t i = 0; i < (size_t)InputParts(pInput->eKind); i++) {
        // A default outside of what is usual widens the range that is not told.
        const std::optional<float> fGiven = NumberOf(Member(object, "DEFAULT"), i);
        const float fUsual = pInput->eKind == INPUT_LONG ? 100.0f : 1.0f,
                    fTwice = pInput->eKind == INPUT_COLOR ? 0 : 2 * fGiven.value_or(0);
        float fMin = NumberOf(Member(object, "MIN"), i).value_or(std::min(fTwice, 0.0f));
        float fMax = NumberOf(Member(object, "MAX"), i).value_or(std::max(fTwice, fUsual));
        if (fMin > fMax)
            std::swap(fMin, fMax);
        const bool bOpaque = pInput->eKind == INPUT_COLOR && i == 3;
        const float fMiddle = pInput->eKind == INPUT_LONG || pInput->eKind == INPUT_BOOL ? fMin : 0.5f * (fMin + fMax);
        pInput->afMin[i] = fMin;
        pInput->afMax[i] = fMax;
        pInput->afDefault[i] = std::clamp(fGiven.value_or(bOpaque ? fMax : fMiddle), fMin, fMax);
    }
    const Json *pRange = Member(object, "RANGE");
    pInput->range.fLow = std::clamp(NumberOf(pRange, 0).value_or(pInput->afMin[0]), pInput->afMin[0], pInput->afMax[0]);
    pInput->range.fHigh =
        std::clamp(NumberOf(pRange, 1).value_or(pInput->afMax[0]), pInput->afMin[0], pInput->afMax[0]);
}

// VALUES with LABELS beside them; one of the two may be shorter, or LABELS stand alone and be numbered.
void ReadChoices(const Json &object, ShaderInput *pInput)
{
    static const Json none = Json::array();
    const Json *pValues = Member(object, "VALUES"), *pLabels = Member(object, "LABELS");
    const Json &values = pValues && pValues->is_array() ? *pValues : none,
               &labels = pLabels && pLabels->is_array() ? *pLabels : none;
    const float fFirst = NumberOf(Member(object, "MIN")).value_or(0);
    const size_t nChoices = std::min<size_t>(values.empty() ? labels.size() : values.size(), SHADER_CHOICES_MAX);
    for (size_t i = 0; i < nChoices; i++) {
        const std::optional<float> fValue = values.empty() ? fFirst + (float)i : NumberOf(&values[i]);
        if (!fValue)
            continue;
        const bool bLabel = i < labels.size() && labels[i].is_string();
        pInput->anValue.push_back((int32_t)*fValue);
        pInput->aszChoice.push_back(WideText(bLabel ? labels[i].get<std::string>() : std::to_string((int32_t)*fValue)));
    }
    if (!nChoices)
        return;
    // The range was read for numbers; a choice may lie anywhere.
    pInput->afDefault[0] =
        NumberOf(Member(object, "DEFAULT")).value_or(pInput->anValue.empty() ? 0 : (float)pInput->anValue[0]);
}

uint32_t Milliseconds(const Json &object, const char *pszName, uint32_t nLowest, uint32_t nHighest)
{
    const std::optional<float> fSeconds = NumberOf(Member(object, pszName));
    return fSeconds ? std::clamp((uint32_t)(std::max(*fSeconds, 0.0f) * 1000), nLowest, nHighest) : 0;
}

void ReadSource(const Json &object, ShaderInput *pInput)
{
    static const char *const apszSource[] = {"fixed", "random", "wave", "sound", "periodic"};
    static const char *const apszWave[] = {"sine", "triangle", "square", "ramp"};
    FluidDefault &source = pInput->source;
    source = FromFixed();
    const std::string name = TextMember(object, "SOURCE"), wave = TextMember(object, "WAVE");
    for (uint32_t i = 0; i < std::size(apszSource); i++)
        if (name == apszSource[i])
            source.dwSource = 1u << i;
    for (uint32_t i = 0; i < std::size(apszWave); i++)
        if (wave == apszWave[i])
            source.dwWaveType = i;
    source.nPeriodMs = Milliseconds(object, "PERIOD", 400, 120000);
    source.nSamples = (uint32_t)std::clamp(NumberOf(Member(object, "SMOOTH")).value_or(0), 0.0f, 44.0f);
    pInput->fEase = std::clamp(NumberOf(Member(object, "EASE")).value_or(0), 0.0f, 60.0f);
    pInput->bSum = pInput->eKind == INPUT_FLOAT && NumberOf(Member(object, "SUM")).value_or(0) != 0;
}

// Empty on success, else what is wrong with it.
std::string ReadInput(const Json &object, ShaderInput *pInput)
{
    if (!object.is_object())
        return "an input has to be an object between braces";
    pInput->name = TextMember(object, "NAME");
    if (!IsName(pInput->name))
        return "an input needs a NAME of letters, digits and single underscores that is no word of the language";
    const std::string type = TextMember(object, "TYPE");
    const auto itKind =
        std::find_if(std::begin(asKind), std::end(asKind), [&](const KindName &kind) { return type == kind.pszType; });
    if (itKind == std::end(asKind))
        return "the input " + pInput->name + " has no TYPE of float, long, bool, color, point2D";
    pInput->eKind = itKind->eKind;
    const std::string label = TextMember(object, "LABEL");
    pInput->label = Displayed(label.empty() ? pInput->name : label, 60);
    pInput->group = Displayed(TextMember(object, "GROUP"), 60);
    pInput->help = WideText(TextMember(object, "HELP"));
    ReadRange(object, pInput);
    if (pInput->eKind == INPUT_LONG)
        ReadChoices(object, pInput);
    ReadSource(object, pInput);
    return {};
}

void AddFault(std::string *psError, int32_t nLine, const std::string &fault)
{
    if (std::count(psError->begin(), psError->end(), '\n') < HEADER_FAULTS_MAX)
        *psError += std::to_string(nLine) + ": " + fault + "\n";
}

int32_t LineAt(const std::string &json, size_t iByte, int32_t nLine)
{
    return nLine + (int32_t)std::count(json.begin(), json.begin() + (int64_t)std::min(iByte, json.size()), '\n');
}

// The line on which a name stands first, between quotes; for messages.
int32_t LineOf(const std::string &json, const std::string &name, int32_t nLine)
{
    const size_t i = name.empty() ? std::string::npos : json.find("\"" + name + "\"");
    return LineAt(json, i == std::string::npos ? 0 : i, nLine);
}

// The mouse and the channels are the host's, also where a file that was turned from one convention into the other lists
// them.
bool IsHostsOwn(const ShaderInput &input)
{
    return (input.eKind == INPUT_POINT && input.name == "iMouse") ||
           (input.eKind >= INPUT_PICTURE && input.name.size() == 9 && input.name.starts_with("iChannel") &&
            input.name[8] >= '0' && input.name[8] <= '3');
}

void ReadInputs(const Json &aInput, const std::string &json, int32_t nLine, std::vector<ShaderInput> *pInputs,
                std::string *psError)
{
    std::set<std::string> names;
    for (const Json &object : aInput) {
        ShaderInput input = {};
        std::string fault = ReadInput(object, &input);
        if (fault.empty() && !names.insert(input.name).second)
            fault = "there are two inputs " + input.name;
        if (fault.empty() && pInputs->size() >= SHADER_INPUTS_MAX)
            fault = "there are more than " + std::to_string(SHADER_INPUTS_MAX) + " inputs";
        if (!fault.empty())
            AddFault(psError, LineOf(json, input.name, nLine), fault);
        else if (!IsHostsOwn(input))
            pInputs->push_back(std::move(input));
    }
}

// Pictures from files: the shader gets noise in their place, and its author is told.
void ReadImported(const Json &imported, const std::string &json, int32_t nLine, std::vector<ShaderInput> *pInputs,
                  std::string *psError)
{
    for (auto it = imported.begin(); it != imported.end(); ++it) {
        ShaderInput input = {};
        input.eKind = INPUT_NOISE;
        input.name = imported.is_object() ? it.key() : it->is_object() ? TextMember(*it, "NAME") : "";
        input.label = Displayed(input.name, 60);
        if (!IsName(input.name))
            continue;
        AddFault(psError, LineOf(json, input.name, nLine),
                 "pictures from files (IMPORTED) are not supported: " + input.name + " is something else here");
        const bool bKnown = std::any_of(pInputs->begin(), pInputs->end(),
                                        [&](const ShaderInput &other) { return other.name == input.name; });
        if (!bKnown && !IsHostsOwn(input) && pInputs->size() < SHADER_INPUTS_MAX)
            pInputs->push_back(std::move(input));
    }
}

// "$WIDTH / 2.0", or a number.
std::string ReadFormula(const Json &object, const char *pszName, const ShaderHeader &header, std::string *psFault)
{
    const std::optional<float> fNumber = NumberOf(Member(object, pszName));
    const std::string formula = fNumber ? std::to_string(*fNumber) : TextMember(object, pszName);
    double dSize = 0;
    const auto IsKnown = [&](std::string_view name, double *pdValue) {
        *pdValue = 1;
        return name == "WIDTH" || name == "HEIGHT" ||
               std::any_of(header.aInput.begin(), header.aInput.end(),
                           [&](const ShaderInput &input) { return input.name == name; });
    };
    if (formula.empty() || WorkOutSize(formula, IsKnown, &dSize))
        return formula;
    *psFault = std::string("the ") + pszName + " of a pass is no formula that is understood here: " + formula;
    return {};
}

// The place of a target of this name, which is made on first mention.
int32_t FindTarget(const std::string &name, ShaderHeader *pHeader, std::string *psFault)
{
    std::vector<ShaderTarget> &aTarget = pHeader->aTarget;
    for (size_t i = 0; i < aTarget.size(); i++)
        if (aTarget[i].name == name)
            return (int32_t)i;
    const bool bTaken = std::any_of(pHeader->aInput.begin(), pHeader->aInput.end(),
                                    [&](const ShaderInput &input) { return input.name == name; });
    if (!IsName(name) || bTaken || aTarget.size() >= SHADER_TARGETS_MAX) {
        *psFault = bTaken         ? "there is an input and a pass " + name
                   : IsName(name) ? "there are more than " + std::to_string(SHADER_TARGETS_MAX) + " targets of passes"
                                  : "the TARGET of a pass needs a name of letters, digits and single underscores";
        return -1;
    }
    aTarget.push_back({name, false});
    ShaderInput input = {};
    input.name = name;
    input.label = Displayed(name, 60);
    input.eKind = INPUT_TARGET;
    pHeader->aInput.push_back(std::move(input));
    return (int32_t)aTarget.size() - 1;
}

void ReadPasses(const Json &aPass, const std::string &json, int32_t nLine, ShaderHeader *pHeader, std::string *psError)
{
    for (const Json &object : aPass) {
        if (!object.is_object())
            continue;
        std::string fault;
        ShaderPass pass = {-1, ReadFormula(object, "WIDTH", *pHeader, &fault),
                           ReadFormula(object, "HEIGHT", *pHeader, &fault)};
        const std::string target = TextMember(object, "TARGET");
        if (!target.empty())
            pass.iTarget = FindTarget(target, pHeader, &fault);
        if (pass.iTarget >= 0)
            pHeader->aTarget[(size_t)pass.iTarget].bFloat |= NumberOf(Member(object, "FLOAT")).value_or(0) != 0;
        if (pHeader->aPass.size() >= SHADER_PASSES_MAX)
            fault = "there are more than " + std::to_string(SHADER_PASSES_MAX) + " passes";
        else
            pHeader->aPass.push_back(std::move(pass));
        if (!fault.empty())
            AddFault(psError, LineOf(json, target.empty() ? "PASSES" : target, nLine), fault);
    }
    if (pHeader->aTarget.empty())
        pHeader->aPass.clear(); // draws the picture, as files without passes do
}

// What authors write and strict readers refuse: a comma before a closing bracket, line ends and tabs inside of quotes.
// As long as before, so that places stay.
std::string Tolerated(std::string json)
{
    bool bQuoted = false;
    size_t iComma = std::string::npos; // with nothing behind it yet
    for (size_t i = 0; i < json.size(); i++) {
        const char ch = json[i];
        const bool bBlank = ch == ' ' || (ch > 0 && ch < ' ');
        if (!bQuoted && json.compare(i, 2, "//") == 0) {
            i = std::min(json.find('\n', i), json.size());
            continue;
        }
        if (bQuoted && ch == '\\')
            i++;
        else if (ch == '"')
            bQuoted = !bQuoted;
        else if (bQuoted && bBlank)
            json[i] = ' ';
        if (bQuoted || bBlank)
            continue;
        if ((ch == ']' || ch == '}') && iComma != std::string::npos)
            json[iComma] = ' ';
        iComma = ch == ',' ? i : std::string::npos;
    }
    return json;
}

} // namespace

int32_t InputParts(InputKind eKind)
{
    return eKind == INPUT_COLOR ? 4 : eKind == INPUT_POINT ? 2 : 1;
}

const char *InputType(InputKind eKind)
{
    static const char *const apszType[] = {"float",     "int",       "bool",      "vec4",     "vec2",
                                           "sampler2D", "sampler2D", "sampler2D", "sampler2D"};
    return apszType[eKind];
}

bool ReadShaderHeader(const std::string &json, int32_t nLine, ShaderHeader *pHeader, std::string *psError)
{
    if (json.size() > HEADER_BYTES_MAX) {
        AddFault(psError, nLine, "the header comment is larger than 64 kibibytes");
        return false;
    }
    // The JSON has to be valid UTF-8; a stray byte of an old code page is no reason to lose the controls.
    const std::string text = NarrowText(WideText(json).c_str());
    Json root;
    try {
        root = Json::parse(Tolerated(text), nullptr, true, true);
    } catch (const Json::exception &e) {
        const auto *pParse = dynamic_cast<const Json::parse_error *>(&e);
        AddFault(psError, LineAt(text, pParse ? pParse->byte : 0, nLine), "the header comment is no valid JSON here");
        return false;
    }
    if (!root.is_object())
        return true;
    if (const Json *pInputs = Member(root, "INPUTS"); pInputs && pInputs->is_array())
        ReadInputs(*pInputs, text, nLine, &pHeader->aInput, psError);
    if (const Json *pImported = Member(root, "IMPORTED"); pImported && pImported->is_structured())
        ReadImported(*pImported, text, nLine, &pHeader->aInput, psError);
    if (const Json *pPasses = Member(root, "PASSES"); pPasses && pPasses->is_array())
        ReadPasses(*pPasses, text, nLine, pHeader, psError);
    return psError->empty();
}
