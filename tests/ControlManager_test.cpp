// ControlManager_test.cpp -- building by good and bad modules, limits, defaults, dependencies, names
#include "controls/ControlManager.h"

#include "controls/ControlTypes.h"
#include "controls/FileList.h"
#include "controls/FluidSources.h"
#include "platform/Text.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

struct ControlDeleter {
    void operator()(ControlRecord *pctl) const
    {
        FreeControl(pctl);
    }
};
using ControlPtr = std::unique_ptr<ControlRecord, ControlDeleter>;

// Builds a slot with what the function asks for, and frees its records.
class BuiltSlot {
  public:
    explicit BuiltSlot(const std::function<void(i32 *pnControls)> &pfnModule)
    {
        BeginControls(pms.get());
        pfnModule(&pms->nControls);
        EndControls(pms.get());
    }
    ~BuiltSlot()
    {
        for (i32 i = 0; i < pms->nControls; i++)
            FreeControl(pms->apControl[i]);
    }
    ModuleSlot *operator->()
    {
        return pms.get();
    }
    ModuleSlot *get()
    {
        return pms.get();
    }

  private:
    std::unique_ptr<ModuleSlot> pms = std::make_unique<ModuleSlot>();
};

char16_t *CopyOfText(const char16_t *psz)
{
    const std::u16string s(psz);
    char16_t *pszCopy = static_cast<char16_t *>(malloc((s.size() + 1) * sizeof(char16_t)));
    memcpy(pszCopy, s.c_str(), (s.size() + 1) * sizeof(char16_t));
    return pszCopy;
}

// A control at the defaults that a module gave it, ready as at the end of building.
BuiltSlot SlotOfType(u32 dwType)
{
    return BuiltSlot([=](i32 *pn) {
        ControlRecord *pctl = AllocControl(pn);
        pctl->Base.dwType = dwType;
        if (dwType == CONTROLTYPE_INTEGER)
            pctl->Integer = {-50, 50, -10, 10, -10, 10, 4, 4, 0, 0, 0};
        else if (dwType == CONTROLTYPE_FLOAT)
            pctl->Float = {-5, 5, -1, 1, -1, 1, 0.5f, 0.5f, 0};
        else if (dwType == CONTROLTYPE_BOOLEAN)
            pctl->Boolean = {0.25f, 0.25f, 1, 1};
    });
}

// Each row makes one edit. Its letters say: counts as changed while fixed, while random, on a wave; restoring undoes
// it.
struct EditCase {
    const char *pszWhat;
    u32 dwType;
    const char *pszExpected;
    void (*pfnEdit)(ControlRecord *pctl);
};

constexpr EditCase asEdit[] = {
    {"nothing", CONTROLTYPE_INTEGER, "...y", [](ControlRecord *) {}},
    {"samples", CONTROLTYPE_FLOAT, "yyyy", [](ControlRecord *p) { p->Base.nSamples = 3; }},
    {"noise", CONTROLTYPE_TILE, "yyyy", [](ControlRecord *p) { p->Base.nNoisePeriod++; }},
    {"period", CONTROLTYPE_FILESELECT, "yyyy", [](ControlRecord *p) { p->Base.nWavePeriod++; }},
    {"wave", CONTROLTYPE_BOOLEAN, "yyyy", [](ControlRecord *p) { p->Base.dwWaveType = 2; }},
    {"set phase", CONTROLTYPE_BOOLEAN, "..y.", [](ControlRecord *p) { p->Base.bRandomPhase = 0; }},
    {"drawn phase", CONTROLTYPE_FLOAT, "....", [](ControlRecord *p) { p->Base.fWavePhase = 0.7f; }},
    {"kept phase", CONTROLTYPE_FLOAT, "..y.",
     [](ControlRecord *p) {
         p->Base.bDefaultRandomPhase = p->Base.bRandomPhase = 0;
         p->Base.fWavePhase = 0.7f;
     }},
    {"close phase", CONTROLTYPE_FLOAT, "....",
     [](ControlRecord *p) {
         p->Base.bDefaultRandomPhase = p->Base.bRandomPhase = 0;
         p->Base.fWavePhase = 0.000009f;
     }},
    {"value", CONTROLTYPE_INTEGER, "y..y", [](ControlRecord *p) { p->Integer.nValue++; }},
    {"low end", CONTROLTYPE_INTEGER, ".yyy", [](ControlRecord *p) { p->Integer.nMin--; }},
    {"odd", CONTROLTYPE_INTEGER, ".yyy", [](ControlRecord *p) { p->Integer.bOnlyOdd = 1; }},
    {"float value", CONTROLTYPE_FLOAT, "y..y", [](ControlRecord *p) { p->Float.fValue = 0.50001f; }},
    {"float end", CONTROLTYPE_FLOAT, ".yyy", [](ControlRecord *p) { p->Float.fMax = 2; }},
    {"float snap", CONTROLTYPE_FLOAT, ".yyy", [](ControlRecord *p) { p->Float.bMinMax = 1; }},
    {"row", CONTROLTYPE_ITEMSELECT, "y..y", [](ControlRecord *p) { p->ItemSelect.nCurrentItemValue = 1; }},
    {"state", CONTROLTYPE_BOOLEAN, "y..y", [](ControlRecord *p) { p->Boolean.bState = 0; }},
    {"threshold", CONTROLTYPE_BOOLEAN, ".yyy", [](ControlRecord *p) { p->Boolean.fThreshold = 0.3f; }},
    {"shuffle", CONTROLTYPE_FILESELECT, "...y", [](ControlRecord *p) { p->FileSelect.bShuffle = 1; }},
    {"list", CONTROLTYPE_FILESELECT, "yyy.", [](ControlRecord *p) { SetFileList(p, CopyOfText(u"x")); }},
    {"last tile", CONTROLTYPE_TILE, "yyyy", [](ControlRecord *p) { p->Tile.pTileMask[1023] = 0; }},
    {"hidden tile", CONTROLTYPE_TILE, "....",
     [](ControlRecord *p) {
         p->Tile.nYTiles = 31;
         p->Tile.pTileMask[1023] = 0;
     }},
};

