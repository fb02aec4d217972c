// SettingsTable.cpp -- one row per stored setting: its tag, default, limits, and what reads and writes it
#include "app/SettingsTable.h"

#include "app/KeptLayout.h"
#include "output/RecorderCombos.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "toolkit/UIColors.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

SettingsHooks SettingsHook = {KeepLayout, WriteKeptLayout, nullptr};

namespace {

constexpr i32 INT_LOWEST = std::numeric_limits<i32>::min();
constexpr i32 INT_HIGHEST = std::numeric_limits<i32>::max();
constexpr i32 FRAME_SIDE_MIN = 128; // of recorded frames; limits of the buffer
constexpr i32 FRAME_SIDE_MAX = 8192;

enum class Kind : u32 { Number, Text, Block };

// What happens to a number outside nMin to nMax.
enum class Limit : u32 {
    Nearest, // becomes the nearer of the two
    Ignore,  // the setting stays as it is
    Either,  // anything but the two numbers themselves is ignored
    Switch,  // any number but 0 becomes 1
};

struct SettingRow {
    const char16_t *pszTag;
    Kind eKind;
    u32 cbOffset;              // of the field in GlobalSettingsRecord
    const char16_t *pszBranch; // branch around the row; null: none. Rows of one branch stand together
    Limit eLimit;
    i32 nDefault, nMin, nMax;
    const char16_t *pszDefault;
    PathRow eDefaultPath; // PATH_ROWS: pszDefault
    void (*pfnDefault)(); // the functions of a block
    void (*pfnRead)(XmlContext *pxc, GlobalSettingsRecord *pgs);
    void (*pfnWrite)(XmlContext *pxc);
};

void ReadCombos(XmlContext *pxc, GlobalSettingsRecord *pgs);
void WriteCombos(XmlContext *pxc);
void ReadColors(XmlContext *pxc, GlobalSettingsRecord *pgs);
void WriteColors(XmlContext *pxc);
void ReadWindowLayout(XmlContext *pxc, GlobalSettingsRecord *pgs);
void WriteWindowLayout(XmlContext *pxc);

template <typename T> constexpr u32 NumberOffset(u32 cb)
{
    static_assert(std::is_same_v<T, i32> || std::is_same_v<T, u32>);
    return cb;
}

constexpr SettingRow NumberRow(const char16_t *pszTag, u32 cbOffset, i32 nDefault, Limit eLimit, i32 nMin, i32 nMax,
                               const char16_t *pszBranch = nullptr)
{
    return {pszTag, Kind::Number, cbOffset,  pszBranch, eLimit,  nDefault, nMin,
            nMax,   nullptr,      PATH_ROWS, nullptr,   nullptr, nullptr};
}

constexpr SettingRow TextRow(const char16_t *pszTag, u32 cbOffset, const char16_t *pszDefault,
                             PathRow ePath = PATH_ROWS)
{
    return {pszTag, Kind::Text, cbOffset, nullptr, Limit::Ignore, 0,      0,
            0,      pszDefault, ePath,    nullptr, nullptr,       nullptr};
}

constexpr SettingRow BlockRow(void (*pfnDefault)(), void (*pfnRead)(XmlContext *, GlobalSettingsRecord *),
                              void (*pfnWrite)(XmlContext *))
{
    return {nullptr, Kind::Block, 0,         nullptr,    Limit::Ignore, 0,       0,
            0,       nullptr,     PATH_ROWS, pfnDefault, pfnRead,       pfnWrite};
}

#define FIELD(name) u"" #name, NumberOffset<decltype(GlobalSettingsRecord::name)>(offsetof(GlobalSettingsRecord, name))
#define TEXT_FIELD(name) u"" #name, offsetof(GlobalSettingsRecord, name)

constexpr SettingRow asRow[] = {
    NumberRow(FIELD(PresetBView), 3, Limit::Either, 1, 3),
    NumberRow(FIELD(ShowModules), 0, Limit::Switch, 0, 1),
    NumberRow(FIELD(SnapToEdge), 0, Limit::Switch, 0, 1),
    NumberRow(FIELD(DetailScale), 100, Limit::Nearest, 10, 100),
    NumberRow(FIELD(BufferCap), BUFFER_PIXELS_MAX, Limit::Nearest, BUFFER_PIXELS_MIN, BUFFER_PIXELS_MAX),
    NumberRow(FIELD(FPSTarget), 60, Limit::Nearest, 20, 480),
    NumberRow(FIELD(ThreadedPlanes), 1, Limit::Switch, 0, 1),
    NumberRow(FIELD(MixInParallel), 0, Limit::Switch, 0, 1),
    NumberRow(FIELD(AutoAdjustBuffer), 1, Limit::Switch, 0, 1),
    NumberRow(FIELD(AutoAdjustBufferCap), 0, Limit::Nearest, INT_LOWEST, INT_HIGHEST),
    NumberRow(FIELD(FrameThickness), 0, Limit::Nearest, 0, 32),
    NumberRow(FIELD(VolumeType), VOLUMETYPE_DYNAMIC_SIMULATED, Limit::Ignore, VOLUMETYPE_RAW,
              VOLUMETYPE_DYNAMIC_SIMULATED),
    NumberRow(FIELD(TimeScale), 1, Limit::Nearest, 1, TIME_SCALE_MAX),
    TextRow(TEXT_FIELD(Preset), u"Tempname.VD"),
    TextRow(TEXT_FIELD(FrameRecordFormat), u"Untitled-%04d.png"),
    TextRow(TEXT_FIELD(FrameRecordFolder), nullptr, PATH_SCREENSHOTS),
    NumberRow(FIELD(FrameRecordWidth), 640, Limit::Nearest, FRAME_SIDE_MIN, FRAME_SIDE_MAX),
    NumberRow(FIELD(FrameRecordHeight), 480, Limit::Nearest, FRAME_SIDE_MIN, FRAME_SIDE_MAX),
    NumberRow(FIELD(FrameRecordDelay), 500, Limit::Ignore, 0, 10000),
    NumberRow(FIELD(FrameRecordMethod), 0, Limit::Nearest, 0, 1),
    TextRow(TEXT_FIELD(FriendlyName), u""),
    TextRow(TEXT_FIELD(FrameRecordStart), u""),
    TextRow(TEXT_FIELD(FrameRecordStop), u""),
    BlockRow(nullptr, ReadCombos, WriteCombos),
    BlockRow(nullptr, ReadWindowLayout, WriteWindowLayout),
    NumberRow(FIELD(ShowMP), 1, Limit::Switch, 0, 1, u"PalWin"),
    NumberRow(FIELD(ShowRGB), 0, Limit::Switch, 0, 1, u"PalWin"),
    NumberRow(FIELD(ShowPrg), 1, Limit::Switch, 0, 1, u"PalWin"),
    NumberRow(FIELD(ShowOneRow), 1, Limit::Switch, 0, 1, u"PalWin"),
    BlockRow(SetDefaultUIColors, ReadColors, WriteColors),
};

#undef FIELD
#undef TEXT_FIELD

// The fields are i32 or u32: their bytes are what is read and written here.
i32 *NumberField(GlobalSettingsRecord *pgs, const SettingRow &row)
{
    return reinterpret_cast<i32 *>(reinterpret_cast<u8 *>(pgs) + row.cbOffset);
}

char16_t *TextField(GlobalSettingsRecord *pgs, const SettingRow &row)
{
    return reinterpret_cast<char16_t *>(reinterpret_cast<u8 *>(pgs) + row.cbOffset);
}

i32 LimitNumber(const SettingRow &row, i32 nValue, i32 nBefore)
{
    switch (row.eLimit) {
    case Limit::Nearest:
        return std::clamp(nValue, row.nMin, row.nMax);
    case Limit::Ignore:
        return nValue >= row.nMin && nValue <= row.nMax ? nValue : nBefore;
    case Limit::Either:
        return nValue == row.nMin || nValue == row.nMax ? nValue : nBefore;
    case Limit::Switch:
        return nValue != 0;
    }
    return nBefore;
}

void DefaultRow(const SettingRow &row, GlobalSettingsRecord *pgs)
{
    if (row.eKind == Kind::Number)
        *NumberField(pgs, row) = row.nDefault;
    else if (row.eKind == Kind::Text)
        CopyText(TextField(pgs, row), NAME_CHARS,
                 row.eDefaultPath == PATH_ROWS ? row.pszDefault : FolderPath(row.eDefaultPath));
    else if (row.pfnDefault)
        row.pfnDefault();
}

void ReadRow(const SettingRow &row, XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    i32 nValue = 0;
    if (row.eKind == Kind::Block)
        row.pfnRead(pxc, pgs);
    else if (row.eKind == Kind::Text)
        XmlReadString(pxc, row.pszTag, TextField(pgs, row), NAME_CHARS);
    else if (XmlReadInt(pxc, row.pszTag, &nValue))
        *NumberField(pgs, row) = LimitNumber(row, nValue, *NumberField(pgs, row));
}

void WriteRow(const SettingRow &row, XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    if (row.eKind == Kind::Block)
        row.pfnWrite(pxc);
    else if (row.eKind == Kind::Text)
        XmlWriteString(pxc, row.pszTag, TextField(pgs, row));
    else
        XmlWriteInt(pxc, row.pszTag, LimitNumber(row, *NumberField(pgs, row), row.nDefault));
}

// Runs over the rows; pfnEnter and pfnLeave stand around those of one branch. A branch that cannot be entered is
// passed over.
template <typename Enter, typename Leave, typename Row> void ForEachRow(Enter enter, Leave leave, Row visit)
{
    for (auto it = std::begin(asRow); it != std::end(asRow);) {
        const auto itEnd =
            std::find_if(it, std::end(asRow), [&](const SettingRow &r) { return r.pszBranch != it->pszBranch; });
        const bool bInside = !it->pszBranch || enter(it->pszBranch);
        std::for_each(it, bInside ? itEnd : it, visit);
        if (it->pszBranch && bInside)
            leave();
        it = itEnd;
    }
}

void ReadCombos(XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    PrepareRecorderCombos();
    const u32 bInside = XmlEnterTag(pxc, u"ScreenRecorders");
    for (u32 i = 0; bInside && i < RECORDER_COMBOS_MAX && XmlEnterTag(pxc, NumberedTag(u"Combo", i)); i++) {
        RecorderCombo combo = {};
        XmlReadString(pxc, u"Name", combo.szName);
        XmlReadString(pxc, u"Start", combo.szStart);
        XmlReadString(pxc, u"Stop", combo.szStop);
        AddRecorderCombo(combo.szName, combo.szStart, combo.szStop);
        XmlLeaveTag(pxc);
    }
    if (bInside)
        XmlLeaveTag(pxc);
    if (pgs->FrameRecordStart[0] && pgs->FrameRecordStop[0]) {
        SetCurrentCombo(pgs->FrameRecordStart, pgs->FrameRecordStop);
    } else {
        CopyText(pgs->FrameRecordStart, CurrentCombo.szStart);
        CopyText(pgs->FrameRecordStop, CurrentCombo.szStop);
    }
}

void WriteCombos(XmlContext *pxc)
{
    XmlBeginTag(pxc, u"ScreenRecorders");
    for (u32 i = 0; i < RecorderCombos.nCount; i++) {
        XmlBeginTag(pxc, NumberedTag(u"Combo", i));
        XmlWriteString(pxc, u"Name", RecorderCombos.asCombo[i].szName);
        XmlWriteString(pxc, u"Start", RecorderCombos.asCombo[i].szStart);
        XmlWriteString(pxc, u"Stop", RecorderCombos.asCombo[i].szStop);
        XmlEndTag(pxc);
    }
    XmlEndTag(pxc);
}

std::u16string ColorTag(u32 iRow)
{
    std::u16string tag = UIColorTable[iRow].pszName;
    std::replace(tag.begin(), tag.end(), u' ', u'_');
    return tag;
}

void ReadColors(XmlContext *pxc, GlobalSettingsRecord *)
{
    if (!XmlEnterTag(pxc, u"UIColors"))
        return;
    for (u32 i = 0; i < UICOLORS; i++) {
        u32 dwColor = 0;
        if (XmlReadInt(pxc, ColorTag(i), &dwColor))
            SetUIColor(i, dwColor);
    }
    XmlLeaveTag(pxc);
}

void WriteColors(XmlContext *pxc)
{
    XmlBeginTag(pxc, u"UIColors");
    for (u32 i = 0; i < UICOLORS; i++)
        XmlWriteInt(pxc, ColorTag(i), UIColorTable[i].dwColor);
    XmlEndTag(pxc);
}

void ReadWindowLayout(XmlContext *pxc, GlobalSettingsRecord *)
{
    SettingsHook.pfnReadLayout(pxc);
}

void WriteWindowLayout(XmlContext *pxc)
{
    SettingsHook.pfnWriteLayout(pxc);
}

} // namespace

