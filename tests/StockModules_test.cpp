// StockModules_test.cpp -- every module of the stock folder, whatever it is: odd sizes, resets, wild controls
#include "controls/FluidSources.h"
#include "modules/HiddenGLWindows.h"
#include "modules/OpenGLTest.h"
#include "modules/ShaderList.h"
#include "platform/Files.h"
#include "platform/GLWindow.h"
#include "platform/Threads.h"
#include "tests/EngineFixture.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <string_view>

namespace {

struct Size {
    i32 nWidth;
    i32 nHeight;
};
constexpr Size asSize[] = {{128, 128}, {1, 1}, {257, 129}, {7, 333}, {640, 3}, {130, 131}};

// Shader files are hosted alike, and ShaderDrawing_test draws each of them: a few stand for all.
constexpr u32 SHADERS_HOSTED = 3;

// A list that accepts a module.
struct Place {
    ModuleRecord *pmr;
    u32 dwShader; // number plus one
    i32 iPlane;   // -1: post-processing
    u32 dwModuleType;
    u32 bIndexed;
};

constexpr u32 adwKindBit[] = {MODULECAP_COLORINTERPOLATOR,
                              MODULECAP_COLORGENERATOR,
                              MODULECAP_COLOREFFECT,
                              MODULECAP_FULL,
                              MODULECAP_PAINTER,
                              MODULECAP_EFFECT,
                              MODULECAP_FULL,
                              MODULECAP_PAINTER,
                              MODULECAP_EFFECT};

bool ListAccepts(const ModuleDescription &md, u32 dwModuleType, u32 bIndexed)
{
    const bool bColor = dwModuleType <= MODULEINDEX_COLOREFFECT;
    const bool bOverlay = dwModuleType >= MODULEINDEX_OVERLAYFULL;
    const u32 dwPlaneBit = bColor ? 0u : bIndexed && !bOverlay ? u32{MODULECAP_INDEXED} : u32{MODULECAP_RGB};
    const u32 dwNeeded = adwKindBit[dwModuleType] | dwPlaneBit;
    return md.dwClass == u32{bColor ? MODULECLASS_COLOR : MODULECLASS_DRAWING} &&
           (md.dwCapabilities & dwNeeded) == dwNeeded;
}

class StockModules : public EngineTest {
  protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        InitFolders({u"/nowhere/vorticade", FromUtf8(SOURCE_FOLDER) + u"/data", FromUtf8(STOCK_MODULE_FOLDER)});
        nTestModules = ModuleCount();
        LoadModuleFolder();
        ASSERT_GT(ModuleCount(), nTestModules) << "there is no stock module in " STOCK_MODULE_FOLDER;
        ProbeOpenGL();
        GlobalSettings.bVisualsWindow = 1;
        ASSERT_FALSE(AllPlaces().empty());
    }
    void TearDown() override
    {
        GlobalSettings.bRecording = 0;
        EngineTest::TearDown();
        FreeShaderList();
        CloseGLDisplay();
    }

    // Every list, of both kinds of plane, for every module that can be used here.
    std::vector<Place> AllPlaces() const
    {
        std::vector<Place> as;
        for (u32 i = nTestModules; i < ModuleCount(); i++) {
            ModuleRecord *pmr = GetModuleRecord(i);
            const bool bShader = ContainsNoCase(pmr->md.szName, u"GLSL Shader");
            for (u32 n = bShader; !pmr->md.bUnavailable && (n == 0 || GetShaderEntry(n - 1)) && n <= SHADERS_HOSTED;
                 n++) {
                AddPlacesOf(pmr, n, &as);
                if (!bShader)
                    break;
            }
        }
        return as;
    }
    static void AddPlacesOf(ModuleRecord *pmr, u32 dwShader, std::vector<Place> *pas)
    {
        for (u32 dwType = 0; dwType < MODULEINDEX_MIXER; dwType++)
            for (u32 bIndexed : {1u, 0u})
                if (ListAccepts(pmr->md, dwType, bIndexed))
                    pas->push_back({pmr, dwShader, 0, dwType, bIndexed});
        if (!dwShader && ListAccepts(pmr->md, MODULEINDEX_OVERLAYEFFECT, 0))
            pas->push_back({pmr, 0, -1, MODULEINDEX_NUMINDICIES, 0});
    }