std::u16string DottedName(std::u16string_view list)
{
    ControlRecord ctl = {};
    list.copy(ctl.Base.szName, CONTROL_TEXT);
    NameText szName;
    ControlDottedName(&ctl, szName);
    return szName;
}

} // namespace

TEST(ControlManager, AnUnfilledControlStartsOnTheFixedValueWithTheStandingDefaults)
{
    const ControlPtr pctl(NewControl());
    const ControlBase &Base = pctl->Base;
    EXPECT_EQ(std::u16string(Base.szDescription), u"This is a text string.");
    EXPECT_EQ(Base.dwSource, u32{FLUIDSOURCE_FIXED});
    EXPECT_EQ(Base.nWavePeriod, 8000u);
    EXPECT_EQ(Base.nNoisePeriod, 1500u);
    EXPECT_EQ(Base.bRandomPhase, 1u);
    for (u32 dwType = 0; dwType < 10; dwType++) {
        pctl->Base.dwType = dwType;
        EXPECT_TRUE(ControlIsDefault(pctl.get())) << dwType;
    }
    pctl->Base.dwType = CONTROLTYPE_UNDEFINED;
}

TEST(ControlManager, BuildingBelievesOnlyItsOwnCount)
{
    i32 nElsewhere = 77;
    BuiltSlot slot([&](i32 *pn) {
        ASSERT_TRUE(AllocControl(pn));
        *pn = 100000;
        ASSERT_TRUE(AllocControl(pn));
        *pn = -5;
        ASSERT_TRUE(AllocControl(nullptr));
        ASSERT_TRUE(AllocControl(&nElsewhere));
        *pn = 139;
    });
    EXPECT_EQ(slot->nControls, 4);
    EXPECT_EQ(nElsewhere, 77);
    for (i32 i = 0; i < 6; i++)
        EXPECT_EQ(slot->apControl[i] != nullptr, i < 4) << i;
    for (i32 i = 0; i < 4; i++)
        EXPECT_EQ(slot->apControl[i]->Base.pOwner, slot.get());
}

TEST(ControlManager, The141stControlIsRefusedAndOverrunsNothing)
{
    BuiltSlot slot([](i32 *pn) {
        for (u32 i = 0; i < CONTROLS_MAX; i++)
            ASSERT_TRUE(AllocControl(pn));
        EXPECT_EQ(AllocControl(pn), nullptr);
        EXPECT_EQ(AllocControl(pn), nullptr);
    });
    EXPECT_EQ(slot->nControls, i32{CONTROLS_MAX});
    EXPECT_EQ(slot->lpszShader, nullptr);
    EvaluateControls(slot.get(), true);
    EXPECT_EQ(CountChangedControls(slot.get()), 0);
}

