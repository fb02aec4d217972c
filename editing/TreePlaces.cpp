// TreePlaces.cpp -- the place in its preset that a node of the preset tree stands for
#include "editing/TreePlaces.h"

EditPlace PlaceOfNode(const TreeNode *pNode)
{
    const PresetState *lppsi = pNode->Info.hTree->lppsi;
    const u32 dwType = pNode->Info.dwType;
    if (IsModuleType(dwType))
        return PlaceOfSlot(lppsi, SlotOf(pNode));
    if (IsControlType(dwType))
        return PlaceOfControl(lppsi, ControlOf(pNode));
    if (dwType == OBJECT_ROOT)
        return PresetPlace();
    if (dwType == OBJECT_PLANETREE)
        return PlanesPlace();
    if (dwType == OBJECT_POSTPROC)
        return ListPlace(POST_PROCESSING, 0);
    const PlaneState *pps = PlaneOf(pNode);
    const EditPlace plane = pps ? PlaceOfPlane(lppsi, pps) : EditPlace{};
    if (plane.eKind == PlaceKind::None || dwType == OBJECT_PLANE)
        return plane;
    if (IsListType(dwType))
        return ListPlace(plane.iPlane, ModuleTypeOfList(dwType));
    return FamilyPlace(plane.iPlane, ModuleTypeOfList(KindOf(dwType).children[0]));
}
