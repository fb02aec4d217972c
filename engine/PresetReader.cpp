// PresetReader.cpp -- reads a preset, its planes and its modules
#include "engine/PresetFile.h"

#include "controls/ControlManager.h"
#include "engine/DrawPipeline.h"
#include "engine/MixRules.h"
#include "engine/ModuleSlots.h"
#include "engine/PresetManager.h"
#include "modules/ModuleRegistry.h"
#include "modules/ShaderList.h"
#include "platform/Assert.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/Folders.h"

#include <algorithm>

namespace {

constexpr i32 CALLS_PER_FRAME_MAX = 32; // and as many frames a call at the other end

// A count in the document, cut to what there is room for; absent: 0.
u32 ReadCount(XmlContext *pxc, std::u16string_view tag, u32 nMax, PresetReport *pReport)
{
    i32 nCount = 0;
    XmlReadInt(pxc, tag, &nCount);
    if (nCount > static_cast<i32>(nMax))
        AddToReport(pReport, ToUtf8(tag) + " is " + std::to_string(nCount) + ": only the first " +
                                 std::to_string(nMax) + " are read");
    return static_cast<u32>(std::clamp(nCount, 0, static_cast<i32>(nMax)));
}

// Modules

std::string ModulePlace(i32 iPlane, u32 iModule, u32 dwModuleType)
{
    const std::string sModule = ToUtf8(NumberedTag(ModuleKindWord(dwModuleType), iModule));
    return iPlane < 0 ? sModule : "plane " + std::to_string(iPlane + 1) + ", " + sModule;
}

std::string WhyNotAdded(std::u16string_view dll)
{
    const ModuleRecord *pmr = FindModuleRecord(dll);
    if (dll.empty())
        return "no module is named";
    if (!pmr)
        return "the module " + ToUtf8(dll) + " is not installed";
    if (pmr->md.bUnavailable)
        return "the module " + ToUtf8(dll) + " needs OpenGL, which does not work here";
    return "the module " + ToUtf8(dll) + " cannot be added here";
}

u32 ReadShaderNumber(XmlContext *pxc, std::u16string_view dll, const std::string &sPlace, PresetReport *pReport)
{
    NameText szShader = u"";
    if (!ContainsNoCase(dll, u"SHADER") || !XmlReadString(pxc, u"ShaderFile", szShader))
        return 0;
    const u32 dwShader = FindShaderByName(szShader);
    if (!dwShader && szShader[0])
        AddToReport(pReport, sPlace + ": there is no shader " + ToUtf8(szShader));
    return dwShader;
}

// Colour modules work on the palette of a plane; the mixed picture has none.
bool ModuleFitsList(std::u16string_view dll, u32 dwModuleType)
{
    const ModuleRecord *pmr = FindModuleRecord(dll);
    return dwModuleType != MODULEINDEX_NUMINDICIES || !pmr || pmr->md.dwClass != MODULECLASS_COLOR;
}

void ReadSlotSettings(XmlContext *pxc, ModuleSlot *pms)
{
    i32 nDuration = 0;
    pms->qwNextReset = 0;
    XmlReadInt(pxc, u"ClearOnReset", &pms->bClearOnReset);
    XmlReadInt(pxc, u"CallsPerFrame", &pms->nCallsPerFrame);
    pms->nCallsPerFrame = std::clamp(pms->nCallsPerFrame, -CALLS_PER_FRAME_MAX, CALLS_PER_FRAME_MAX);
    if (XmlReadInt(pxc, u"Duration", &nDuration))
        pms->nDuration = static_cast<u32>(std::clamp(nDuration, 1, static_cast<i32>(DURATION_NEVER)));
}

void ReportUnknownControl(XmlContext *pxc, const std::string &sPlace, u32 n, PresetReport *pReport)
{
    NameText szName = u"";
    if (!pReport || !XmlEnterTag(pxc, NumberedTag(u"Control", n)))
        return;
    XmlReadString(pxc, u"Name", szName);
    XmlLeaveTag(pxc);
    AddToReport(pReport, sPlace + ": the module has no control " + ToUtf8(szName));
}

// The numbers of the stored controls may have gaps, and say nothing about the module's own order.
void ReadControls(XmlContext *pxc, ModuleSlot *pms, const std::string &sPlace, PresetReport *pReport)
{
    i32 nStored = CONTROLS_MAX;
    XmlReadInt(pxc, u"NumControls", &nStored);
    i32 nRead = 0;
    for (u32 n = 0; n < CONTROLS_MAX && nRead < nStored; n++) {
        ControlRecord *pctl = FindStoredControl(pxc, pms, n);
        if (!pctl)
            ReportUnknownControl(pxc, sPlace, n, pReport);
        else if (XmlEnterTag(pxc, NumberedTag(u"Control", n)))
            nRead += ReadControl(pxc, pctl, 1, pReport) != 0;
    }
}

ModuleSlot *ReadModuleBody(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 iModule, u32 dwModuleType,
                           PresetReport *pReport)
{
    const std::string sPlace = pReport ? ModulePlace(iPlane, iModule, dwModuleType) : std::string();
    NameText szDll = u"";
    XmlReadString(pxc, u"ModuleDLL", szDll);
    const u32 dwShader = ReadShaderNumber(pxc, szDll, sPlace, pReport);
    ModuleSlot *pms =
        ModuleFitsList(szDll, dwModuleType) ? AddModule(lppsi, szDll, iPlane, dwModuleType, dwShader, 0) : nullptr;
    if (!pms) {
        AddToReport(pReport, sPlace + ": " + WhyNotAdded(szDll));
        return nullptr;
    }
    ReadSlotSettings(pxc, pms);
    ReadControls(pxc, pms, sPlace, pReport);
    return pms;
}

void ReadModuleList(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 dwModuleType, PresetReport *pReport)
{
    const std::u16string tag = std::u16string(u"Num") + ModuleKindWord(dwModuleType);
    const u32 nModules = ReadCount(pxc, tag, LIST_MODULES_MAX, pReport);
    for (u32 i = 0; i < nModules; i++)
        ReadModule(pxc, lppsi, iPlane, i, dwModuleType, pReport);
}

// Planes

bool EnterPlane(XmlContext *pxc, u32 iPlane)
{
    if (iPlane != FIRST_STORED_PLANE)
        return XmlEnterTag(pxc, NumberedTag(u"Plane", iPlane));
    for (u32 i = 0; i < PLANES_MAX; i++)
        if (XmlEnterTag(pxc, NumberedTag(u"Plane", i)))
            return true;
    return false;
}

PlaneState *ReadPlaneBody(XmlContext *pxc, PresetState *lppsi, PresetReport *pReport)
{
    u32 bIndexed = 0;
    XmlReadInt(pxc, u"Indexed", &bIndexed);
    const i32 iPlane = lppsi->nPlanes;
    PlaneState *pps = AddPlane(lppsi, bIndexed, 0);
    for (u32 i = 0; pps && i < MODULEINDEX_MIXER; i++)
        ReadModuleList(pxc, lppsi, iPlane, i, pReport);
    return pps;
}

// The mixer

void ReadMixRule(XmlContext *pxc, MixRule *pmr, u32 iRule, PresetReport *pReport)
{
    if (!XmlEnterTag(pxc, NumberedTag(u"MixOp", iRule)))
        return;
    XmlReadInt(pxc, u"MixOp", &pmr->MixOp);
    XmlReadInt(pxc, u"SrcIdx1", &pmr->SrcIdx1);
    XmlReadInt(pxc, u"SrcIdx2", &pmr->SrcIdx2);
    XmlReadInt(pxc, u"AplhaIdx", &pmr->AplhaIdx);
    if (pmr->MixOp == MIXOP_BLEND && XmlEnterTag(pxc, u"BlendWeight"))
        ReadControl(pxc, &pmr->BlendWeight, 1, pReport);
    XmlLeaveTag(pxc);
}

// A rule that the document counts but does not hold stays a rule of zeros: later ones are known by their number.
void ReadMixRules(XmlContext *pxc, PresetState *lppsi, PresetReport *pReport)
{
    const u32 nRules = ReadCount(pxc, u"NumMixerOps", MIX_RULES_MAX, pReport);
    for (u32 i = 0; i < nRules; i++) {
        MixRule *pmr = AddMixRule(lppsi);
        if (pmr)
            ReadMixRule(pxc, pmr, i, pReport);
        else
            AddToReport(pReport, "mixer rule " + std::to_string(i + 1) + ": there is no room for it");
    }
    if (lppsi->nMixRules == 0)
        AddMixRule(lppsi);
}

void ReadPostProcessing(XmlContext *pxc, PresetState *lppsi, PresetReport *pReport)
{
    if (!XmlEnterTag(pxc, u"PostProc"))
        return;
    ReadModuleList(pxc, lppsi, -1, MODULEINDEX_NUMINDICIES, pReport);
    XmlLeaveTag(pxc);
}

// A file without a header line has its outer tag in the line that is skipped: where its closing tag stands alone, the
// document itself is the preset.
bool EnterPreset(XmlContext *pxc, PresetReport *pReport)
{
    std::u16string_view behind;
    if (!XmlEnterTag(pxc, u"Preset"))
        return XmlReadText(pxc, u"/Preset", &behind);
    if (pxc->apStart[pxc->nDepth] == pxc->apEnd[pxc->nDepth])
        AddToReport(pReport, "the whole file: it is empty or cut off, nothing stands between <Preset> and </Preset>");
    return true;
}

PresetState *ReadPresetBody(XmlContext *pxc, PresetReport *pReport)
{
    PresetState *lppsi = AllocatePresetState();
    const u32 nPlanes = ReadCount(pxc, u"NumPlanes", PLANES_MAX, pReport);
    for (u32 i = 0; i < nPlanes; i++)
        if (!ReadPlane(pxc, lppsi, i, pReport))
            AddToReport(pReport, "plane " + std::to_string(i + 1) + ": the file counts it and does not have it");
    ReadMixRules(pxc, lppsi, pReport);
    SetUpPostProcessing(lppsi);
    ReadPostProcessing(pxc, lppsi, pReport);
    EvaluateRuleWeights(lppsi, true); // the modules have had theirs, each as it was read
    return lppsi;
}

// Takes over the context. Null for a document that is no preset.
PresetState *ReadPresetDocument(XmlContext *pxc, PresetReport *pReport)
{
    if (!pxc)
        return nullptr;
    PresetState *lppsi = nullptr;
    if (EnterPreset(pxc, pReport))
        lppsi = ReadPresetBody(pxc, pReport);
    else if (pReport)
        pReport->sFailure = "no preset stands in it";
    XmlClose(pxc);
    return lppsi;
}

} // namespace

