// Panels.cpp -- panels of the preset tree's nodes: which one a node gets, where it opens, what it says, how it edits
#include "controls/panels/Panels.h"

#include "controls/ControlManager.h"
#include "controls/ControlTypes.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace {

struct ControlPanel {
    u32 dwType;
    PanelKind eKind;
};
constexpr ControlPanel asControlPanel[] = {
    {CONTROLTYPE_UNDEFINED, PanelKind::Unknown},     {CONTROLTYPE_GROUP, PanelKind::Description},
    {CONTROLTYPE_INTEGER, PanelKind::Number},        {CONTROLTYPE_ITEMSELECT, PanelKind::Item},
    {CONTROLTYPE_FLOAT, PanelKind::Number},          {CONTROLTYPE_BOOLEAN, PanelKind::Boolean},
    {CONTROLTYPE_FILESELECT, PanelKind::FileSelect}, {CONTROLTYPE_TILE, PanelKind::Tile},
};
constexpr ControlTypeTable<ControlPanel> ControlPanels(asControlPanel);

PanelKind KindOfObject(u32 dwType)
{
    if (IsModuleType(dwType))
        return PanelKind::Module;
    if (IsListType(dwType))
        return PanelKind::ModuleList;
    switch (dwType) {
    case OBJECT_PLANETREE:
        return PanelKind::Planes;
    case OBJECT_PLANE:
        return PanelKind::Plane;
    case OBJECT_COLORTREE:
        return PanelKind::Colors;
    case OBJECT_POSTPROC:
        return PanelKind::ModuleList;
    case OBJECT_CONTROLTREE:
        return PanelKind::Description;
    case OBJECT_MIXER:
        return PanelKind::Mixer;
    default:
        return PanelKind::None;
    }
}

i32 Clamp(i32 n, i32 nMin, i32 nMax)
{
    return std::max(nMin, std::min(n, nMax)); // the lower bound wins where there is too little room
}

} // namespace

PanelKind PanelKindOf(const TreeNode *pNode)
{
    if (pNode->Info.dwType != OBJECT_CONTROL)
        return KindOfObject(pNode->Info.dwType);
    const ControlRecord *pctl = ControlOf(pNode);
    return pctl ? ControlPanels[pctl->Base.dwType].eKind : PanelKind::None;
}

WindowRect PlacePanel(const PanelPlace &place)
{
    const WindowRect &rcMain = place.rcMain, &rcWork = place.rcWork;
    const bool bRight = rcMain.right + place.nWidth < rcWork.right;
    const i32 xWanted = bRight ? rcMain.right : rcMain.left - place.nWidth;
    const i32 yWanted = Clamp(place.yPointer - place.nHeight / 2, rcMain.top, rcMain.bottom - place.nHeight);
    const i32 x = Clamp(xWanted, rcWork.left, rcWork.right - place.nWidth);
    const i32 y = Clamp(yWanted, rcWork.top, rcWork.bottom - place.nHeight);
    return {x, y, x + place.nWidth, y + place.nHeight};
}

std::u16string DescriptionText(const ControlRecord *pctl)
{
    std::u16string s(pctl->Base.szDescription, TextLength(pctl->Base.szDescription, CONTROL_TEXT));
    const ControlRecord *pctlOther = pctl->Base.pDependsOn;
    if (!pctlOther)
        return s;
    NameText szName;
    ControlDottedName(pctlOther, szName);
    s += u"\r\nDependency: This control will be active only when '";
    s += szName;
    s += u"' is ";
    s += DependWords(pctl->Base.dwDependOp);
    s += u' ';
    s += FromUtf8(std::to_string(pctl->Base.nDependValue));
    return s + u'\n';
}
