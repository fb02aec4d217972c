// PresetSnapshot.h -- every field of every record of a preset as a line of text, written out one by one
//
// Left out: addresses (bitmaps, contexts, windows, tables, owners, entry points, pvContext), what a module keeps to
// itself (pixels, PaletteInfo), what each call renews in a plane's head (dwTimeScale, lpszShaderPath), dwBusy.
#pragma once

#include "controls/HostControl.h"
#include "platform/Text.h"
#include "state/PresetState.h"

#include <bit>
#include <string>
#include <vector>

class PresetSnapshot {
  public:
    explicit PresetSnapshot(const PresetState *lppsi)
    {
        Note("nPlanes", lppsi->nPlanes);
        for (i32 i = 0; i < PLANES_MAX; i++)
            if (Begin("plane", i) && Note("there", lppsi->psPlane[i] != nullptr))
                NotePlane(lppsi, lppsi->psPlane[i]);
        Begin("rules", 0);
        Note("nMixRules", lppsi->nMixRules);
        for (u32 i = 0; i < MIX_RULE_ENTRIES; i++)
            NoteRule(lppsi->asMixRule[i], static_cast<i32>(i));
        Begin("post", 0);
        Note("nPostProc", lppsi->nPostProc);
        NoteList(lppsi->apPostProc, "post");
        Note("post colours", lppsi->piPostProc.nColors);
    }

    // The first difference, or nothing.
    static std::string Difference(const PresetSnapshot &a, const PresetSnapshot &b)
    {
        for (size_t i = 0; i < std::max(a.asLine.size(), b.asLine.size()); i++) {
            const std::string sA = i < a.asLine.size() ? a.asLine[i] : "(end)";
            const std::string sB = i < b.asLine.size() ? b.asLine[i] : "(end)";
            if (sA != sB)
                return sA + " is now " + sB;
        }
        return {};
    }

  private:
    bool Begin(const char *psz, i32 i)
    {
        sWhere = std::string(psz) + std::to_string(i);
        return true;
    }
    template <typename T> T Note(const char *pszName, T value)
    {
        asLine.push_back(sWhere + " " + pszName + "=" + std::to_string(value));
        return value;
    }
    void Note(const char *pszName, f32 fValue)
    {
        Note(pszName, std::bit_cast<u32>(fValue));
    }
    void NoteText(const char *pszName, const char16_t *psz)
    {
        asLine.push_back(sWhere + " " + pszName + "=" + (psz ? ToUtf8(psz) : "(null)"));
    }

    void NotePlane(const PresetState *lppsi, const PlaneState *pps)
    {
        const PlaneInfo &Info = pps->Info;
        const std::string sPlane = sWhere;
        Note("owner is the preset", pps->lppsi == lppsi);
        Note("nColors", Info.nColors);
        Note("bIndexed", Info.bIndexed);
        Note("nWidth", Info.nWidth);
        Note("nHeight", Info.nHeight);
        Note("dwReserved", Info.dwReserved);
        for (u32 i = 0; i < PALETTE_COLORS_MAX; i += 37)
            Note("color", Info.lpColorTable[i]);
        Note("bPaused", pps->bPaused);
        for (u32 i = 0; i < MODULEINDEX_NUMINDICIES; i++) {
            sWhere = sPlane + " list" + std::to_string(i);
            Note("anModules", pps->anModules[i]);
            NoteList(pps->apModule[i], sWhere.c_str());
        }
    }

    template <size_t N> void NoteList(ModuleSlot *const (&apSlot)[N], const std::string &sList)
    {
        for (size_t i = 0; i < N; i++)
            if (apSlot[i]) {
                sWhere = sList + " module" + std::to_string(i);
                NoteSlot(apSlot[i]);
            }
    }

    void NoteSlot(const ModuleSlot *pms)
    {
        const std::string sSlot = sWhere;
        NoteText("dll", pms->pszDll);
        NoteText("shader", pms->lpszShader);
        Note("bResetPending", pms->bResetPending);
        Note("nDuration", pms->nDuration);
        Note("qwNextReset", pms->qwNextReset);
        Note("bActive", pms->bActive);
        Note("bClearOnReset", pms->bClearOnReset);
        Note("nCallsPerFrame", pms->nCallsPerFrame);
        Note("Random", pms->Random.qwState);
        Note("nControls", pms->nControls);
        for (i32 i = 0; i < CONTROLS_MAX; i++)
            if (pms->apControl[i]) {
                sWhere = sSlot + " control" + std::to_string(i);
                Note("owner is the slot", pms->apControl[i]->Base.pOwner == pms);
                NoteControl(*pms->apControl[i]);
                NoteHostPart(*HostPart(pms->apControl[i]));
            }
    }

    void NoteRule(const MixRule &rule, i32 i)
    {
        Begin("rule", i);
        Note("SrcIdx1", rule.SrcIdx1);
        Note("SrcIdx2", rule.SrcIdx2);
        Note("AplhaIdx", rule.AplhaIdx);
        Note("MixOp", rule.MixOp);
        Note("has an image", rule.hbmRule != nullptr);
        NoteControl(rule.BlendWeight);
    }

