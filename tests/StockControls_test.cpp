// StockControls_test.cpp -- what every stock module says of itself and its controls: names, helps, ranges, sources
#include "PainterHost.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>

// PMShader has what its shader files declare, which ShaderInputs_test looks at.
static std::vector<std::string> ModuleFiles()
{
    std::vector<std::string> aszDll;
    for (const auto &entry : std::filesystem::directory_iterator(STOCK_MODULE_FOLDER))
        if (entry.path() != STOCK_MODULE_FOLDER "/SoundLevelDLL.dll" && entry.path() != STOCK_MODULE_FOLDER
                                                                            "/PMShader.dll")
            aszDll.push_back(entry.path().filename());
    return aszDll;
}

// The tree shows the components but the last as groups.
static size_t Components(const ControlRecord &ctl)
{
    const std::string name = DottedName(ctl);
    return 1 + (size_t)std::count(name.begin(), name.end(), '.');
}

static size_t TextLength(const char16_t (&szText)[CONTROL_TEXT])
{
    return (size_t)(std::find(szText, szText + CONTROL_TEXT, u'\0') - szText);
}

template <typename Number> static void ExpectRange(Number low, Number high, Number from, Number to, Number value)
{
    EXPECT_LT(low, high);
    EXPECT_LE(low, from);
    EXPECT_LT(from, to) << "a moving source would stand still";
    EXPECT_LE(to, high);
    EXPECT_LE(low, value);
    EXPECT_LE(value, high);
}

static void ExpectRows(const ControlItemSelect &item)
{
    ASSERT_GE(item.nItems, 2u);
    std::set<std::u16string> aszText;
    for (uint32_t i = 0; i < item.nItems; i++) {
        EXPECT_EQ(i, item.pItems[i].dwValue);
        EXPECT_TRUE(aszText.insert(item.pItems[i].pszText).second) << "two rows of one text";
    }
    EXPECT_LT(item.nDefaultItemValue, item.nItems);
    EXPECT_EQ(item.nDefaultItemValue, item.nCurrentItemValue);
}

static void ExpectValues(const ControlRecord &ctl)
{
    const ControlInteger &n = ctl.Integer;
    const ControlFloat &f = ctl.Float;
    switch (ctl.Base.dwType) {
    case CONTROLTYPE_INTEGER:
        ExpectRange(n.nAbsMin, n.nAbsMax, n.nDefaultMin, n.nDefaultMax, n.nDefaultValue);
        EXPECT_TRUE(n.nDefaultMin == n.nMin && n.nDefaultMax == n.nMax && n.nDefaultValue == n.nValue);
        break;
    case CONTROLTYPE_FLOAT:
        ExpectRange(f.fAbsMin, f.fAbsMax, f.fDefaultMin, f.fDefaultMax, f.fDefaultValue);
        EXPECT_TRUE(f.fDefaultMin == f.fMin && f.fDefaultMax == f.fMax && f.fDefaultValue == f.fValue);
        break;
    case CONTROLTYPE_ITEMSELECT:
        ExpectRows(ctl.ItemSelect);
        break;
    case CONTROLTYPE_BOOLEAN:
        EXPECT_EQ(ctl.Boolean.bDefaultState, ctl.Boolean.bState);
        EXPECT_EQ(ctl.Boolean.fDefaultThreshold, ctl.Boolean.fThreshold);
        break;
    case CONTROLTYPE_FILESELECT:
        EXPECT_NE(nullptr, ctl.FileSelect.pszFileType);
        break;
    default:
        break;
    }
}

// One of those that are offered; a record whose halves differ would count as edited.
static void ExpectSources(const ControlBase &base)
{
    const uint32_t dwAnimated = base.dwType == CONTROLTYPE_ITEMSELECT ? uint32_t{FLUIDSOURCE_ANIMATED} : 0;
    EXPECT_TRUE(base.dwSourceMask & base.dwSource);
    EXPECT_FALSE(base.dwSourceMask & dwAnimated);
    EXPECT_EQ(base.dwDefaultSource, base.dwSource);
    EXPECT_EQ(base.nDefaultWavePeriod, base.nWavePeriod);
    EXPECT_EQ(base.dwDefaultWaveType, base.dwWaveType);
    EXPECT_EQ(base.nDefaultSamples, base.nSamples);
    EXPECT_LE(base.nSamples, 44u);
    EXPECT_EQ(base.nDefaultNoisePeriod, base.nNoisePeriod);
    EXPECT_EQ(base.bDefaultRandomPhase, base.bRandomPhase);
}

