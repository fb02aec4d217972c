// HostControl.cpp -- allocates and frees control records with what the host hangs on them, and guards it from modules
#include "controls/HostControl.h"

#include "controls/ControlManager.h"
#include "controls/ControlTypes.h"
#include "platform/Assert.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr u32 TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;

// Item select

void PrepareItemSelect(HostControl *phc)
{
    ControlItemSelect &Items = phc->Record.ItemSelect;
    if (!Items.pItems)
        Items.nItems = 0;
    phc->nItems = Items.nItems;
    phc->pItems = Items.pItems;
    phc->bOwnsItems = Items.bOwnsItems;
}

// Rows that were exchanged after building may have come from anywhere: they stay the module's.
void TakeBackItemSelect(HostControl *phc)
{
    ControlItemSelect &Items = phc->Record.ItemSelect;
    const bool bSameRows = Items.pItems == phc->pItems && Items.nItems == phc->nItems;
    Items.bOwnsItems = bSameRows ? phc->bOwnsItems : 0;
}

void FreeItemSelect(HostControl *phc)
{
    const ControlItemSelect &Items = phc->Record.ItemSelect;
    if (!Items.bOwnsItems || !Items.pItems)
        return;
    for (u32 i = 0; i < Items.nItems; i++)
        std::free(const_cast<char16_t *>(Items.pItems[i].pszText));
    std::free(Items.pItems);
}

// File select

void TakeBackFileSelect(HostControl *phc)
{
    ControlFileSelect &File = phc->Record.FileSelect;
    File.pszFileList = phc->pszFileList;
    File.pLineOffsets = phc->pLineOffsets;
    File.nLines = phc->nLines;
    File.szCurrentFile[CONTROL_TEXT - 1] = 0;
}

void PrepareFileSelect(HostControl *phc)
{
    phc->Record.FileSelect.nCurrentLine = 0;
    TakeBackFileSelect(phc);
}

// Tile

void PrepareTile(HostControl *phc)
{
    ControlTile &Tile = phc->Record.Tile;
    Tile.nXTiles = Tile.nYTiles = Tile.nXLimit = Tile.nYLimit = CONTROL_TILES_MAX;
    Tile.pTileMask = phc->pTileMask = static_cast<u32 *>(std::calloc(TILES, sizeof(u32)));
    VD_ASSERT(Tile.pTileMask);
    std::fill_n(Tile.pTileMask, TILES, 1u);
}

void TakeBackTile(HostControl *phc)
{
    phc->Record.Tile.pTileMask = phc->pTileMask;
    ClampControl(&phc->Record);
}

// What a control type needs of the host. Null: nothing.
struct HostSteps {
    u32 dwType;
    void (*pfnPrepare)(HostControl *phc) = nullptr;
    void (*pfnTakeBack)(HostControl *phc) = nullptr;
    void (*pfnFree)(HostControl *phc) = nullptr; // what the host did not allocate itself
};

constexpr ControlTypeTable<HostSteps> asSteps({
    {CONTROLTYPE_UNDEFINED},
    {CONTROLTYPE_GROUP},
    {CONTROLTYPE_INTEGER},
    {CONTROLTYPE_ITEMSELECT, PrepareItemSelect, TakeBackItemSelect, FreeItemSelect},
    {CONTROLTYPE_FLOAT},
    {CONTROLTYPE_BOOLEAN},
    {CONTROLTYPE_FILESELECT, PrepareFileSelect, TakeBackFileSelect},
    {CONTROLTYPE_TILE, PrepareTile, TakeBackTile},
});

void RunStep(HostControl *phc, void (*HostSteps::*ppfnStep)(HostControl *))
{
    if (const auto pfnStep = asSteps[phc->Record.Base.dwType].*ppfnStep)
        pfnStep(phc);
}

bool SlotHasControl(const ModuleSlot *pms, const ControlRecord *pctl)
{
    return std::find(pms->apControl, pms->apControl + pms->nControls, pctl) != pms->apControl + pms->nControls;
}

void EndTexts(ControlBase *pBase)
{
    pBase->szName[CONTROL_TEXT - 1] = 0;
    pBase->szDescription[CONTROL_TEXT - 1] = 0;
}

void TakeBackControl(HostControl *phc)
{
    if (!phc->bBuilt)
        return;
    ControlBase &Base = phc->Record.Base;
    Base.dwType = phc->dwType;
    Base.pDependsOn = phc->pDependsOn;
    Base.pOwner = phc->pOwner;
    EndTexts(&Base);
    RunStep(phc, &HostSteps::pfnTakeBack);
}

} // namespace

ControlRecord *NewControl()
{
    HostControl *phc = static_cast<HostControl *>(std::calloc(1, sizeof(HostControl)));
    if (!phc)
        return nullptr;
    SetControlDefaults(&phc->Record);
    return &phc->Record;
}

void FreeControl(ControlRecord *pctl)
{
    if (!pctl)
        return;
    HostControl *phc = HostPart(pctl);
    TakeBackControl(phc);
    RunStep(phc, &HostSteps::pfnFree);
    std::free(phc->pTileMask);
    std::free(phc->pszFileList);
    std::free(phc->pLineOffsets);
    std::free(phc);
}

void TakeOverControl(ModuleSlot *pms, ControlRecord *pctl)
{
    HostControl *phc = HostPart(pctl);
    ControlBase &Base = pctl->Base;
    Base.pOwner = phc->pOwner = pms;
    EndTexts(&Base);
    if (!SlotHasControl(pms, Base.pDependsOn))
        Base.pDependsOn = nullptr;
    phc->pDependsOn = Base.pDependsOn;
    phc->dwType = Base.dwType;
    RunStep(phc, &HostSteps::pfnPrepare);
    phc->bBuilt = 1;
}

void TakeBackControls(const ModuleSlot *pms)
{
    for (i32 i = 0; i < pms->nControls; i++)
        TakeBackControl(HostPart(pms->apControl[i]));
}
