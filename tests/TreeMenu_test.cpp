// TreeMenu_test.cpp -- the context menus of all kinds of nodes, and which modules a list is offered
#include "tests/TreeFixture.h"

#include "editing/ModuleOffers.h"
#include "editing/TreeMenu.h"
#include "modules/ShaderList.h"
#include "platform/Files.h"

#include <filesystem>
#include <fstream>

namespace {

// A menu as one text: "{" and "}" around sub menus, "--" for lines, "~" in front of what is disabled.
std::string MenuText(const std::vector<TreeMenuRow> &rows)
{
    std::string s;
    for (const TreeMenuRow &row : rows) {
        if (row.ePart == TreeMenuPart::Line)
            s += "--|";
        else if (row.ePart == TreeMenuPart::SubMenuEnd)
            s += "}|";
        else
            s += (row.bEnabled ? "" : "~") + ToUtf8(row.text) + (row.ePart == TreeMenuPart::SubMenu ? "{|" : "|");
    }
    return s;
}

class TreeMenuTest : public TreeTest {
  protected:
    TreeNode *MakeKind(u32 dwType)
    {
        Node = {};
        Node.Info.dwType = dwType;
        Node.Info.pObject = dwType >= OBJECT_PLANE && dwType <= OBJECT_OVERLAYEFFECTTREE ? lppsi->psPlane[0] : nullptr;
        return &Node;
    }
    std::string MenuOf(u32 dwType)
    {
        return MenuText(BuildTreeMenu(MakeKind(dwType)));
    }
    void TearDown() override
    {
        FreeShaderList();
        TreeTest::TearDown();
    }

