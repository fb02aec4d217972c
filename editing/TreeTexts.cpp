// TreeTexts.cpp -- what nodes of the preset tree are called: texts, marks, paths, titles, tips
#include "editing/TreeTexts.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>

namespace {

constexpr std::u16string_view MARK_START = u" - [";
constexpr std::u16string_view PAUSED_MARK = u" - [ Paused ]";
constexpr std::u16string_view TITLE_START = u"Plane ";

std::u16string_view FieldText(const char16_t *psz, u32 cch)
{
    return {psz, TextLength(psz, cch)};
}

std::u16string MarkedText(std::u16string_view text, bool bPaused)
{
    std::u16string s(UnmarkedText(text));
    return bPaused ? s.append(PAUSED_MARK) : s;
}

// From pFrom down to pNode.
std::u16string JoinTexts(const TreeNode *pNode, const TreeNode *pFrom)
{
    return pNode == pFrom ? pNode->sText : JoinTexts(pNode->pParent, pFrom) + u"\\" + pNode->sText;
}

std::u16string_view PathPart(const TreeNode *pNode)
{
    const u32 dwType = pNode->Info.dwType;
    if (dwType == OBJECT_ROOT || dwType == OBJECT_PLANETREE)
        return {};
    if (dwType != OBJECT_PLANE)
        return pNode->sText;
    const PlaneState *pps = PlaneOf(pNode);
    return pps && pps->Info.bIndexed ? u"Indexed" : u"RGB";
}

std::u16string ModuleTip(const ModuleSlot *pms)
{
    std::u16string s = u"Module: ";
    s += FieldText(pms->pmd->szName, CONTROL_TEXT);
    s += u" - ";
    return s += FieldText(pms->pmd->szDescription, CONTROL_TEXT);
}

} // namespace

std::u16string PlaneText(u32 nPlane)
{
    return u"Plane " + FromUtf8(std::to_string(nPlane));
}

std::u16string_view ModuleText(const ModuleSlot *pms)
{
    return pms->lpszShader ? FieldText(pms->lpszShader, NAME_CHARS) : FieldText(pms->pmd->szName, CONTROL_TEXT);
}

void SetTreeTitle(PresetTree &tree, std::u16string_view name, bool bChanged)
{
    ASSERT_MAIN_THREAD();
    tree.sTitle = (bChanged ? u"*" : u"") + std::u16string(name);
    if (tree.pRoot)
        SetNodeText(tree, tree.pRoot, tree.sTitle);
}

std::u16string_view UnmarkedText(std::u16string_view text)
{
    return text.substr(0, text.find(MARK_START));
}

void SetPausedMark(PresetTree &tree, TreeNode *pNode, bool bPaused)
{
    ASSERT_MAIN_THREAD();
    SetNodeText(tree, pNode, MarkedText(pNode->sText, bPaused));
}

void RenumberPlanes(PresetTree &tree, const PresetState *lppsi)
{
    ASSERT_MAIN_THREAD();
    for (u32 n = 0; TreeNode *pNode = NthPlaneNode(tree, n); n++) {
        PlaneState *const *ppps = std::find(lppsi->psPlane, lppsi->psPlane + lppsi->nPlanes, PlaneOf(pNode));
        const u32 iPlane = static_cast<u32>(ppps - lppsi->psPlane);
        if (iPlane < static_cast<u32>(lppsi->nPlanes)) // one that is gone is not looked into
            SetNodeText(tree, pNode, MarkedText(PlaneText(iPlane + 1), (*ppps)->bPaused));
    }
}

std::u16string ObjPath(const TreeNode *pNode)
{
    if (!pNode)
        return {};
    std::u16string s = ObjPath(pNode->pParent);
    s += u'\\';
    return s += PathPart(pNode);
}

std::u16string DisplayPath(const TreeNode *pNode)
{
    const TreeNode *pFrom = pNode;
    while (pFrom->pParent && !IsModuleType(pFrom->Info.dwType))
        pFrom = pFrom->pParent;
    return JoinTexts(pNode, pFrom);
}

std::u16string PanelTitle(const TreeNode *pNode)
{
    std::u16string s = DisplayPath(pNode);
    const size_t iStart = s.find(TITLE_START);
    return iStart == s.npos ? s : s.substr(iStart);
}

std::u16string TipText(const TreeNode *pNode)
{
    if (const char16_t *pszTip = KindOf(pNode->Info.dwType).pszTip)
        return pszTip;
    if (const ModuleSlot *pms = SlotOf(pNode))
        return ModuleTip(pms);
    const ControlRecord *pctl = ControlOf(pNode);
    return pctl ? std::u16string(FieldText(pctl->Base.szDescription, CONTROL_TEXT)) : std::u16string();
}
