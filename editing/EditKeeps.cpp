// EditKeeps.cpp -- keeps records that are about to go, and makes them anew from what was kept
#include "editing/EditKeeps.h"

#include "controls/ControlManager.h"
#include "controls/FileList.h"
#include "controls/FluidSources.h"
#include "controls/HostControl.h"
#include "editing/EditRows.h"
#include "engine/DrawPipeline.h"
#include "engine/ModuleSlots.h"
#include "engine/PresetManager.h"
#include "modules/ShaderList.h"
#include "platform/Clock.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr u32 TILES = CONTROL_TILES_MAX * CONTROL_TILES_MAX;
constexpr u32 MODSTEPS_BRINGBACK = MODSTEPS_BRINGUP | MODSTEP_KEEPVALUES;

KeptControl KeepControl(const ControlRecord *pctl)
{
    KeptControl kept = {*pctl, {}, {}};
    if (pctl->Base.dwType == CONTROLTYPE_TILE && pctl->Tile.pTileMask)
        kept.aTile.assign(pctl->Tile.pTileMask, pctl->Tile.pTileMask + TILES);
    if (pctl->Base.dwType == CONTROLTYPE_FILESELECT && pctl->FileSelect.pszFileList)
        kept.sFileList = pctl->FileSelect.pszFileList;
    return kept;
}

// The rows belong to the new instance.
void PutBackItems(ControlRecord *pctl, const ControlItemSelect &rows, const KeptControl &)
{
    pctl->ItemSelect.nItems = rows.nItems;
    pctl->ItemSelect.pItems = rows.pItems;
    pctl->ItemSelect.bOwnsItems = rows.bOwnsItems;
}

void PutBackFiles(ControlRecord *pctl, const ControlFileSelect &files, const KeptControl &kept)
{
    const ControlFileSelect &old = kept.Record.FileSelect;
    pctl->FileSelect.pszFileType = files.pszFileType;
    pctl->FileSelect.pszEditor = files.pszEditor;
    SetListText(pctl, kept.sFileList);
    SetLineCount(pctl, old.nLines);
    pctl->FileSelect.nCurrentLine = old.nCurrentLine;
    SetCurrentFile(pctl, old.szCurrentFile);
}

void PutBackTiles(ControlRecord *pctl, const ControlTile &tiles, const KeptControl &kept)
{
    pctl->Tile.pTileMask = tiles.pTileMask;
    if (tiles.pTileMask)
        std::copy(kept.aTile.begin(), kept.aTile.end(), tiles.pTileMask);
}

// A control that the new instance declares otherwise, since its shader was edited meanwhile, stays as it is.
void PutBackControl(ControlRecord *pctl, const KeptControl &kept)
{
    const ControlRecord fresh = *pctl;
    if (fresh.Base.dwType != kept.Record.Base.dwType ||
        std::memcmp(fresh.Base.szName, kept.Record.Base.szName, sizeof fresh.Base.szName) != 0)
        return;
    *pctl = kept.Record;
    pctl->Base.pDependsOn = fresh.Base.pDependsOn;
    pctl->Base.pOwner = fresh.Base.pOwner;
    if (fresh.Base.dwType == CONTROLTYPE_ITEMSELECT)
        PutBackItems(pctl, fresh.ItemSelect, kept);
    else if (fresh.Base.dwType == CONTROLTYPE_FILESELECT)
        PutBackFiles(pctl, fresh.FileSelect, kept);
    else if (fresh.Base.dwType == CONTROLTYPE_TILE)
        PutBackTiles(pctl, fresh.Tile, kept);
}

void PutBackControls(ModuleSlot *pms, const KeptSlot &kept)
{
    const size_t nControls = std::min(kept.controls.size(), static_cast<size_t>(pms->nControls));
    for (size_t i = 0; i < nControls; i++)
        PutBackControl(pms->apControl[i], kept.controls[i]);
}

void PutBackSettings(ModuleSlot *pms, const KeptSlot &kept)
{
    pms->bResetPending = kept.bResetPending;
    pms->nDuration = kept.nDuration;
    pms->qwNextReset = kept.qwNextReset;
    pms->bActive = kept.bActive;
    pms->bClearOnReset = kept.bClearOnReset;
    pms->nCallsPerFrame = kept.nCallsPerFrame;
    pms->Random = kept.Random;
}

// From the end of its list, where new ones stand.
void MoveSlotTo(PresetState *lppsi, const EditPlace &list, i32 iModule)
{
    for (i32 i = ListLength(lppsi, list) - 1; i > iModule; i--) {
        EditTarget one, other;
        FindTarget(lppsi, ModulePlace(list, i), &one);
        FindTarget(lppsi, ModulePlace(list, i - 1), &other);
        SwapModuleSlots(lppsi, one.pms, other.pms);
    }
}

