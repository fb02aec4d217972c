// PresetTree_bench.cpp -- the tree of a full preset: building it, painting a window of it, asking it for changes
#include "bench/BenchReport.h"

#include "controls/ControlManager.h"
#include "editing/TreeColors.h"
#include "editing/TreeTexts.h"
#include "platform/Text.h"

#include <algorithm>
#include <memory>
#include <string>

namespace {

constexpr unsigned ROUNDS = 31;
constexpr unsigned CALLS = 4;
constexpr i32 MODULES = 8; // in each list
constexpr u32 CONTROLS = 20;
constexpr size_t VISIBLE_ROWS = 60;

// Records as a loaded preset has them, each with memory of its own, but without module libraries and bitmaps.
struct FullPreset {
    FullPreset()
    {
        CopyText(md.szName, u"Some Module");
        for (PlaneState *&pps : Preset.psPlane) {
            pps = &asPlane[Preset.nPlanes++];
            pps->lppsi = &Preset;
            for (u32 dwList = 0; dwList < MODULEINDEX_MIXER; dwList++)
                while (pps->anModules[dwList] < MODULES)
                    pps->apModule[dwList][pps->anModules[dwList]++] = MakeSlot(pps);
        }
    }
    ~FullPreset()
    {
        for (const auto &pms : apSlot)
            std::for_each_n(pms->apControl, pms->nControls, FreeControl);
    }

    ModuleSlot *MakeSlot(PlaneState *pps)
    {
        apSlot.push_back(std::make_unique<ModuleSlot>());
        ModuleSlot *pms = apSlot.back().get();
        pms->pmd = &md;
        pms->ppsOwner = pps;
        while (pms->nControls < static_cast<i32>(CONTROLS)) {
            ControlRecord *pctl = pms->apControl[pms->nControls] = NewControl();
            NameControl(pctl, static_cast<u32>(pms->nControls++));
            pctl->Base.dwType = CONTROLTYPE_FLOAT;
            pctl->Float = {0, 1, 0, 1, 0, 1, 0.5f, 0.5f, 0};
        }
        return pms;
    }
    // Half of them in two groups, as modules have them.
    static void NameControl(ControlRecord *pctl, u32 iControl)
    {
        std::u16string name = iControl % 2 ? std::u16string() : iControl % 4 ? u"Colours" : u"Movement";
        name += name.empty() ? u"" : std::u16string(1, u'\0');
        name += u"Control number " + FromUtf8(std::to_string(iControl));
        std::copy(name.begin(), name.end(), pctl->Base.szName);
    }

    ModuleDescription md = {};
    PresetState Preset = {};
    PlaneState asPlane[PLANES_MAX] = {};
    std::vector<std::unique_ptr<ModuleSlot>> apSlot;
};

// Microseconds of processor time of a call of each, in turn, round after round, after one round of warm-up.
template <typename... Fns> std::array<std::vector<double>, sizeof...(Fns)> CpuInterleaved(unsigned nCalls, Fns &&...fns)
{
    std::array<std::vector<double>, sizeof...(Fns)> aafMicros;
    for (unsigned iRound = 0; iRound <= ROUNDS; iRound++) {
        size_t iFn = 0;
        const auto record = [&](double fMicros) {
            if (iRound > 0)
                aafMicros[iFn].push_back(fMicros);
            iFn++;
        };
        (record(CpuOfCalls(nCalls, fns)), ...);
    }
    return aafMicros;
}

// The least that a tree has to be: texts, owned by their parents.
struct PlainNode {
    std::u16string sText;
    std::vector<std::unique_ptr<PlainNode>> apChild;
};

std::unique_ptr<PlainNode> CopyTexts(const TreeNode *pNode)
{
    auto pCopy = std::make_unique<PlainNode>();
    pCopy->sText = pNode->sText;
    for (const TreeNode *pChild : pNode->apChild)
        pCopy->apChild.push_back(CopyTexts(pChild));
    return pCopy;
}

void CollectNodes(TreeNode *pNode, std::vector<TreeNode *> *pNodes)
{
    pNodes->push_back(pNode);
    for (TreeNode *pChild : pNode->apChild)
        CollectNodes(pChild, pNodes);
}

bool ReportBuild(FullPreset *pFull)
{
    PresetTree tree, copied;
    BuildPresetTree(copied, &pFull->Preset);
    std::vector<TreeNode *> nodes;
    CollectNodes(copied.pRoot, &nodes);
    ReportFigure("PresetTree/nodes of a full preset", static_cast<double>(nodes.size()), 0, "nodes", BenchGoal::NONE);
    const auto build = [&] { BuildPresetTree(tree, &pFull->Preset); };
    const auto plain = [&] { KeepResult(*CopyTexts(copied.pRoot)); };
    const auto [afBuild, afPlain] = CpuInterleaved(CALLS, build, plain);
    const bool bMet =
        ReportFigure("PresetTree/build, the old one given up", Median(afBuild) / 1000, 3, "ms", BenchGoal::AT_MOST);
    ReportFigure("PresetTree/build over a tree of texts alone", MedianRatio(afBuild, afPlain), 0, "x", BenchGoal::NONE);
    return bMet;
}

// A turn as a window has it: what is in view is asked for its colours once.
bool ReportPaint(FullPreset *pFull)
{
    PresetTree tree;
    BuildPresetTree(tree, &pFull->Preset);
    std::vector<TreeNode *> nodes, rows;
    CollectNodes(tree.pRoot, &nodes);
    for (TreeNode *pNode : nodes)
        if (IsControlType(pNode->Info.dwType) && rows.size() < VISIBLE_ROWS)
            rows.push_back(pNode);
    const auto paint = [&] {
        BeginPaintTurn(tree);
        for (TreeNode *pNode : rows)
            KeepResult(ColorTreeNode(tree, pNode, false));
    };
    const auto first = [&] {
        BeginPaintTurn(tree);
        KeepResult(BranchHasChanges(tree, tree.pRoot));
    };
    const auto again = [&] { KeepResult(BranchHasChanges(tree, tree.pRoot)); };
    const auto [afPaint, afFirst, afAgain] = CpuInterleaved(100, paint, first, again);
    bool bMet = ReportFigure("PresetTree/colours of 60 rows", Median(afPaint), 50, "us", BenchGoal::AT_MOST);
    bMet &= ReportFigure("PresetTree/changes of the whole tree, first", Median(afFirst), 500, "us", BenchGoal::AT_MOST);
    bMet &= ReportFigure("PresetTree/changes of the whole tree, again", Median(afAgain), 1, "us", BenchGoal::AT_MOST);
    return bMet;
}

} // namespace

int main()
{
    const auto pFull = std::make_unique<FullPreset>();
    const bool bBuild = ReportBuild(pFull.get());
    const bool bPaint = ReportPaint(pFull.get());
    return bBuild && bPaint ? 0 : 1;
}