ControlRecord *FindStoredControl(XmlContext *pxc, const ModuleSlot *pms, u32 n)
{
    NameText szStored = u"", szName;
    if (!XmlEnterTag(pxc, NumberedTag(u"Control", n)))
        return nullptr;
    const u32 bNamed = XmlReadString(pxc, u"Name", szStored);
    XmlLeaveTag(pxc);
    for (i32 i = 0; bNamed && i < pms->nControls; i++) {
        ControlDottedName(pms->apControl[i], szName);
        if (EqualNoCase(szStored, szName))
            return pms->apControl[i];
    }
    return nullptr;
}

ModuleSlot *ReadModule(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 iModule, u32 dwModuleType,
                       PresetReport *pReport)
{
    VD_ASSERT(dwModuleType <= MODULEINDEX_NUMINDICIES);
    if (!XmlEnterTag(pxc, NumberedTag(ModuleKindWord(dwModuleType), iModule))) {
        AddToReport(pReport, ModulePlace(iPlane, iModule, dwModuleType) + ": the file counts it and does not have it");
        return nullptr;
    }
    ModuleSlot *pms = ReadEnteredModule(pxc, lppsi, iPlane, iModule, dwModuleType, pReport);
    XmlLeaveTag(pxc);
    return pms;
}

ModuleSlot *ReadEnteredModule(XmlContext *pxc, PresetState *lppsi, i32 iPlane, u32 iModule, u32 dwModuleType,
                              PresetReport *pReport)
{
    VD_ASSERT(dwModuleType <= MODULEINDEX_NUMINDICIES);
    ModuleSlot *pms = ReadModuleBody(pxc, lppsi, iPlane, iModule, dwModuleType, pReport);
    if (!pms)
        return nullptr;
    SetModuleTick(TickCount());
    RunSlotInPlace(lppsi, pms->ppsOwner, dwModuleType, pms, MODSTEPS_BRINGUP);
    return pms;
}