    TreeNode Node{};
};

const std::string RESTORE = "Restore defaults{|This Item|Entire Branch|}|--|";
const std::string CONTROL = RESTORE + "Control Set{|~Load|~Save|}|--|~Copy|--|";

// What each list is offered of Recorder and Idle (drawing) and Recorder Color.
std::string ListMenu(const std::string &modules)
{
    return "Add Module{|" + modules + "}|--|" + RESTORE;
}

TEST_F(TreeMenuTest, EveryKindHasItsMenu)
{
    MakePreset(1);
    const std::string module =
        "Remove Module|--|Pause/Resume Module Drawing|--|Move Up|Move Down|" + RESTORE + "~Copy|--|";
    const std::string drawing = ListMenu("Recorder|Idle|");
    const std::string color = ListMenu("Recorder Color|");
    const std::string expected[] = {
        module,
        module,
        module,
        module,
        module,
        module,
        module,
        module,
        module,
        RESTORE,
        "Add Plane{|RGB|Indexed|}|--|" + RESTORE,
        "Remove Plane|--|Pause/Resume Plane Drawing|--|Move Up|Move Down|" + RESTORE + "~Copy|--|",
        RESTORE,
        RESTORE,
        RESTORE,
        color,
        color,
        color,
        drawing,
        drawing,
        drawing,
        drawing,
        drawing,
        drawing,
        CONTROL,
        CONTROL,
        RESTORE,
        RESTORE,
    };
    ASSERT_EQ(std::size(expected), OBJECT_TYPES + 0u);
    for (u32 dwType = 0; dwType < OBJECT_TYPES; dwType++)
        EXPECT_EQ(MenuOf(dwType), expected[dwType]) << dwType;
}

TEST_F(TreeMenuTest, PasteIsOfferedWhereTheClipboardFits)
{
    MakePreset(1);
    const auto onMixer = [](const TreeNode *pNode) { return pNode->Info.dwType == OBJECT_MIXER; };
    EXPECT_EQ(MenuText(BuildTreeMenu(MakeKind(OBJECT_MIXER), onMixer)), RESTORE + "Paste|--|");
    EXPECT_EQ(MenuText(BuildTreeMenu(MakeKind(OBJECT_ROOT), onMixer)), RESTORE);
}

TEST_F(TreeMenuTest, EveryEntryCarriesItsCommand)
{
    MakePreset(1);
    std::string s;
    for (u32 dwType : {OBJECT_DRAWFULL, OBJECT_PLANETREE, OBJECT_PLANE, OBJECT_CONTROL, OBJECT_DRAWFULLTREE})
        for (const TreeMenuRow &row : BuildTreeMenu(MakeKind(dwType), [](const TreeNode *) { return true; }))
            if (row.ePart == TreeMenuPart::Entry)
                s += std::to_string(static_cast<u32>(row.eCommand)) + ":" + std::to_string(row.dwArgument) + " ";
    const auto n = [](TreeCommand e) { return std::to_string(static_cast<u32>(e)) + ":0 "; };
    const std::string move = n(TreeCommand::MoveUp) + n(TreeCommand::MoveDown);
    const std::string restore = n(TreeCommand::RestoreItem) + n(TreeCommand::RestoreBranch);
    const std::string copy = n(TreeCommand::Copy), paste = n(TreeCommand::Paste), remove = n(TreeCommand::Remove);
    const std::string add = std::to_string(static_cast<u32>(TreeCommand::AddModule));
    EXPECT_EQ(s, remove + n(TreeCommand::PauseModule) + move + restore + copy + paste +                         //
                     n(TreeCommand::AddPlane) + "3:1 " + restore + paste +                                      //
                     remove + n(TreeCommand::PausePlane) + move + restore + copy + paste +                      //
                     restore + n(TreeCommand::LoadControlSet) + n(TreeCommand::SaveControlSet) + copy + paste + //
                     add + ":0 " + add + ":2 " + restore + paste);
}

// Which modules

ModuleDescription Describe(u32 dwClass, u32 dwCapabilities)
{
    ModuleDescription md = {};
    md.dwClass = dwClass;
    md.dwCapabilities = dwCapabilities;
    return md;
}

TEST_F(TreeMenuTest, AListAcceptsItsClassWithTheBitsOfItsKindAndPlane)
{
    struct Row {
        u32 dwClass, dwIndexed, dwRgb;
    };
    const Row asRow[] = {
        {4, 0x1, 0x1},        {4, 0x2, 0x2},         {4, 0x4, 0x4},         {1, 0x8008, 0x10008},  {1, 0x8010, 0x10010},
        {1, 0x8020, 0x10020}, {1, 0x10008, 0x10008}, {1, 0x10010, 0x10010}, {1, 0x10020, 0x10020},
    };
    for (u32 i = 0; i < std::size(asRow); i++)
        for (u32 dwClass : {1u, 2u, 4u})
            for (u32 dwKinds = 0; dwKinds < 64; dwKinds++)
                for (u32 dwPlanes : {0u, 0x8000u, 0x10000u, 0x18000u})
                    for (bool bIndexed : {false, true}) {
                        const u32 dwNeeded = bIndexed ? asRow[i].dwIndexed : asRow[i].dwRgb;
                        const u32 dwHas = dwKinds | dwPlanes;
                        EXPECT_EQ(ListAccepts(Describe(dwClass, dwHas), i, bIndexed),
                                  dwClass == asRow[i].dwClass && (dwHas & dwNeeded) == dwNeeded);
                    }
    EXPECT_FALSE(ListAccepts(Describe(2, ALL_ONES), MODULEINDEX_MIXER, true));
}

TEST_F(TreeMenuTest, AnIndexedPlaneIsNotOfferedWhatDrawsColoursOnly)
{
    MakePreset(1);
    FindModuleRecord(u"Idle.dll")->md.dwCapabilities = MODULECAP_PAINTER | MODULECAP_RGB;
    EXPECT_EQ(MenuOf(OBJECT_DRAWPAINTERTREE), ListMenu("Recorder|"));
    EXPECT_EQ(MenuOf(OBJECT_OVERLAYPAINTERTREE), ListMenu("Recorder|Idle|"));
    lppsi->psPlane[0]->Info.bIndexed = 0;
    EXPECT_EQ(MenuOf(OBJECT_DRAWPAINTERTREE), ListMenu("Recorder|Idle|"));
}

class TreeMenuShaderTest : public TreeMenuTest {
  protected:
    void SetUp() override
    {
        TreeMenuTest::SetUp();
        folder = std::filesystem::temp_directory_path() / ("vd-tree-menu-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder / "Shaders");
        InitFolders({u"/nowhere/vorticade", FromUtf8(folder.string()), FromUtf8(TEST_MODULE_FOLDER)});
        CopyText(FindModuleRecord(u"Idle.dll")->md.szName, u"Any sHADer module");
        MakePreset(1);
    }
    void TearDown() override
    {
        TreeMenuTest::TearDown();
        std::filesystem::remove_all(folder);
    }
    void AddShaders(std::initializer_list<const char *> names)
    {
        for (const char *psz : names)
            std::ofstream(folder / "Shaders" / (std::string(psz) + ".glsl")) << "x";
    }
    std::filesystem::path folder;
};

TEST_F(TreeMenuShaderTest, EveryListIsOfferedTheShadersInPlaceOfTheirModule)
{
    AddShaders({"Beta", "Alpha"});
    EXPECT_EQ(MenuOf(OBJECT_COLOREFFECTTREE), ListMenu("Recorder Color|Shaders{|Alpha|Beta|}|"));
    const auto rows = BuildTreeMenu(MakeKind(OBJECT_DRAWFULLTREE));
    EXPECT_EQ(MenuText(rows), ListMenu("Recorder|Shaders{|Alpha|Beta|}|"));
    const u32 dwKey = rows[4].dwArgument;
    EXPECT_EQ(rows[4].text, u"Beta");
    EXPECT_EQ(rows[4].eCommand, TreeCommand::AddModule);
    EXPECT_EQ(GetModuleRecord(ModuleOfKey(dwKey)), FindModuleRecord(u"Idle.dll"));
    EXPECT_EQ(ShaderOfKey(dwKey), 2u);
}

TEST_F(TreeMenuShaderTest, AShaderModuleThatCannotBeUsedIsListedLikeOthers)
{
    AddShaders({"Alpha"});
    FindModuleRecord(u"Idle.dll")->md.bUnavailable = 1;
    EXPECT_EQ(MenuOf(OBJECT_DRAWFULLTREE), ListMenu("Recorder|Any sHADer module|"));
    EXPECT_EQ(MenuOf(OBJECT_COLOREFFECTTREE), ListMenu("Recorder Color|"));
}

TEST_F(TreeMenuShaderTest, WithoutShadersTheSubMenuIsEmptyAndWithManyItEndsAt256)
{
    EXPECT_EQ(MenuOf(OBJECT_DRAWFULLTREE), ListMenu("Recorder|Shaders{|}|"));
    for (u32 i = 0; i < 300; i++)
        AddShaders({std::to_string(1000 + i).c_str()});
    EXPECT_EQ(BuildTreeMenu(MakeKind(OBJECT_DRAWFULLTREE)).size(), 256u + 5 + 1 + 5);
}

} // namespace