void PutBackColors(PlaneInfo *ppi, const KeptPlane &kept)
{
    ppi->nColors = kept.nColors;
    std::copy(kept.aColor.begin(), kept.aColor.end(), ppi->lpColorTable);
}

bool BringBackSlots(PresetState *lppsi, i32 iPlane, const std::vector<KeptSlot> &slots)
{
    return std::all_of(slots.begin(), slots.end(), [=](const KeptSlot &kept) {
        return BringBackSlot(lppsi, iPlane, LIST_MODULES_MAX, kept) != nullptr;
    });
}

} // namespace

void SetListText(ControlRecord *pctl, const std::u16string &sText)
{
    char16_t *pszList = nullptr;
    if (!sText.empty()) {
        pszList = static_cast<char16_t *>(std::malloc((sText.size() + 1) * sizeof(char16_t)));
        if (!pszList)
            return; // the old list stays
        std::copy_n(sText.c_str(), sText.size() + 1, pszList);
    }
    SetFileList(pctl, pszList);
}

// Counting marks the preset; here it is no change.
void SetLineCount(ControlRecord *pctl, u32 nLines)
{
    const u32 bChanged = bPresetChanged;
    if (nLines != ALL_ONES && pctl->FileSelect.pszFileList)
        RefreshLineIndex(pctl);
    else
        pctl->FileSelect.nLines = HostPart(pctl)->nLines = nLines;
    bPresetChanged = bChanged;
}

void SetCurrentFile(ControlRecord *pctl, const std::u16string &sText)
{
    CopyText(pctl->FileSelect.szCurrentFile, sText);
}

KeptSlot KeepSlot(const ModuleSlot *pms, u32 iList)
{
    KeptSlot kept = {};
    kept.iList = iList;
    kept.sDll = pms->pszDll;
    kept.sShader = pms->lpszShader ? pms->lpszShader : u"";
    kept.bResetPending = pms->bResetPending;
    kept.nDuration = pms->nDuration;
    kept.qwNextReset = pms->qwNextReset;
    kept.bActive = pms->bActive;
    kept.bClearOnReset = pms->bClearOnReset;
    kept.nCallsPerFrame = pms->nCallsPerFrame;
    kept.Random = pms->Random;
    for (i32 i = 0; i < pms->nControls; i++)
        kept.controls.push_back(KeepControl(pms->apControl[i]));
    return kept;
}

KeptPlane KeepPlane(const PlaneState *pps)
{
    KeptPlane kept = {pps->Info.bIndexed, pps->bPaused, pps->Info.nColors, {}, {}};
    kept.aColor.assign(pps->Info.lpColorTable, pps->Info.lpColorTable + PALETTE_COLORS_MAX);
    for (u32 iList = 0; iList < MODULEINDEX_MIXER; iList++)
        for (i32 i = 0; i < pps->anModules[iList]; i++)
            kept.slots.push_back(KeepSlot(pps->apModule[iList][i], iList));
    return kept;
}

// The values go in twice: before the module first looks at them, and after it may have written some.
ModuleSlot *BringBackSlot(PresetState *lppsi, i32 iPlane, i32 iModule, const KeptSlot &kept)
{
    ASSERT_MAIN_THREAD();
    SetModuleTick(TickCount());
    const u32 dwShader = kept.sShader.empty() ? 0 : FindShaderByName(kept.sShader);
    ModuleSlot *pms = AddModule(lppsi, kept.sDll, iPlane, kept.iList, dwShader, 0);
    if (!pms)
        return nullptr;
    PutBackControls(pms, kept);
    RunSlotInPlace(lppsi, pms->ppsOwner, kept.iList, pms, MODSTEPS_BRINGBACK);
    PutBackControls(pms, kept);
    PutBackSettings(pms, kept);
    MoveSlotTo(lppsi, ListPlace(iPlane, kept.iList), iModule);
    return pms;
}

PlaneState *BringBackPlane(PresetState *lppsi, i32 iPlane, const KeptPlane &kept)
{
    ASSERT_MAIN_THREAD();
    PlaneState *pps = AddPlane(lppsi, kept.bIndexed, 0);
    if (!pps)
        return nullptr;
    i32 iNow = lppsi->nPlanes - 1;
    PutBackColors(&pps->Info, kept);
    if (!BringBackSlots(lppsi, iNow, kept.slots)) {
        TakePlane(lppsi, pps);
        return nullptr;
    }
    PutBackColors(&pps->Info, kept);
    pps->bPaused = kept.bPaused;
    for (; iNow > iPlane; iNow--)
        SwapPlanes(lppsi, iNow, iNow - 1);
    return pps;
}
