// ShaderControls.cpp -- the inputs of a shader as controls of the host
#include "ShaderControls.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace {

using Names = std::set<std::u16string>;

struct Builder {
    const ControlMaker &maker;
    Names *pNames; // dotted, as files tell controls apart
};

void PutText(char16_t (&szField)[CONTROL_TEXT], const std::u16string &text)
{
    const size_t cch = std::min<size_t>(text.size(), CONTROL_TEXT - 2);
    std::fill(std::copy_n(text.begin(), cch, szField), szField + CONTROL_TEXT, u'\0');
}

// "Group\0Label\0", and a number behind the label if there is such a control.
std::u16string ControlName(const Builder &builder, const ShaderInput &input, const char16_t *pszPart)
{
    std::u16string path = input.group.empty() ? u"" : input.group + u'\0';
    path += input.label;
    std::u16string tail;
    const std::u16string part = pszPart ? std::u16string(1, u'\0') + pszPart : u"";
    const auto Key = [&](std::u16string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char16_t ch) { return ch < 128 ? (char16_t)tolower(ch) : ch; });
        return text;
    };
    for (char16_t ch = u'2'; !builder.pNames->insert(Key(path + tail + part)).second && ch <= u'9'; ch++)
        tail = std::u16string(u" ") + ch;
    return path + tail + part + u'\0';
}

ControlRecord *AddRecord(const Builder &builder, const ShaderInput &input, uint32_t dwType, const char16_t *pszPart)
{
    const bool bItem = dwType == CONTROLTYPE_ITEMSELECT;
    ControlRecord *pctl = builder.maker.pfnAllocControl(builder.maker.pnControls);
    if (!pctl)
        return nullptr;
    pctl->Base.dwType = dwType;
    PutText(pctl->Base.szName, ControlName(builder, input, pszPart));
    PutText(pctl->Base.szDescription, input.help.empty() ? u"An input of the shader" : input.help);
    FluidDefault source = input.source;
    const uint32_t dwSources = bItem ? FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM : STOCK_SOURCES_ALL;
    if (!(source.dwSource & dwSources))
        source.dwSource = FLUIDSOURCE_FIXED;
    SetFluidDefault(&pctl->Base, source, dwSources);
    return pctl;
}

ControlRecord *AddFloatPart(const Builder &builder, const ShaderInput &input, int32_t iPart, const char16_t *pszPart)
{
    ControlRecord *pctl = AddRecord(builder, input, CONTROLTYPE_FLOAT, pszPart);
    const float fMin = input.afMin[iPart], fMax = input.afMax[iPart], fValue = input.afDefault[iPart];
    const FloatRange range = input.eKind == INPUT_FLOAT ? input.range : FloatRange{fMin, fMax};
    if (pctl)
        pctl->Float = {fMin, fMax, range.fLow, range.fHigh, range.fLow, range.fHigh, fValue, fValue, 0};
    return pctl;
}

ControlRecord *AddNumber(const Builder &builder, const ShaderInput &input)
{
    ControlRecord *pctl = AddRecord(builder, input, CONTROLTYPE_INTEGER, nullptr);
    const int32_t nMin = (int32_t)input.afMin[0], nMax = (int32_t)input.afMax[0], nValue = (int32_t)input.afDefault[0];
    const int32_t nLow = (int32_t)input.range.fLow, nHigh = (int32_t)input.range.fHigh;
    if (pctl)
        pctl->Integer = {nMin, nMax, nLow, nHigh, nLow, nHigh, nValue, nValue, 0, 0, 0};
    return pctl;
}

// Rows are numbered: the numbers of the file may be anything, and a random source draws from 0 on.
ControlRecord *AddChoice(const Builder &builder, ShaderControl *pControl)
{
    const ShaderInput &input = pControl->input;
    for (uint32_t i = 0; i < input.anValue.size(); i++)
        pControl->aRow.push_back({input.aszChoice[i].c_str(), i, 0});
    const auto itDefault = std::find(input.anValue.begin(), input.anValue.end(), (int32_t)input.afDefault[0]);
    const uint32_t iDefault = itDefault == input.anValue.end() ? 0 : (uint32_t)(itDefault - input.anValue.begin());
    ControlRecord *pctl = AddRecord(builder, input, CONTROLTYPE_ITEMSELECT, nullptr);
    if (pctl)
        pctl->ItemSelect = {(uint32_t)pControl->aRow.size(), iDefault, iDefault, 0, pControl->aRow.data()};
    return pctl;
}