TEST(ControlManager, ControlsAreGivenOutOnlyWhileAndWhereASlotIsBuilt)
{
    i32 n = 0;
    EXPECT_EQ(AllocControl(&n), nullptr);
    BuiltSlot slot([](i32 *pn) {
        ControlRecord *pctl = reinterpret_cast<ControlRecord *>(1);
        std::thread([&] { pctl = AllocControl(pn); }).join();
        EXPECT_EQ(pctl, nullptr);
    });
    EXPECT_EQ(AllocControl(&slot->nControls), nullptr);
    EXPECT_EQ(slot->nControls, 0);
}

TEST(ControlManager, EndOfBuildingTakesBackWhatAModuleMayNotLeave)
{
    char16_t szStatic[] = u"not from the allocator";
    ControlRecord ctlStranger = {};
    BuiltSlot slot([&](i32 *pn) {
        ControlRecord *pctlTile = AllocControl(pn);
        memset(static_cast<void *>(&pctlTile->Tile), 0xEE, sizeof pctlTile->Tile);
        pctlTile->Base.dwType = CONTROLTYPE_TILE;
        ControlRecord *pctlFile = AllocControl(pn);
        memset(static_cast<void *>(&pctlFile->FileSelect), 0xEE, sizeof pctlFile->FileSelect);
        pctlFile->Base.dwType = CONTROLTYPE_FILESELECT;
        pctlFile->FileSelect.pszFileList = szStatic;
        ControlRecord *pctlItems = AllocControl(pn);
        pctlItems->Base.dwType = CONTROLTYPE_ITEMSELECT;
        pctlItems->ItemSelect.nItems = 12;
        pctlItems->ItemSelect.bOwnsItems = 1;
        pctlItems->Base.pDependsOn = pctlTile;
        ControlRecord *pctlWild = AllocControl(pn);
        memset(static_cast<void *>(pctlWild), 0xEE, sizeof *pctlWild);
        pctlWild->Base.pDependsOn = &ctlStranger;
    });
    const ControlTile &Tile = slot->apControl[0]->Tile;
    EXPECT_EQ(Tile.nXTiles * Tile.nYTiles * Tile.nXLimit * Tile.nYLimit, 32u * 32 * 32 * 32);
    for (u32 i = 0; i < 1024; i++)
        ASSERT_EQ(Tile.pTileMask[i], 1u);
    EXPECT_EQ(slot->apControl[1]->FileSelect.pszFileList, nullptr);
    EXPECT_EQ(slot->apControl[1]->FileSelect.szCurrentFile[CONTROL_TEXT - 1], 0);
    EXPECT_EQ(slot->apControl[2]->ItemSelect.nItems, 0u);
    EXPECT_EQ(slot->apControl[2]->Base.pDependsOn, slot->apControl[0]);
    const ControlRecord *pctlWild = slot->apControl[3];
    EXPECT_EQ(pctlWild->Base.pDependsOn, nullptr);
    EXPECT_EQ(pctlWild->Base.szDescription[CONTROL_TEXT - 1], 0);
    EXPECT_EQ(pctlWild->Base.szName[CONTROL_TEXT - 1], 0);
    NameText szName;
    ControlDottedName(pctlWild, szName);
    EXPECT_EQ(TextLength(szName, NAME_CHARS), 259u);
    EXPECT_TRUE(ControlIsDefault(pctlWild));
    ClampControl(slot->apControl[3]);
    RestoreControlDefaults(slot->apControl[3]);
    EvaluateControls(slot.get(), true);
}

// What is not freed shows as a leak, what is freed twice or wrongly stops the test, under the address sanitizer.
TEST(ControlManager, FreeingAControlFreesWhatItOwnsAndNothingElse)
{
    static const char16_t szText[] = u"row";
    static ItemSelectRow aRow[] = {{szText, 0, 0}};
    for (const u32 bOwns : {0u, 1u}) {
        ControlRecord *pctl = NewControl();
        pctl->Base.dwType = CONTROLTYPE_ITEMSELECT;
        ItemSelectRow *pOwned = static_cast<ItemSelectRow *>(calloc(2, sizeof(ItemSelectRow)));
        pOwned[1].pszText = CopyOfText(szText);
        pctl->ItemSelect = {bOwns ? 2u : 1u, 0, 0, bOwns, bOwns ? pOwned : aRow};
        FreeControl(pctl);
        if (!bOwns) {
            free(const_cast<char16_t *>(pOwned[1].pszText));
            free(pOwned);
        }
    }
    BuiltSlot slot = SlotOfType(CONTROLTYPE_FILESELECT);
    SetFileList(slot->apControl[0], CopyOfText(u"a\r\nb"));
    EvaluateControl(slot->apControl[0], true);
    SetFileList(slot->apControl[0], CopyOfText(u"c"));
    EvaluateControl(slot->apControl[0], true);
    EXPECT_EQ(std::u16string(slot->apControl[0]->FileSelect.szCurrentFile), u"c");
}