    // A preset of one plane with the default colour modules, where there are such, and the module in its list.
    ModuleSlot *Host(const Place &place)
    {
        DestroyPresetState(lppsi);
        SeedAllRandom(5);
        ForgetSoundRange();
        MakePreset(1, place.bIndexed);
        if (place.dwModuleType != MODULEINDEX_COLORINTERPOLATOR)
            AddModule(lppsi, u"CMShift.dll", 0, MODULEINDEX_COLORINTERPOLATOR, 0, 1);
        if (place.dwModuleType != MODULEINDEX_COLORGENERATOR)
            AddModule(lppsi, u"CMBreed.dll", 0, MODULEINDEX_COLORGENERATOR, 0, 1);
        return AddModule(lppsi, place.pmr->szDll, place.iPlane, place.dwModuleType, place.dwShader, 1);
    }
    // The recorder's size is taken as it stands, down to a single pixel.
    void Resize(Size size)
    {
        GlobalSettings.bRecording = 1;
        GlobalSettings.FrameRecordWidth = size.nWidth;
        GlobalSettings.FrameRecordHeight = size.nHeight;
        ResizePresetBuffers(lppsi, GlobalSettings.DetailScale);
        EXPECT_EQ(size.nWidth, lppsi->hbmFinal->nWidth);
    }
    // Frames of 40 ms.
    void Frames(int n)
    {
        for (int i = 0; i < n; i++)
            EXPECT_EQ(1u, Step(40));
    }

    u32 nTestModules = 0;
};

std::string Describe(const Place &place)
{
    return ToUtf8(place.pmr->szDll) + ", kind " + std::to_string(place.dwModuleType) +
           (place.bIndexed ? ", indexed" : ", colours") +
           (place.dwShader ? ", shader " + ToUtf8(GetShaderEntry(place.dwShader - 1)->szName) : "");
}

std::vector<u32> Pixels(const HostBitmap *hbm)
{
    return {BitmapPixels(hbm), BitmapPixels(hbm) + BitmapBytes(hbm) / sizeof(u32)};
}

void FillWithNoise(HostBitmap *hbm)
{
    std::generate_n(BitmapPixels(hbm), BitmapBytes(hbm) / sizeof(u32), RandomWord);
}

TEST_F(StockModules, LiveThroughOddSizesResetsGarbageAndRemoval)
{
    for (const Place &place : AllPlaces()) {
        SCOPED_TRACE(Describe(place));
        ModuleSlot *pms = Host(place);
        ASSERT_NE(nullptr, pms);
        for (const Size size : asSize) {
            Resize(size);
            Frames(3);
            FillWithNoise(lppsi->psPlane[0]->Info.hbmDraw); // indices that no palette has
            Frames(1);
            pms->bResetPending = 1;
            Frames(2);
            Step(100000000); // a day later
        }
        for (i32 nColors : {0, 1, 2048}) {
            lppsi->psPlane[0]->Info.nColors = nColors;
            Frames(1);
        }
        EXPECT_EQ(1u, RemoveModule(lppsi, pms));
        Frames(1);
    }
}

TEST_F(StockModules, DrawOnlyIndicesThatThePaletteHas)
{
    for (const Place &place : AllPlaces()) {
        if (!place.bIndexed || place.dwModuleType < MODULEINDEX_DRAWFULL || place.dwModuleType > MODULEINDEX_DRAWEFFECT)
            continue;
        SCOPED_TRACE(Describe(place));
        DestroyPresetState(lppsi);
        MakePreset(1);
        PlaneInfo &Info = lppsi->psPlane[0]->Info;
        for (i32 nColors : {1, 2, 97, 256, 2048}) {
            SCOPED_TRACE(nColors);
            Info.nColors = nColors;
            ClearBitmap(Info.hbmDraw);
            ModuleSlot *pms = AddModule(lppsi, place.pmr->szDll, 0, place.dwModuleType, place.dwShader, 1);
            ASSERT_NE(nullptr, pms);
            Frames(5);
            pms->bResetPending = 1;
            Frames(5);
            const std::vector<u32> adwPixel = Pixels(Info.hbmDraw);
            EXPECT_LT(*std::max_element(adwPixel.begin(), adwPixel.end()), static_cast<u32>(nColors));
            RemoveModule(lppsi, pms);
        }
    }
}