PlaneState *ReadPlane(XmlContext *pxc, PresetState *lppsi, u32 iPlane, PresetReport *pReport)
{
    if (!EnterPlane(pxc, iPlane))
        return nullptr;
    PlaneState *pps = ReadPlaneBody(pxc, lppsi, pReport);
    XmlLeaveTag(pxc);
    return pps;
}

PresetState *LoadPresetFile(std::u16string_view name, PresetReport *pReport)
{
    ASSERT_MAIN_THREAD();
    if (name.empty())
        return nullptr;
    PresetReport report = {};
    if (!pReport)
        pReport = &report;
    XmlContext *pxc = XmlOpenFile(name, &pReport->sFailure);
    if (!pxc)
        pxc = XmlOpenFile(JoinPath(FolderPath(PATH_PRESETS), name), &pReport->sFailure);
    if (!pxc)
        return nullptr;
    pReport->sFailure.clear();
    PresetState *lppsi = ReadPresetDocument(pxc, pReport);
    if (!lppsi)
        pReport->sFailure.insert(0, ToUtf8(name) + ": ");
    return lppsi;
}

PresetState *MakeStoredPreset(const void *pvArgument)
{
    const auto *pRequest = static_cast<const PresetRequest *>(pvArgument);
    return LoadPresetFile(pRequest->name, pRequest->pReport);
}

PresetState *LoadPresetText(std::string_view bytes, PresetReport *pReport)
{
    return ReadPresetDocument(XmlOpenBytes(bytes), pReport);
}
