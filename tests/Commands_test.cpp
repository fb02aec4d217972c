// Commands_test.cpp -- tests Commands.cpp: what a row says and does, and which row a key runs
#include "toolkit/Commands.h"

#include <gtest/gtest.h>

namespace {

struct Log {
    std::u16string runs; // a letter for each, from the argument
    bool bAllowed = true;
};

void Note(u32 dwArgument, void *pvContext)
{
    static_cast<Log *>(pvContext)->runs += static_cast<char16_t>(dwArgument);
}

bool IsAllowed(u32, void *pvContext)
{
    return static_cast<Log *>(pvContext)->bAllowed;
}

bool IsCapital(u32 dwArgument, void *)
{
    return dwArgument < 'a';
}

void AddLayouts(std::vector<CommandItem> *pItems, u32 dwArgument, void *)
{
    pItems->push_back({u"Left & right", dwArgument});
}

constexpr Command asEdit[] = {
    {.pszText = u"&Copy", .pfnRun = Note, .dwArgument = 'c', .key = {'C', MODIFIER_CTRL}},
    {.pszText = u"Show\tT", .pfnRun = Note, .dwArgument = 't', .key = {'T'}},
};
constexpr Command asAll[] = {
    {.pszText = u"&Save as...",
     .pfnRun = Note,
     .dwArgument = 's',
     .pfnEnabled = IsAllowed,
     .key = {'S', MODIFIER_CTRL}},
    COMMAND_LINE,
    {.pszText = u"Edit", .children = asEdit},
    {.pfnRun = Note, .pfnItems = AddLayouts},
    {.pfnRun = Note, .dwArgument = 'S', .key = {'S'}},
    {.pfnRun = Note, .dwArgument = '+', .key = {.dwKey = KEY_PAGE_UP, .bRepeats = true}},
    {.pfnRun = Note, .dwArgument = '>', .key = {.dwKey = KEY_RIGHT, .bUp = true}},
    {.pfnRun = Note, .dwArgument = '<', .key = {KEY_LEFT, MODIFIER_ALT}},
    {.pszText = u"Later", .key = {'L'}},
};

class CommandKeysTest : public testing::Test {
  protected:
    bool Press(u32 dwKey, u32 dwModifiers = 0, bool bRepeat = false)
    {
        return keys.Handle({asAll, &log}, {dwKey, false, bRepeat, (dwModifiers & MODIFIER_ALT) != 0, dwModifiers});
    }
    bool Release(u32 dwKey, u32 dwModifiers = 0, bool bRepeat = false)
    {
        return keys.Handle({asAll, &log}, {dwKey, true, bRepeat, (dwModifiers & MODIFIER_ALT) != 0, dwModifiers});
    }

