// TreeColors_test.cpp -- the colours of the tree's rows, against the rule told byte by byte
#include "tests/TreeFixture.h"

#include "editing/TreeColors.h"
#include "toolkit/UIColors.h"

#include <array>
#include <random>

namespace {

using Bytes = std::array<u32, 3>;

Bytes Split(u32 dwColor)
{
    return {dwColor % 256, dwColor / 256 % 256, dwColor / 65536 % 256};
}

u32 Join(const Bytes &b)
{
    return b[0] + b[1] * 256 + b[2] * 65536;
}

Bytes Times(Bytes b, f32 fFactor)
{
    for (u32 &n : b) {
        const f32 f = static_cast<f32>(n) * fFactor;
        n = f >= 255 ? 255 : static_cast<u32>(f);
    }
    return b;
}

// The rule, told the long way.
TreeRowColors Oracle(const TreeRowState &state)
{
    const u32 adwLevel[] = {UICOLOR_TREE_ROOT_TEXT,   UICOLOR_TREE_PLANES_TEXT, UICOLOR_TREE_PLANE_TEXT,
                            UICOLOR_TREE_BRANCH_TEXT, UICOLOR_TREE_TYPE_TEXT,   UICOLOR_TREE_MODULE_TEXT,
                            UICOLOR_TREE_CONTROL_TEXT};
    Bytes text = Split(UIColorTable[adwLevel[state.nLevel > 6 ? 6 : state.nLevel]].dwColor);
    Bytes back = Split(UIColorTable[UICOLOR_TREE_BACKGROUND].dwColor);
    if (state.bSelected) {
        text = Times(text, 1.5f);
        back = Times({text[2], text[0], text[1]}, 0.6f);
    }
    const bool bControl = state.dwType == 24 || state.dwType == 25;
    if (bControl && state.bChanged)
        back = Times({text[1], text[2], text[0]}, 0.23f);
    if (bControl && !state.bActive) {
        text = Times(text, 0.5f);
        back = Times(back, 0.5f);
    }
    return {Join(text), Join(back)};
}

class TreeColorsTest : public TreeTest {
  protected:
    void SetUp() override
    {
        TreeTest::SetUp();
        SetDefaultUIColors();
    }
    void TearDown() override
    {
        SetDefaultUIColors();
        TreeTest::TearDown();
    }
};

void ExpectRow(const TreeRowState &state, u32 dwText, u32 dwBack)
{
    const TreeRowColors colors = ColorTreeRow(state);
    EXPECT_EQ(colors.dwText, dwText) << std::hex << colors.dwText;
    EXPECT_EQ(colors.dwBack, dwBack) << std::hex << colors.dwBack;
}

TEST_F(TreeColorsTest, TheColoursOfTheDefaultTableAreThese)
{
    ExpectRow({0, OBJECT_ROOT, false, true, false}, 0x8CFFFF, 0x000000);
    ExpectRow({0, OBJECT_ROOT, true, false, false}, 0x8CFFFF, 0x000000); // a root is neither changed nor inactive
    ExpectRow({6, OBJECT_CONTROL, false, true, false}, 0x28FF28, 0x000000);
    ExpectRow({9, OBJECT_CONTROL, false, true, true}, 0x3CFF3C, 0x992424);
    ExpectRow({6, OBJECT_CONTROL, true, true, false}, 0x28FF28, 0x09093A);
    ExpectRow({6, OBJECT_CONTROLTREE, true, false, false}, 0x147F14, 0x04041D);
    ExpectRow({6, OBJECT_CONTROL, false, false, false}, 0x147F14, 0x000000);
}

TEST_F(TreeColorsTest, EveryStateOfEveryKindFollowsTheRule)
{
    std::mt19937 random(3);
    for (u32 nRound = 0; nRound < 20; nRound++) {
        for (u32 iRow = UICOLOR_TREE_BACKGROUND; nRound && iRow <= UICOLOR_TREE_CONTROL_TEXT; iRow++)
            UIColorTable[iRow].dwColor = random() & 0xFFFFFF;
        for (u32 nLevel = 0; nLevel < 9; nLevel++)
            for (u32 dwType = 0; dwType < OBJECT_TYPES; dwType++)
                for (u32 dwBits = 0; dwBits < 8; dwBits++) {
                    const TreeRowState state = {nLevel, dwType, (dwBits & 1) != 0, (dwBits & 2) != 0,
                                                (dwBits & 4) != 0};
                    const TreeRowColors expected = Oracle(state);
                    ExpectRow(state, expected.dwText, expected.dwBack);
                }
    }
}

TEST_F(TreeColorsTest, ANodeIsPaintedByItsDepthAndByWhatItsControlsSay)
{
    ModuleSlot *pms = MakeControls({{u"Outer", u"Speed"}, {u"Outer", u"Size"}, {u"Hue"}});
    ControlRecord *const *apctl = pms->apControl;
    apctl[0]->Float.fValue = 0.75f;
    apctl[1]->Base.pDependsOn = apctl[0];
    apctl[1]->Base.fDependValue = 0.5f;
    apctl[0]->Base.pDependsOn = apctl[2];
    apctl[0]->Base.fDependValue = 0.1f;
    const auto row = [this](TreeNode *pNode) { return ColorTreeNode(tree, pNode, false); };
    const auto expect = [](TreeRowColors colors, const TreeRowState &state) {
        ExpectRow(state, colors.dwText, colors.dwBack);
    };
    EXPECT_EQ(NodeLevel(NodeOf(pms)), 5u);
    EXPECT_EQ(NodeLevel(NodeOf(apctl[0])), 6u) << "the deepest that is told apart";
    expect(row(tree.pRoot), {0, OBJECT_ROOT, false, true, false});
    expect(row(NodeOf(pms)), {5, OBJECT_DRAWFULL, false, true, false});
    expect(row(NodeOf(apctl[0])), {6, OBJECT_CONTROL, true, false, false});
    expect(row(NodeOf(apctl[1])), {6, OBJECT_CONTROL, false, false, false});
    expect(row(NodeOf(apctl[2])), {6, OBJECT_CONTROL, false, true, false});
    expect(row(NodeOf(pms)->apChild[0]), {6, OBJECT_CONTROLTREE, true, true, false});
    NodeOf(apctl[2])->Info.pObject = nullptr;
    expect(row(NodeOf(pms)->apChild[1]), {6, OBJECT_CONTROL, false, false, false}); // a missing record
}

} // namespace
