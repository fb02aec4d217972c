// MainCommands_test.cpp -- the menu bar and the tool buttons: what they say, in which order, and what they ask for
#include "mainwindow/MainCommands.h"

#include "controls/ControlManager.h"
#include "engine/PresetDocument.h"
#include "mainwindow/SiblingPrograms.h"
#include "mainwindow/StatusStrip.h"
#include "output/Overlays.h"
#include "platform/Text.h"
#include "state/GlobalSettings.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

namespace {

// "File{New, Open}": texts without the keys behind them, "~" in front of what is disabled.
std::string Outline(CommandRows rows)
{
    std::string s;
    for (const Command &command : rows) {
        s += s.empty() ? "" : ", ";
        s += (CommandIsEnabled(command, command.dwArgument, nullptr) ? "" : "~") + ToUtf8(command.pszText);
        if (KindOfCommand(command) == CommandKind::SubMenu)
            s += "{" + Outline(command.children) + "}";
    }
    return s;
}

const Command *Find(CommandRows rows, std::u16string_view text)
{
    for (const Command &command : rows) {
        if (command.pszText == text)
            return &command;
        if (const Command *pFound = Find(command.children, text))
            return pFound;
    }
    return nullptr;
}

class MainCommandsTest : public testing::Test {
  protected:
    template <char cLetter> static void Note(void *pv)
    {
        static_cast<MainCommandsTest *>(pv)->sAsked += cLetter;
    }
    static void NoteProgram(void *pv, const std::u16string &path)
    {
        static_cast<MainCommandsTest *>(pv)->sAsked += "[" + ToUtf8(path) + "]";
    }
    // What the command asked the window for.
    std::string Run(CommandRows rows, std::u16string_view text)
    {
        sAsked.clear();
        const Command *pCommand = Find(rows, text);
        EXPECT_NE(pCommand, nullptr) << ToUtf8(text);
        if (pCommand)
            RunCommand(*pCommand, &Actions);
        return sAsked;
    }

