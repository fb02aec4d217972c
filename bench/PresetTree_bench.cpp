// PresetTree_bench.cpp -- the tree of a full preset: building it, painting a window of it, asking it for changes
#include "bench/BenchReport.h"
#include "bench/FullPreset.h"

#include "editing/TreeColors.h"
#include "editing/TreeTexts.h"

#include <memory>
#include <string>

namespace {

using bench::FullPreset;

constexpr unsigned ROUNDS = 31;
constexpr unsigned CALLS = 4;
constexpr size_t VISIBLE_ROWS = 60;

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
