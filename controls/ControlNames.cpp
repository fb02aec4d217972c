// ControlNames.cpp -- the dotted name of a control, and what its dependency on another control says
#include "controls/ControlManager.h"

#include "controls/ControlTypes.h"
#include "platform/Text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

namespace {

constexpr f32 DEPEND_TOLERANCE = 0.000001f;

// How far the value lies above the comparand, both taken as f32; false for a type that nothing is compared with.
bool DependDistance(const ControlRecord *pctl, const ControlBase &Base, f32 *pfDistance)
{
    const f32 fComparand = static_cast<f32>(Base.nDependValue);
    switch (TypeOf(pctl).eValue) {
    case ControlValue::INTEGER:
        *pfDistance = static_cast<f32>(pctl->Integer.nValue) - fComparand;
        return true;
    case ControlValue::ITEM:
        *pfDistance = static_cast<f32>(pctl->ItemSelect.nCurrentItemValue) - fComparand;
        return true;
    case ControlValue::BOOLEAN:
        *pfDistance = static_cast<f32>(pctl->Boolean.bState) - fComparand;
        return true;
    case ControlValue::FLOAT:
        *pfDistance = pctl->Float.fValue - Base.fDependValue;
        return true;
    case ControlValue::NONE:
    case ControlValue::FILES:
    case ControlValue::TILES:
        return false;
    }
    return false;
}

bool IsEqual(f32 d)
{
    return std::fabs(d) < DEPEND_TOLERANCE;
}

bool IsNotEqual(f32 d)
{
    return std::fabs(d) >= DEPEND_TOLERANCE;
}

bool IsGreater(f32 d)
{
    return d > DEPEND_TOLERANCE;
}

bool IsLess(f32 d)
{
    return d < -DEPEND_TOLERANCE;
}

bool IsLessOrEqual(f32 d)
{
    return d < DEPEND_TOLERANCE;
}

bool IsGreaterOrEqual(f32 d)
{
    return d > -DEPEND_TOLERANCE;
}

struct DependOp {
    bool (*pfnHolds)(f32 d);
    const char16_t *pszWords;
};
constexpr DependOp asDependOp[] = {
    {IsEqual, u"equal to"},
    {IsNotEqual, u"not equal to"},
    {IsGreater, u"greater than"},
    {IsLess, u"less than"},
    {IsLessOrEqual, u"less than or equal to"},
    {IsGreaterOrEqual, u"greater than or equal to"},
};
static_assert(std::size(asDependOp) == DEPENDOP_GREATEREQUAL + 1);

} // namespace

bool ControlIsActive(const ControlRecord *pctl)
{
    const ControlRecord *pctlOther = pctl->Base.pDependsOn;
    const u32 dwOp = pctl->Base.dwDependOp;
    f32 fDistance;
    if (!pctlOther || pctlOther->Base.dwSource != FLUIDSOURCE_FIXED || dwOp >= std::size(asDependOp))
        return true;
    return !DependDistance(pctlOther, pctl->Base, &fDistance) || asDependOp[dwOp].pfnHolds(fDistance);
}

const char16_t *DependWords(u32 dwDependOp)
{
    return dwDependOp < std::size(asDependOp) ? asDependOp[dwDependOp].pszWords : u"********[ Error ]********";
}

void ControlDottedName(const ControlRecord *pctl, NameText &szName)
{
    std::u16string_view list(pctl->Base.szName, CONTROL_TEXT);
    u32 cch = 0;
    while (!list.empty() && list[0] && cch < NAME_CHARS - 1) {
        const std::u16string_view component = list.substr(0, list.find(u'\0'));
        if (cch)
            szName[cch++] = u'.';
        cch += CopyText(szName + cch, NAME_CHARS - cch, component);
        list.remove_prefix(std::min(component.size() + 1, list.size()));
    }
    szName[cch] = 0;
}