void SetDefaultSettings()
{
    ASSERT_MAIN_THREAD();
    GlobalSettings = {};
    for (const SettingRow &row : asRow)
        DefaultRow(row, &GlobalSettings);
    GlobalSettings.nBufferWidth = 1280;
    GlobalSettings.nBufferHeight = 1024;
    GlobalSettings.nMessageSeconds = 5;
    GlobalSettings.dwPlaneWaitMs = 4000;
    GlobalSettings.hwndVisuals.cbSize = sizeof(HostWindow);
}

void ReadSettings(XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    ASSERT_MAIN_THREAD();
    ForEachRow([=](const char16_t *pszBranch) { return XmlEnterTag(pxc, pszBranch) != 0; }, [=] { XmlLeaveTag(pxc); },
               [=](const SettingRow &row) { ReadRow(row, pxc, pgs); });
}

void WriteSettings(XmlContext *pxc, const GlobalSettingsRecord *pgs)
{
    ASSERT_MAIN_THREAD();
    GlobalSettingsRecord gs = *pgs;
    ForEachRow([=](const char16_t *pszBranch) { return XmlBeginTag(pxc, pszBranch) != 0; }, [=] { XmlEndTag(pxc); },
               [&, pxc](const SettingRow &row) { WriteRow(row, pxc, &gs); });
}