static void ExpectDependency(const TestModule &module, const ControlRecord &ctl)
{
    const ControlRecord *pOn = ctl.Base.pDependsOn;
    if (!pOn)
        return;
    EXPECT_TRUE(std::any_of(module.apControl.begin(), module.apControl.end(),
                            [=](const auto &pctl) { return pctl.get() == pOn; }));
    EXPECT_NE(&ctl, pOn);
    EXPECT_TRUE(pOn->Base.bHasDependents) << "the tree would not show the change";
}

TEST(StockControls, HaveAGroupAHelpTextASaneRangeAndASourceThatIsOffered)
{
    for (const std::string &szDll : ModuleFiles()) {
        TestPlane plane(128, 128, true, 256);
        TestModule module(szDll.c_str(), plane);
        EXPECT_FALSE(module.apControl.empty()) << szDll;
        std::set<std::string> aszName;
        for (const auto &pctl : module.apControl) {
            const std::string szName = DottedName(*pctl);
            SCOPED_TRACE(szDll + ": " + szName);
            EXPECT_TRUE(aszName.insert(szName).second) << "two of one name";
            EXPECT_GE(TextLength(pctl->Base.szDescription), 8u) << "no help";
            EXPECT_LT(TextLength(pctl->Base.szDescription), 200u) << "more than a user reads";
            if (pctl->Base.dwType == CONTROLTYPE_GROUP)
                continue;
            EXPECT_GE(Components(*pctl), 2u) << "in no group";
            ExpectSources(pctl->Base);
            ExpectValues(*pctl);
            ExpectDependency(module, *pctl);
        }
    }
}

TEST(StockControls, ShowEveryTypeSourceAndWayToDependToThoseWhoReadThem)
{
    std::map<uint32_t, int> nOfType, nOfSource;
    size_t nWithDependency = 0;
    const std::vector<std::string> aszDll = ModuleFiles();
    for (const std::string &szDll : aszDll) {
        TestPlane plane(128, 128, true, 256);
        TestModule module(szDll.c_str(), plane);
        bool bDepends = false;
        for (const auto &pctl : module.apControl) {
            nOfType[pctl->Base.dwType]++;
            nOfSource[pctl->Base.dwSource]++;
            bDepends |= pctl->Base.pDependsOn != nullptr;
        }
        nWithDependency += bDepends;
    }
    for (uint32_t dwType = CONTROLTYPE_GROUP; dwType <= CONTROLTYPE_TILE; dwType++)
        EXPECT_GE(nOfType[dwType], 1) << "type " << dwType;
    for (uint32_t dwSource = FLUIDSOURCE_FIXED; dwSource <= FLUIDSOURCE_PERIODIC; dwSource *= 2)
        EXPECT_GE(nOfSource[dwSource], 5) << "source " << dwSource;
    EXPECT_GE(aszDll.size(), 30u);
    EXPECT_GE(nWithDependency, aszDll.size() / 3);
}

TEST(StockControls, BelongToModulesThatSayWhatTheyAre)
{
    std::set<std::u16string> aszName;
    for (const std::string &szDll : ModuleFiles()) {
        TestPlane plane(128, 128, true, 256);
        TestModule module(szDll.c_str(), plane);
        ModuleDescription md = {};
        module.Entry<ModuleGetDescriptionFn>("ModuleGetDescription")(&md);
        EXPECT_TRUE(aszName.insert(md.szName).second) << szDll << ": a name that another module has";
        EXPECT_GE(TextLength(md.szName), 3u) << szDll;
        EXPECT_GE(TextLength(md.szDescription), 8u) << szDll;
        EXPECT_NE(u'\0', md.szBuild[0]) << szDll;
    }
}