    CommandKeys keys;
    Log log;
};

TEST(Commands, ARowIsWhatItsFieldsMakeOfIt)
{
    EXPECT_EQ(CommandKind::Entry, KindOfCommand(asAll[0]));
    EXPECT_EQ(CommandKind::Line, KindOfCommand(asAll[1]));
    EXPECT_EQ(CommandKind::SubMenu, KindOfCommand(asAll[2]));
    EXPECT_EQ(CommandKind::Items, KindOfCommand(asAll[3]));
    EXPECT_EQ(CommandKind::KeyOnly, KindOfCommand(asAll[4]));
    EXPECT_EQ(CommandKind::KeyOnly, KindOfCommand({.children = asEdit})) << "a table within that no menu shows";
}

TEST(Commands, ARowThatMayNotRunDoesNot)
{
    Log log;
    EXPECT_TRUE(RunCommand(asAll[0], &log));
    log.bAllowed = false;
    EXPECT_FALSE(RunCommand(asAll[0], &log));
    EXPECT_FALSE(RunCommand(asAll[8], &log)) << "without a function there is nothing to run";
    EXPECT_EQ(u"s", log.runs);
    EXPECT_FALSE(CommandIsChecked(asAll[0], 0, &log));
    EXPECT_TRUE(CommandIsChecked({.pfnChecked = IsCapital}, 'A', nullptr));
}

TEST(Commands, AKeyStandsBehindATabOfTheTextOnce)
{
    EXPECT_EQ(u"&Save as...\tCtrl+S", MenuTextOf(asAll[0]));
    EXPECT_EQ(u"Show\tT", MenuTextOf(asEdit[1]));
    EXPECT_EQ(u"Edit", MenuTextOf(asAll[2]));
    EXPECT_EQ(u"Ctrl+Alt+Shift+F12", KeyTextOf({KEY_F1 + 11, MODIFIER_CTRL | MODIFIER_ALT | MODIFIER_SHIFT}));
    EXPECT_EQ(u"F9", KeyTextOf({KEY_F1 + 8}));
    EXPECT_EQ(u"Del", KeyTextOf({KEY_DELETE}));
    EXPECT_EQ(u"", KeyTextOf({}));
}

TEST(Commands, TextsFromOutsideStandInAMenuAsTheyAre)
{
    EXPECT_EQ(u"Salt && Pepper &&&&", MenuTextOf(u"Salt & Pepper &&"));
    EXPECT_EQ(u"no key here", MenuTextOf(u"no key\r\n\there")) << "a tab would make a key of the rest";
    EXPECT_EQ(u"a b  c", OneLine(u"a\u2028b  c")) << "blanks are left alone";
}

TEST(Commands, LabelsAndTipsAreForReading)
{
    EXPECT_EQ(u"Save as", LabelOf(asAll[0]));
    EXPECT_EQ(u"Show", LabelOf(asEdit[1]));
    EXPECT_EQ(u"Salt & Pepper", LabelOf({.pszText = u"Salt && Pepper&"}));
    EXPECT_EQ(u"Save as", ToolTipOf(asAll[0]));
    EXPECT_EQ(u"Save to Preset File", ToolTipOf({.pszText = u"Save as...", .pszToolTip = u"Save to Preset File"}));
}

TEST_F(CommandKeysTest, KeysRunTheirRowsAlsoThoseOfSubMenus)
{
    EXPECT_TRUE(Press('S') && Press('S', MODIFIER_CTRL) && Press('S', MODIFIER_SHIFT) && Press('T'));
    EXPECT_EQ(u"SsSt", log.runs) << "plain, exact, plain again where no row wants just that, sub menu";
    EXPECT_FALSE(Press('C')) << "only with Ctrl";
    EXPECT_FALSE(Press('L')) << "a row that does nothing leaves its key to others";
    EXPECT_FALSE(Press(KEY_NONE));
    log.bAllowed = false;
    EXPECT_TRUE(Press('S', MODIFIER_CTRL)) << "the key means something all the same";
    EXPECT_EQ(u"SsSt", log.runs);
}

TEST_F(CommandKeysTest, HeldKeysRunAgainOnlyWhereTheirRowRepeats)
{
    Press(KEY_PAGE_UP);
    Press(KEY_PAGE_UP, 0, true);
    Press('S');
    Press('S', 0, true);
    EXPECT_EQ(u"++S", log.runs);
}

TEST_F(CommandKeysTest, AReleaseCountsOnlyAfterItsPress)
{
    EXPECT_TRUE(Release(KEY_RIGHT));
    EXPECT_EQ(u"", log.runs) << "its press closed a dialog";
    Press(KEY_RIGHT);
    Release(KEY_RIGHT, 0, true);
    EXPECT_EQ(u"", log.runs);
    Release(KEY_RIGHT);
    Release(KEY_RIGHT);
    EXPECT_EQ(u">", log.runs);
    Press(KEY_RIGHT);
    keys.Forget();
    Release(KEY_RIGHT);
    Press(KEY_RIGHT, MODIFIER_ALT);
    Release(KEY_RIGHT);
    EXPECT_EQ(u">", log.runs);
}

TEST_F(CommandKeysTest, KeysWithAltAreSwallowedUnlessARowWantsThem)
{
    EXPECT_TRUE(Press('S', MODIFIER_ALT));
    EXPECT_TRUE(Press('Z', MODIFIER_ALT));
    EXPECT_EQ(u"", log.runs);
    Press(KEY_LEFT, MODIFIER_ALT);
    EXPECT_EQ(u"<", log.runs);
    EXPECT_TRUE(keys.Handle({asAll, &log}, {'S', false, false, true})) << "the system's own key";
    EXPECT_EQ(u"<", log.runs);
}

} // namespace
