// PlanePanels.cpp -- what the two panels of planes say and do
#include "controls/panels/PlanePanels.h"

#include "editing/PresetEdit.h"
#include "editing/TreeCommands.h"
#include "platform/Text.h"
#include "platform/OrderedRows.h"

#include <iterator>

namespace {

bool IsPlane(const PresetState *lppsi, i32 iPlane)
{
    return lppsi && iPlane >= 0 && iPlane < lppsi->nPlanes;
}

struct ButtonRow {
    PlaneButton eButton;
    PlaneButtonLook look, lookPaused;
    TreeCommand eCommand; // None: no command of the tree
};

constexpr ButtonRow asButton[] = {
    {PlaneButton::MoveLeft, {"left", u"Move Left"}, {"left", u"Move Left"}, TreeCommand::MoveUp},
    {PlaneButton::Pause, {"pause", u"Pause Plane Drawing"}, {"play", u"Resume Plane Drawing"}, TreeCommand::PausePlane},
    {PlaneButton::Clear, {"clear", u"Clear Plane"}, {"clear", u"Clear Plane"}, TreeCommand::None},
    {PlaneButton::Remove, {"remove", u"Remove Plane"}, {"remove", u"Remove Plane"}, TreeCommand::Remove},
    {PlaneButton::MoveRight, {"right", u"Move Right"}, {"right", u"Move Right"}, TreeCommand::MoveDown},
};
static_assert(RowsStandInOrder(asButton, &ButtonRow::eButton));

const ButtonRow &RowOf(PlaneButton eButton)
{
    return asButton[static_cast<u32>(eButton)];
}

constexpr PlaneButton aeColumn[] = {PlaneButton::MoveLeft, PlaneButton::Pause, PlaneButton::Clear, PlaneButton::Remove,
                                    PlaneButton::MoveRight};

i32 StepOf(PlaneButton eButton)
{
    if (eButton == PlaneButton::MoveLeft)
        return -1;
    return eButton == PlaneButton::MoveRight ? 1 : 0;
}

} // namespace

std::u16string PlaneBoxText(const PresetState *lppsi, i32 iPlane)
{
    const char16_t *pszType = u"Unused";
    if (IsPlane(lppsi, iPlane))
        pszType = lppsi->psPlane[iPlane]->Info.bIndexed ? u"Indexed" : u"RGB";
    return u"Plane " + FromUtf8(std::to_string(iPlane + 1)) + u"\t [" + pszType + u"]";
}

PlaneButtonLook LookOfPlaneButton(PlaneButton eButton, bool bPaused)
{
    return bPaused ? RowOf(eButton).lookPaused : RowOf(eButton).look;
}

std::span<const PlaneButton> ButtonsOfPlane()
{
    return std::span(aeColumn).subspan(1, 3);
}

std::span<const PlaneButton> ButtonsOfColumn(i32 iPlane)
{
    const size_t nFirst = iPlane > 0 ? 0 : 1;
    const size_t nEnd = std::size(aeColumn) - (iPlane + 1 < PLANES_MAX ? 0 : 1);
    return std::span(aeColumn).subspan(nFirst, nEnd - nFirst);
}

bool PlaneButtonActs(const PresetState *lppsi, i32 iPlane, PlaneButton eButton)
{
    return IsPlane(lppsi, iPlane) && IsPlane(lppsi, iPlane + StepOf(eButton));
}

void ClickPlaneButton(PresetTree &tree, i32 iPlane, PlaneButton eButton)
{
    if (!PlaneButtonActs(tree.lppsi, iPlane, eButton))
        return;
    if (eButton == PlaneButton::Clear)
        RunPresetEdit(MakeEdit(EditKind::ClearPlane, PlanePlace(iPlane)));
    else if (TreeNode *pNode = FindNodeOfType(tree, OBJECT_PLANE, tree.lppsi->psPlane[iPlane]))
        RunTreeCommand(tree, pNode, RowOf(eButton).eCommand);
}

void ClickOwnPlaneButton(TreeNode *pPlane, PlaneButton eButton)
{
    PresetTree &tree = *pPlane->Info.hTree;
    const EditPlace place = PlaceOfPlane(tree.lppsi, PlaneOf(pPlane));
    if (eButton != PlaneButton::Remove)
        return ClickPlaneButton(tree, place.iPlane, eButton);
    if (RunPresetEdit(MakeEdit(EditKind::RemovePlane, place)) != EditResult::Refused)
        BuildPresetTree(tree, tree.lppsi);
    PanelRefresh.Tell();
}

void AddPlaneTo(TreeNode *pPlanes, bool bIndexed)
{
    PresetTree &tree = *pPlanes->Info.hTree;
    if (tree.lppsi->nPlanes < PLANES_MAX)
        RunTreeCommand(tree, pPlanes, TreeCommand::AddPlane, bIndexed);
}