// What a file can hold, and what sound does to a range.
void SetWild(ControlRecord *pctl, int iWay)
{
    constexpr i32 nLow = std::numeric_limits<i32>::min(), nHigh = std::numeric_limits<i32>::max();
    pctl->Base.dwSource = FLUIDSOURCE_FIXED;
    switch (pctl->Base.dwType) {
    case CONTROLTYPE_INTEGER: {
        const i32 an[] = {pctl->Integer.nAbsMin, pctl->Integer.nAbsMax, nLow, nHigh};
        pctl->Integer.nValue = an[iWay];
        break;
    }
    case CONTROLTYPE_FLOAT: {
        const f32 af[] = {pctl->Float.fAbsMin, pctl->Float.fAbsMax, -1e30f, 1e30f};
        pctl->Float.fValue = af[iWay];
        break;
    }
    case CONTROLTYPE_ITEMSELECT: {
        const u32 an[] = {0, pctl->ItemSelect.nItems - 1, ALL_ONES, 9998};
        pctl->ItemSelect.nCurrentItemValue = an[iWay];
        break;
    }
    case CONTROLTYPE_BOOLEAN:
        pctl->Boolean.bState = iWay % 2 ? ALL_ONES : 0;
        break;
    case CONTROLTYPE_FILESELECT:
        CopyText(pctl->FileSelect.szCurrentFile, iWay % 2 ? u"/nowhere/no such file" : u"");
        break;
    case CONTROLTYPE_TILE:
        std::fill_n(pctl->Tile.pTileMask, pctl->Tile.nXTiles * pctl->Tile.nYTiles, iWay % 2 ? ALL_ONES : 0u);
        break;
    default:
        break;
    }
}

// 0 and 1 are the ends, 4 and more somewhere between.
constexpr int WAY_LOW = 0, WAY_HIGH = 1, WAY_BETWEEN = 4;

// As the user sets it, or a source inside its range.
void SetInside(ControlRecord *pctl, int iWay)
{
    if (iWay < WAY_BETWEEN)
        return SetWild(pctl, iWay);
    const f32 fPart = UnitRandom();
    ControlInteger &Int = pctl->Integer;
    ControlFloat &Float = pctl->Float;
    SetWild(pctl, fPart < 0.5f ? WAY_LOW : WAY_HIGH);
    if (pctl->Base.dwType == CONTROLTYPE_INTEGER)
        Int.nValue = static_cast<i32>(std::lerp(static_cast<f64>(Int.nAbsMin), static_cast<f64>(Int.nAbsMax), fPart));
    else if (pctl->Base.dwType == CONTROLTYPE_FLOAT)
        Float.fValue = std::lerp(Float.fAbsMin, Float.fAbsMax, fPart);
    else if (pctl->Base.dwType == CONTROLTYPE_ITEMSELECT)
        pctl->ItemSelect.nCurrentItemValue = RandomWord() % pctl->ItemSelect.nItems;
    else if (pctl->Base.dwType == CONTROLTYPE_TILE)
        std::generate_n(pctl->Tile.pTileMask, pctl->Tile.nXTiles * pctl->Tile.nYTiles, [] { return RandomWord() & 1; });
}

void MixControls(ModuleSlot *pms)
{
    std::for_each(pms->apControl, pms->apControl + pms->nControls,
                  [](auto *pctl) { SetInside(pctl, static_cast<int>(RandomWord() % 8)); });
    pms->bResetPending = 1;
}

TEST_F(StockModules, TakeEachControlAtBothOfItsEnds)
{
    for (const Place &place : AllPlaces()) {
        SCOPED_TRACE(Describe(place));
        ModuleSlot *pms = Host(place);
        ASSERT_NE(nullptr, pms);
        Resize({128, 128});
        for (i32 i = 0; i < pms->nControls; i++)
            for (const int iWay : {WAY_LOW, WAY_HIGH, WAY_BETWEEN}) {
                SetInside(pms->apControl[i], iWay);
                Frames(1);
            }
    }
}