    void NoteControl(const ControlRecord &ctl)
    {
        const ControlBase &Base = ctl.Base;
        Note("dwType", Base.dwType);
        Note("dwReserved1", Base.dwReserved1);
        Note("dwReserved2", Base.dwReserved2);
        for (u32 i = 0; i < CONTROL_TEXT; i++)
            if (Base.szName[i])
                Note("szName", static_cast<u32>(Base.szName[i]) + i * 0x10000);
        NoteText("szDescription", Base.szDescription);
        Note("dwSourceMask", Base.dwSourceMask);
        Note("dwDefaultSource", Base.dwDefaultSource);
        Note("dwSource", Base.dwSource);
        Note("nDefaultWavePeriod", Base.nDefaultWavePeriod);
        Note("nWavePeriod", Base.nWavePeriod);
        Note("bDefaultRandomPhase", Base.bDefaultRandomPhase);
        Note("bRandomPhase", Base.bRandomPhase);
        Note("fDefaultWavePhase", Base.fDefaultWavePhase);
        Note("fWavePhase", Base.fWavePhase);
        Note("dwDefaultWaveType", Base.dwDefaultWaveType);
        Note("dwWaveType", Base.dwWaveType);
        Note("nDefaultSamples", Base.nDefaultSamples);
        Note("nSamples", Base.nSamples);
        Note("nDefaultNoisePeriod", Base.nDefaultNoisePeriod);
        Note("nNoisePeriod", Base.nNoisePeriod);
        Note("qwNextNoiseTick", Base.qwNextNoiseTick);
        Note("fLastRandom", Base.fLastRandom);
        Note("dwReserved3", Base.dwReserved3);
        Note("bHasDependents", Base.bHasDependents);
        Note("dwReserved4", Base.dwReserved4);
        Note("nDependValue", Base.nDependValue);
        Note("fDependValue", Base.fDependValue);
        Note("dwDependOp", Base.dwDependOp);
        Note("dwReserved5", Base.dwReserved5);
        NoteValue(ctl);
    }

    void NoteValue(const ControlRecord &ctl)
    {
        if (ctl.Base.dwType == CONTROLTYPE_INTEGER) {
            const ControlInteger &Int = ctl.Integer;
            for (i32 n : {Int.nAbsMin, Int.nAbsMax, Int.nDefaultMin, Int.nDefaultMax, Int.nMin, Int.nMax, Int.nValue,
                          Int.nDefaultValue})
                Note("integer", n);
            for (u32 b : {Int.bOnlyEven, Int.bOnlyOdd, Int.bMinMax})
                Note("even, odd, minmax", b);
        } else if (ctl.Base.dwType == CONTROLTYPE_FLOAT) {
            const ControlFloat &Float = ctl.Float;
            for (f32 f : {Float.fAbsMin, Float.fAbsMax, Float.fDefaultMin, Float.fDefaultMax, Float.fMin, Float.fMax,
                          Float.fValue, Float.fDefaultValue})
                Note("float", f);
            Note("minmax", Float.bMinMax);
        } else if (ctl.Base.dwType == CONTROLTYPE_ITEMSELECT) {
            const ControlItemSelect &Items = ctl.ItemSelect;
            for (u32 n : {Items.nItems, Items.nDefaultItemValue, Items.nCurrentItemValue, Items.bOwnsItems})
                Note("item", n);
        } else if (ctl.Base.dwType == CONTROLTYPE_BOOLEAN) {
            Note("fThreshold", ctl.Boolean.fThreshold);
            Note("fDefaultThreshold", ctl.Boolean.fDefaultThreshold);
            Note("bDefaultState", ctl.Boolean.bDefaultState);
            Note("bState", ctl.Boolean.bState);
        } else if (ctl.Base.dwType == CONTROLTYPE_FILESELECT) {
            NoteFiles(ctl.FileSelect);
        } else if (ctl.Base.dwType == CONTROLTYPE_TILE) {
            for (u32 n : {ctl.Tile.nXTiles, ctl.Tile.nYTiles, ctl.Tile.nXLimit, ctl.Tile.nYLimit})
                Note("tiles", n);
            for (u32 i = 0; i < CONTROL_TILES_MAX * CONTROL_TILES_MAX; i++)
                Note("tile", ctl.Tile.pTileMask[i]);
        }
    }

    void NoteFiles(const ControlFileSelect &Files)
    {
        NoteText("pszFileList", Files.pszFileList);
        NoteText("pszFileType", Files.pszFileType);
        NoteText("pszEditor", Files.pszEditor);
        Note("nCurrentLine", Files.nCurrentLine);
        Note("nLines", Files.nLines);
        Note("bShuffle", Files.bShuffle);
        NoteText("szCurrentFile", Files.szCurrentFile);
        const bool bCounted = Files.pszFileList && Files.nLines != ALL_ONES;
        for (u32 i = 0; bCounted && i < Files.nLines; i++)
            Note("pLineOffsets", Files.pLineOffsets[i]);
    }

    void NoteHostPart(const HostControl &hc)
    {
        NoteText("host's list", hc.pszFileList);
        Note("host's lines", hc.nLines);
        Note("record shows the host's list",
             hc.Record.Base.dwType != CONTROLTYPE_FILESELECT || hc.Record.FileSelect.pszFileList == hc.pszFileList);
        Note("host's type", hc.dwType);
        Note("host's items", hc.nItems);
        Note("host's ownership", hc.bOwnsItems);
        Note("built", hc.bBuilt);
    }

    std::string sWhere;
    std::vector<std::string> asLine;
};