TEST(ControlManager, LimitsHoldTheCurrentFieldsAndOrderNothing)
{
    BuiltSlot integer = SlotOfType(CONTROLTYPE_INTEGER);
    ControlInteger &Int = integer->apControl[0]->Integer;
    Int.nMin = 1000;
    Int.nMax = -1000;
    Int.nValue = std::numeric_limits<i32>::min();
    ClampControl(integer->apControl[0]);
    EXPECT_EQ(Int.nMin, 50);
    EXPECT_EQ(Int.nMax, -50);
    EXPECT_EQ(Int.nValue, -50);

    BuiltSlot real = SlotOfType(CONTROLTYPE_FLOAT);
    ControlFloat &Float = real->apControl[0]->Float;
    Float.fMin = NAN;
    Float.fMax = -INFINITY;
    Float.fValue = 6;
    ClampControl(real->apControl[0]);
    EXPECT_EQ(Float.fMin, -5.0f);
    EXPECT_EQ(Float.fMax, -5.0f);
    EXPECT_EQ(Float.fValue, 5.0f);

    BuiltSlot boolean = SlotOfType(CONTROLTYPE_BOOLEAN);
    boolean->apControl[0]->Boolean.fThreshold = NAN;
    ClampControl(boolean->apControl[0]);
    EXPECT_EQ(boolean->apControl[0]->Boolean.fThreshold, 0.0f);

    BuiltSlot tile = SlotOfType(CONTROLTYPE_TILE);
    tile->apControl[0]->Tile.nXTiles = 0;
    tile->apControl[0]->Tile.nYTiles = 4000000000u;
    ClampControl(tile->apControl[0]);
    EXPECT_EQ(tile->apControl[0]->Tile.nXTiles, 1u);
    EXPECT_EQ(tile->apControl[0]->Tile.nYTiles, 32u);
}

TEST(ControlManager, OnlyWhatTheSourceUsesCountsAsAChange)
{
    for (const EditCase &c : asEdit) {
        constexpr u32 adwSource[] = {FLUIDSOURCE_FIXED, FLUIDSOURCE_RANDOM, FLUIDSOURCE_WAVE};
        for (size_t i = 0; i < std::size(adwSource); i++) {
            const bool bChanged = c.pszExpected[i] == 'y';
            BuiltSlot slot = SlotOfType(c.dwType);
            ControlRecord *pctl = slot->apControl[0];
            pctl->Base.dwDefaultSource = pctl->Base.dwSource = adwSource[i];
            c.pfnEdit(pctl);
            EXPECT_EQ(ControlIsDefault(pctl), !bChanged) << c.pszWhat << " under source " << adwSource[i];
            EXPECT_EQ(CountChangedControls(slot.get()), bChanged) << c.pszWhat;
        }
    }
}

TEST(ControlManager, RestoringUndoesEveryEditButThePhaseAndTheList)
{
    for (const EditCase &c : asEdit) {
        BuiltSlot slot = SlotOfType(c.dwType);
        ControlRecord *pctl = slot->apControl[0];
        const ControlRecord ctlBefore = *pctl;
        pctl->Base.dwSource = FLUIDSOURCE_SOUND;
        c.pfnEdit(pctl);
        RestoreControlDefaults(pctl);
        EXPECT_EQ(memcmp(pctl, &ctlBefore, sizeof ctlBefore) == 0, c.pszExpected[3] == 'y') << c.pszWhat;
        EXPECT_TRUE(c.dwType != CONTROLTYPE_TILE || pctl->Tile.pTileMask[1023] == 1u) << c.pszWhat;
    }
}