    std::string sAsked;
    MainActions Actions = {this, Note<'n'>, Note<'o'>, Note<'s'>, Note<'x'>, NoteProgram};
};

TEST_F(MainCommandsTest, TheMenuBarStandsInItsOrder)
{
    EXPECT_EQ(Outline(MainMenu()),
              "&File{&New, Open, &Save, Save as..., &Exit}, "
              "Settings{~Performance Options..., ~User Interface Options..., Recording Options...}, "
              "&View{Visuals Window{Display frame rate, Display backbuffer metrics, Display preset name, "
              "Display keyboard commands}, "
              "Color Monitor..., ~Sound Monitor..., ~Preset Browser..., Palette Editor..., Shader Editor..., "
              "~&Move/Size Windows Together, ~Window &Snap-to-Edge, Window Layouts{~Load Layout, ~Save Layout}}, "
              "&Help{~&Check for Updates, ~&License, ~&About...}");
}

TEST_F(MainCommandsTest, TheToolButtonsStandInTheirOrderWithTheirTips)
{
    std::string s;
    for (const Command &command : MainToolButtons()) {
        ASSERT_TRUE(command.pszText && command.pszIcon);
        s += ToUtf8(command.pszText) + "=" + (command.pszToolTip ? ToUtf8(command.pszToolTip) : "") + "\n";
    }
    EXPECT_EQ(s, "New=Begin New Preset\n"
                 "Open=Open a Preset File\n"
                 "Save As=Save to Preset File\n"
                 "Update Available=\n"
                 "Shader Editor=Launch the GLSL Pixel Shader Editor\n"
                 "Palette Editor=Launch the Palette Editor\n"
                 "Colors Window=Display the Colors window\n"
                 "Preset Browser=Display the Preset Browser window\n");
    EXPECT_STREQ(ToUtf8(MainToolButtons().pFirst[UPDATE_BUTTON].pszText).c_str(), "Update Available");
    EXPECT_EQ(ToUtf8(SoundButton().pszToolTip), "Current sound detection status. Press to launch Sound Options.");
}

TEST_F(MainCommandsTest, EveryEntryAsksTheWindowForItsOwnFunction)
{
    EXPECT_EQ(Run(MainMenu(), u"&New"), "n");
    EXPECT_EQ(Run(MainMenu(), u"Open"), "o");
    EXPECT_EQ(Run(MainMenu(), u"&Save"), "s") << "the chooser is always shown";
    EXPECT_EQ(Run(MainMenu(), u"Save as..."), "s");
    EXPECT_EQ(Run(MainMenu(), u"&Exit"), "x");
    EXPECT_EQ(Run(MainToolButtons(), u"New"), "n");
    EXPECT_EQ(Run(MainToolButtons(), u"Open"), "o");
    EXPECT_EQ(Run(MainToolButtons(), u"Save As"), "s");
    EXPECT_EQ(Run(MainMenu(), u"Preset Browser..."), "") << "its window is not there yet";
}

TEST_F(MainCommandsTest, TheOverlaysAreSwitchedAndCheckedByTheirOwnEntries)
{
    const std::pair<const char16_t *, OverlayId> aEntry[] = {{u"Display frame rate", OVERLAY_FRAME_RATE},
                                                             {u"Display backbuffer metrics", OVERLAY_METRICS},
                                                             {u"Display preset name", OVERLAY_PRESET_NAME},
                                                             {u"Display keyboard commands", OVERLAY_KEY_HELP}};
    for (const auto &[pszText, eOverlay] : aEntry) {
        const Command *pCommand = Find(MainMenu(), pszText);
        ASSERT_NE(pCommand, nullptr);
        for (u32 nTime = 0; nTime < 2; nTime++) {
            u32 abBefore[OVERLAYS];
            for (u32 i = 0; i < OVERLAYS; i++)
                abBefore[i] = asOverlay[i].bShown != 0;
            Run(MainMenu(), pszText);
            for (u32 i = 0; i < OVERLAYS; i++)
                EXPECT_EQ(asOverlay[i].bShown != 0, i == eOverlay ? !abBefore[i] : abBefore[i] != 0) << i;
            EXPECT_EQ(CommandIsChecked(*pCommand, pCommand->dwArgument, &Actions), asOverlay[eOverlay].bShown != 0);
        }
    }
}

TEST_F(MainCommandsTest, AnEditorIsOpenedWhereItsProgramIsThere)
{
    const TempFolder folder;
    InitFolders({folder.Wide("bin/vorticade"), {}, {}});
    const auto both = [this] { return Run(MainMenu(), u"Palette Editor...") + Run(MainMenu(), u"Shader Editor..."); };
    EXPECT_EQ(both(), "") << "no such program: nothing happens";
    const auto pathOf = [](PathRow eRow) { return std::filesystem::path(ToUtf8(FolderPath(eRow))); };
    const auto write = [](const std::filesystem::path &path) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    };
    const auto palette = pathOf(PATH_PALETTE_EDITOR), shader = pathOf(PATH_SHADER_EDITOR);
    EXPECT_EQ(palette.filename(), "ColorTableEditor.exe");
    EXPECT_EQ(shader.filename(), "PixelProgramTool.exe");
    write(palette);
    EXPECT_EQ(both(), "[" + palette.string() + "]");
    const std::filesystem::path plain = std::filesystem::path(shader).replace_extension();
    write(plain);
    EXPECT_EQ(Run(MainMenu(), u"Shader Editor..."), "[" + plain.string() + "]");
    EXPECT_EQ(Run(MainToolButtons(), u"Shader Editor"), "[" + plain.string() + "]");
    EXPECT_EQ(Run(MainToolButtons(), u"Palette Editor"), "[" + palette.string() + "]");
    write(shader);
    EXPECT_EQ(Run(MainMenu(), u"Shader Editor..."), "[" + shader.string() + "]");
}

TEST_F(MainCommandsTest, TheTitleShowsMarkNameAndProduct)
{
    SetPresetChanged(u"/some/where/Sun [*] set.VD", 0);
    EXPECT_EQ(MainWindowTitle(), u"Sun [*] set.VD - Vorticade");
    MarkPresetChanged();
    EXPECT_EQ(MainWindowTitle(), u"*Sun [*] set.VD - Vorticade");
    SetPresetChanged(UNTITLED_PRESET, 0);
    EXPECT_EQ(MainWindowTitle(), u"Tempname.VD - Vorticade");
}

TEST_F(MainCommandsTest, TheQuestionBeforeChangesAreLostIsThis)
{
    EXPECT_STREQ(ToUtf8(sDiscardQuestion.pszTitle).c_str(), "Warning: Unsaved changes");
    EXPECT_STREQ(ToUtf8(sDiscardQuestion.pszText).c_str(),
                 "You've made changes to the current preset that have not been saved. If you proceed, those changes "
                 "will be lost.\n\nDo you wish to proceed?");
}

} // namespace