// At 1921 x 1081 shaders on a software renderer would take minutes, and overlays draw what planes of colours do.
TEST_F(StockModules, TakeAnyMixOfControlsAtSizesFromOnePixelToBeyondFullHd)
{
    for (const Place &place : AllPlaces()) {
        SCOPED_TRACE(Describe(place));
        ModuleSlot *pms = Host(place);
        ASSERT_NE(nullptr, pms);
        for (const Size size : {Size{1, 1}, {128, 128}, {1921, 1081}, {129, 1}}) {
            if (size.nWidth > 1000 && (place.dwShader || place.dwModuleType >= MODULEINDEX_OVERLAYFULL))
                continue;
            Resize(size);
            Frames(1);
            for (int i = 0; i < (size.nWidth > 1000 ? 1 : 6); i++) {
                MixControls(pms);
                Frames(1);
            }
        }
    }
}

TEST_F(StockModules, TakeControlsFarOutOfTheirRange)
{
    for (const Place &place : AllPlaces()) {
        SCOPED_TRACE(Describe(place));
        ModuleSlot *pms = Host(place);
        ASSERT_NE(nullptr, pms);
        for (int iWay = 0; iWay < 4; iWay++) {
            std::for_each(pms->apControl, pms->apControl + pms->nControls, [=](auto *pctl) { SetWild(pctl, iWay); });
            pms->bResetPending = 1;
            Frames(2);
        }
        for (u32 dwSource : {2u, 4u, 8u, 16u}) {
            for (i32 i = 0; i < pms->nControls; i++)
                pms->apControl[i]->Base.dwSource = dwSource;
            GlobalSettings.pSound->fRawLevel = 9;
            GlobalSettings.TimeScale = dwSource == 4 ? TIME_SCALE_MAX : 1;
            pms->bResetPending = 1;
            Frames(6);
        }
        GlobalSettings.TimeScale = 1;
    }
}

TEST_F(StockModules, DrawTheSamePictureFromTheSameSeed)
{
    for (const Place &place : AllPlaces()) {
        SCOPED_TRACE(Describe(place));
        std::vector<u32> aadwPicture[2];
        for (std::vector<u32> &adwPicture : aadwPicture) {
            const u64 qwStart = 1000000;
            SetFixedTick(qwStart);
            ModuleSlot *pms = Host(place);
            ASSERT_NE(nullptr, pms);
            Frames(8);
            pms->bResetPending = 1;
            Frames(8);
            adwPicture = Pixels(*lppsi->phbmOutput);
        }
        EXPECT_EQ(aadwPicture[0], aadwPicture[1]);
    }
}

// Fills both planes with everything, and gives the picture after some frames.
class StockModulesTogether : public StockModules {
  protected:
    std::vector<u32> Picture(u32 bThreads)
    {
        DestroyPresetState(lppsi);
        SeedAllRandom(7);
        SetFixedTick(2000000);
        GlobalSettings.ThreadedPlanes = bThreads;
        GlobalSettings.dwPlaneWaitMs = WAIT_FOREVER;
        lppsi = CreatePresetState(0);
        std::vector<ModuleSlot *> apms;
        for (i32 iPlane = 0; iPlane < 3; iPlane++) {
            AddPlane(lppsi, iPlane != 2, 0);
            for (const Place &place : AllPlaces())
                if (place.iPlane == 0 && place.bIndexed == (iPlane != 2))
                    apms.push_back(AddModule(lppsi, place.pmr->szDll, iPlane, place.dwModuleType, place.dwShader, 1));
        }
        AddMixRule(lppsi)->MixOp = MIXOP_TILE_PLANES;
        Frames(3);
        std::for_each(apms.begin(), apms.end(), MixControls);
        Resize({128, 128});
        Frames(3);
        std::vector<u32> adw;
        for (i32 i = 0; i < lppsi->nPlanes; i++) {
            const std::vector<u32> adwPlane = Pixels(lppsi->psPlane[i]->Info.hbmResolved);
            adw.insert(adw.end(), adwPlane.begin(), adwPlane.end());
        }
        return adw;
    }
};

TEST_F(StockModulesTogether, InstancesOnSeveralPlanesDoNotDisturbEachOther)
{
    const std::vector<u32> adwAlone = Picture(0);
    EXPECT_EQ(adwAlone, Picture(1)) << "with a thread for each plane";
    EXPECT_NE(0, std::count_if(adwAlone.begin(), adwAlone.end(), [](u32 dw) { return dw & 0xFFFFFF; }))
        << "there is a picture";
}

} // namespace