TEST(ControlManager, AnItemSelectOffersNoAnimatedSourceWhateverItsMaskSays)
{
    ControlRecord ctl = {};
    ctl.Base.dwType = CONTROLTYPE_INTEGER;
    ctl.Base.dwSourceMask = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM;
    EXPECT_FALSE(ControlSupportsFluidSources(&ctl));
    ctl.Base.dwSourceMask |= FLUIDSOURCE_PERIODIC;
    EXPECT_TRUE(ControlSupportsFluidSources(&ctl));
    ctl.Base.dwType = CONTROLTYPE_ITEMSELECT;
    EXPECT_FALSE(ControlSupportsFluidSources(&ctl));
}

TEST(ControlManager, DependenciesCompareWithATolerance)
{
    ControlRecord ctlOther = {}, ctl = {};
    ctlOther.Base.dwType = CONTROLTYPE_FLOAT;
    ctlOther.Base.dwSource = FLUIDSOURCE_FIXED;
    ctl.Base.pDependsOn = &ctlOther;
    const f32 afDistance[] = {-1, -0.000002f, -0.0000005f, 0, 0.0000005f, 0.000002f, 1};
    // One letter per distance: is the control active?
    const char *apszActive[] = {"..yyy..", "yy...yy", ".....yy", "yy.....", "yyyyy..", "..yyyyy", "yyyyyyy"};
    for (u32 dwOp = 0; dwOp < std::size(apszActive); dwOp++)
        for (size_t i = 0; i < std::size(afDistance); i++) {
            ctlOther.Float.fValue = afDistance[i];
            ctl.Base.dwDependOp = dwOp;
            EXPECT_EQ(ControlIsActive(&ctl), apszActive[dwOp][i] == 'y') << dwOp << " at " << afDistance[i];
        }
}

TEST(ControlManager, DependenciesReadTheValueOfTheirTypeWhileItIsFixed)
{
    ControlRecord ctlOther = {}, ctl = {};
    ctlOther.Base.dwSource = FLUIDSOURCE_FIXED;
    ctl.Base.dwDependOp = DEPENDOP_EQUAL;
    ctl.Base.nDependValue = 7;
    ctl.Base.fDependValue = 0.5f;
    EXPECT_TRUE(ControlIsActive(&ctl));
    ctl.Base.pDependsOn = &ctlOther;
    const std::function<void(bool)> apfnSet[CONTROLTYPE_BOOLEAN + 1] = {
        {},
        {},
        [&](bool b) { ctlOther.Integer.nValue = b ? 7 : -7; },
        [&](bool b) { ctlOther.ItemSelect.nCurrentItemValue = b ? 7 : 8; },
        [&](bool b) { ctlOther.Float.fValue = b ? 0.5f : 7; },
        [&](bool b) { ctlOther.Boolean.bState = b ? 7 : 0; },
    };
    for (u32 dwType = CONTROLTYPE_INTEGER; dwType <= CONTROLTYPE_BOOLEAN; dwType++) {
        ctlOther.Base.dwType = dwType;
        apfnSet[dwType](true);
        EXPECT_TRUE(ControlIsActive(&ctl)) << TypeOf(&ctlOther).pszName;
        apfnSet[dwType](false);
        EXPECT_FALSE(ControlIsActive(&ctl)) << TypeOf(&ctlOther).pszName;
    }
    ctlOther.Base.dwSource = FLUIDSOURCE_WAVE;
    EXPECT_TRUE(ControlIsActive(&ctl));
    ctlOther.Base.dwSource = FLUIDSOURCE_FIXED;
    ctlOther.Base.dwType = CONTROLTYPE_TILE;
    EXPECT_TRUE(ControlIsActive(&ctl));
}

TEST(ControlManager, DottedNamesJoinTheComponentsAndFitTheirField)
{
    EXPECT_EQ(DottedName(std::u16string_view(u"Outer\0Inner\0Speed\0", 18)), u"Outer.Inner.Speed");
    EXPECT_EQ(DottedName(u"Speed"), u"Speed");
    EXPECT_EQ(DottedName(u""), u"");
    EXPECT_EQ(DottedName(std::u16string_view(u"Speed\0\0Lost", 11)), u"Speed");
    EXPECT_EQ(DottedName(std::u16string(300, u'x')), std::u16string(259, u'x'));
    std::u16string list(CONTROL_TEXT, u'x');
    for (size_t i = 1; i < list.size(); i += 2)
        list[i] = 0;
    std::u16string joined = list;
    std::replace(joined.begin(), joined.end(), u'\0', u'.');
    EXPECT_EQ(DottedName(list), joined.substr(0, 259));
}
