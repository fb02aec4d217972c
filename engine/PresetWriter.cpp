// PresetWriter.cpp -- writes a preset, its planes and its modules
#include "engine/PresetFile.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr u32 DEFAULT_DURATION = 16;

constexpr const char16_t *apszKindWord[] = {u"CInterpolator", u"CGenerator", u"CEffect", u"DFull",
                                            u"DPainter",      u"DEffect",    u"OFull",   u"OPainter",
                                            u"OEffect",       u"Mixer",      u"PEffect"};
static_assert(std::size(apszKindWord) == MODULEINDEX_NUMINDICIES + 1);

void WriteModuleList(XmlContext *pxc, ModuleSlot *const *apSlot, i32 nCount, u32 dwModuleType)
{
    XmlWriteInt(pxc, std::u16string(u"Num") + ModuleKindWord(dwModuleType), nCount);
    for (i32 i = 0; i < nCount; i++)
        WriteModule(pxc, apSlot[i], dwModuleType, static_cast<u32>(i));
}

void WriteSlotSettings(XmlContext *pxc, const ModuleSlot *pms)
{
    if (pms->bClearOnReset != 0)
        XmlWriteInt(pxc, u"ClearOnReset", pms->bClearOnReset);
    if (pms->nCallsPerFrame != 1)
        XmlWriteInt(pxc, u"CallsPerFrame", pms->nCallsPerFrame);
    if (pms->nDuration != DEFAULT_DURATION)
        XmlWriteInt(pxc, u"Duration", pms->nDuration);
}

void WriteChangedControls(XmlContext *pxc, const ModuleSlot *pms)
{
    ControlRecord *const *ppctlEnd = pms->apControl + pms->nControls;
    XmlWriteInt(pxc, u"NumControls", static_cast<i32>(std::count_if(pms->apControl, ppctlEnd, ControlIsStored)));
    u32 nWritten = 0;
    for (ControlRecord *const *ppctl = pms->apControl; ppctl != ppctlEnd; ppctl++) {
        if (!ControlIsStored(*ppctl))
            continue;
        XmlBeginTag(pxc, NumberedTag(u"Control", nWritten++));
        WriteControl(pxc, *ppctl);
        XmlEndTag(pxc);
    }
}

void WriteMixRule(XmlContext *pxc, MixRule *pmr, u32 iRule)
{
    XmlBeginTag(pxc, NumberedTag(u"MixOp", iRule));
    XmlWriteInt(pxc, u"MixOp", pmr->MixOp);
    XmlWriteInt(pxc, u"SrcIdx1", pmr->SrcIdx1);
    XmlWriteInt(pxc, u"SrcIdx2", pmr->SrcIdx2);
    XmlWriteInt(pxc, u"AplhaIdx", pmr->AplhaIdx);
    if (pmr->MixOp == MIXOP_BLEND) {
        XmlBeginTag(pxc, u"BlendWeight");
        WriteControl(pxc, &pmr->BlendWeight);
        XmlEndTag(pxc);
    }
    XmlEndTag(pxc);
}

void WritePostProcessing(XmlContext *pxc, const PresetState *lppsi)
{
    if (lppsi->nPostProc == 0)
        return;
    XmlBeginTag(pxc, u"PostProc");
    WriteModuleList(pxc, lppsi->apPostProc, lppsi->nPostProc, MODULEINDEX_NUMINDICIES);
    XmlEndTag(pxc);
}

} // namespace

const char16_t *ModuleKindWord(u32 dwModuleType)
{
    return dwModuleType < std::size(apszKindWord) ? apszKindWord[dwModuleType] : nullptr;
}

void WriteModule(XmlContext *pxc, const ModuleSlot *pms, u32 dwModuleType, u32 iModule)
{
    XmlBeginTag(pxc, NumberedTag(ModuleKindWord(dwModuleType), iModule));
    XmlWriteString(pxc, u"ModuleDLL", pms->pszDll);
    if (ContainsNoCase({pms->pmd->szName, TextLength(pms->pmd->szName, CONTROL_TEXT)}, u"GLSL SHADER"))
        XmlWriteString(pxc, u"ShaderFile", pms->lpszShader ? pms->lpszShader : u"");
    WriteSlotSettings(pxc, pms);
    WriteChangedControls(pxc, pms);
    XmlEndTag(pxc);
}

void WritePlane(XmlContext *pxc, const PlaneState *pps, u32 iPlane)
{
    XmlBeginTag(pxc, NumberedTag(u"Plane", iPlane));
    XmlWriteInt(pxc, u"Indexed", pps->Info.bIndexed ? 1 : 0);
    for (u32 i = 0; i < MODULEINDEX_MIXER; i++)
        if (pps->anModules[i] > 0)
            WriteModuleList(pxc, pps->apModule[i], pps->anModules[i], i);
    XmlEndTag(pxc);
}

void WritePreset(XmlContext *pxc, PresetState *lppsi)
{
    XmlBeginTag(pxc, u"Preset");
    XmlWriteInt(pxc, u"NumPlanes", lppsi->nPlanes);
    for (i32 i = 0; i < lppsi->nPlanes; i++)
        WritePlane(pxc, lppsi->psPlane[i], static_cast<u32>(i));
    XmlWriteInt(pxc, u"NumMixerOps", lppsi->nMixRules);
    for (u32 i = 0; i < lppsi->nMixRules; i++)
        WriteMixRule(pxc, &lppsi->asMixRule[i], i);
    WritePostProcessing(pxc, lppsi);
    XmlEndTag(pxc);
}

u32 SavePresetFile(PresetState *lppsi, std::u16string_view path, std::string *psWhy)
{
    ASSERT_MAIN_THREAD();
    XmlContext *pxc = lppsi ? XmlCreate() : nullptr;
    if (!pxc)
        return 0;
    WritePreset(pxc, lppsi);
    const u32 bSaved = XmlSaveFile(pxc, path, psWhy);
    XmlClose(pxc);
    return bSaved;
}