ControlRecord *AddSwitch(const Builder &builder, const ShaderInput &input)
{
    ControlRecord *pctl = AddRecord(builder, input, CONTROLTYPE_BOOLEAN, nullptr);
    const uint32_t bState = input.afDefault[0] != 0;
    if (pctl)
        pctl->Boolean = {0.5f, 0.5f, bState, bState};
    return pctl;
}

void AddInput(const Builder &builder, ShaderControl *pControl)
{
    static const char16_t *const apszColor[] = {u"Red", u"Green", u"Blue", u"Alpha"};
    static const char16_t *const apszPoint[] = {u"X", u"Y"};
    const ShaderInput &input = pControl->input;
    switch (input.eKind) {
    case INPUT_FLOAT:
        pControl->apControl[0] = AddFloatPart(builder, input, 0, nullptr);
        break;
    case INPUT_LONG:
        pControl->apControl[0] = input.anValue.empty() ? AddNumber(builder, input) : AddChoice(builder, pControl);
        break;
    case INPUT_BOOL:
        pControl->apControl[0] = AddSwitch(builder, input);
        break;
    case INPUT_COLOR:
    case INPUT_POINT:
        for (int32_t i = 0; i < InputParts(input.eKind); i++)
            pControl->apControl[i] =
                AddFloatPart(builder, input, i, (input.eKind == INPUT_COLOR ? apszColor : apszPoint)[i]);
        break;
    default:
        break;
    }
}

float ReadPart(const ShaderControl &control, int32_t iPart)
{
    const ShaderInput &input = control.input;
    const ControlRecord *pctl = control.apControl[iPart];
    if (!pctl)
        return input.afDefault[iPart];
    switch (pctl->Base.dwType) {
    case CONTROLTYPE_INTEGER:
        return (float)ReadInteger(pctl);
    case CONTROLTYPE_ITEMSELECT:
        return (float)input.anValue[ReadItem(pctl)];
    case CONTROLTYPE_BOOLEAN:
        return ReadBoolean(pctl) ? 1.0f : 0.0f;
    default:
        return ReadFloat(pctl);
    }
}

} // namespace

void AddShaderControls(const ControlMaker &maker, const std::vector<ShaderInput> &inputs,
                       std::vector<ShaderControl> *paControl)
{
    Names names;
    const Builder builder = {maker, &names};
    paControl->reserve(inputs.size());
    for (const ShaderInput &input : inputs) {
        paControl->push_back({input, {}, {}, {}, 0});
        AddInput(builder, &paControl->back());
    }
}

void ResetShaderControls(std::vector<ShaderControl> *paControl)
{
    for (ShaderControl &control : *paControl) {
        control.dSum = 0;
        for (int32_t i = 0; i < InputParts(control.input.eKind); i++)
            control.afNow[i] = ReadPart(control, i);
    }
}

void StepShaderControls(std::vector<ShaderControl> *paControl, float fSeconds)
{
    for (ShaderControl &control : *paControl) {
        const bool bEase =
            control.input.fEase > 0 && control.input.eKind != INPUT_LONG && control.input.eKind != INPUT_BOOL;
        const float fShare = bEase ? 1 - std::exp(-3 * fSeconds / control.input.fEase) : 1;
        for (int32_t i = 0; i < InputParts(control.input.eKind); i++)
            control.afNow[i] += (ReadPart(control, i) - control.afNow[i]) * fShare;
        control.dSum += control.afNow[0] * fSeconds;
    }
}

void ReadShaderInput(const std::vector<ShaderControl> &aControl, const ShaderInput &input, float *pfValue)
{
    const auto it = std::find_if(aControl.begin(), aControl.end(), [&](const ShaderControl &control) {
        return control.input.name == input.name && control.input.eKind == input.eKind;
    });
    std::copy_n(it == aControl.end() ? input.afDefault : it->afNow, 4, pfValue);
    if (it != aControl.end() && input.bSum)
        pfValue[0] = (float)it->dSum;
}
