// PaletteBrowser.cpp -- the palettes of a folder, one row each: finding and reading them, their strips, what is chosen
#include "toolkit/PaletteBrowser.h"

#include "platform/Clock.h"
#include "platform/FileFacts.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "stock/shared/PaletteFile.h"

#include <algorithm>
#include <limits>
#include <utility>

std::u16string szPaletteFolder;
u32 bInterpolatePalettes = 1;

namespace {

constexpr std::string_view PALETTE_PARTS[] = {".pal", ".col"};
constexpr char16_t OWN_PALETTES[] = u"%EXE_BASEFOLDER%\\Palettes";
constexpr u32 NAMES_BETWEEN_LOOKS = 64; // at the clock
constexpr size_t ROWS_SORTED_AT_ONCE = 4096;
constexpr i32 NAME_PERCENT = 15, PALETTE_PERCENT = 85;

std::u16string FolderPart(std::u16string_view path)
{
    return std::u16string(path.substr(0, path.size() - NameAndExtension(path).size()));
}

bool HoldsNoCase(std::string_view name, std::string_view part)
{
    const auto fold = [](char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + 32) : ch; };
    const auto same = [&](char a, char b) { return fold(a) == b; };
    return std::search(name.begin(), name.end(), part.begin(), part.end(), same) != name.end();
}

bool IsPaletteName(std::string_view name)
{
    return std::ranges::any_of(PALETTE_PARTS, [&](std::string_view part) { return HoldsNoCase(name, part); });
}

// Rows that follow each other mostly share their folder.
u32 FolderPlace(PaletteList *pList, std::u16string_view folder)
{
    if (pList->folders.empty() || pList->folders.back() != folder)
        pList->folders.emplace_back(folder);
    return static_cast<u32>(pList->folders.size() - 1);
}

u32 AddRow(PaletteList *pList, u32 iFolder, std::string_view name)
{
    if (pList->sNames.size() + name.size() > std::numeric_limits<u32>::max())
        return 0;
    pList->rows.push_back({iFolder, static_cast<u32>(pList->sNames.size()), static_cast<u32>(name.size()), 0});
    pList->sNames += name;
    return 1;
}

std::string_view NameOf(const PaletteList &list, const PaletteRow &row)
{
    return std::string_view(list.sNames).substr(row.iName, row.cbName);
}

// Appends rows of which none was read, and leaves none behind.
void MoveRows(PaletteList *pFrom, PaletteList *pTo)
{
    if (pTo->rows.empty())
        return std::swap(*pFrom, *pTo);
    for (const PaletteRow &row : pFrom->rows)
        AddRow(pTo, FolderPlace(pTo, pFrom->folders[row.iFolder]), NameOf(*pFrom, row));
    EmptyPaletteList(pFrom);
}

u32 Pixel(const PaletteEntry &entry, i32 i)
{
    return 0xFF000000u | static_cast<u32>(entry.abRed[i] << 16 | entry.abGreen[i] << 8 | entry.abBlue[i]);
}

void Interpolate(PaletteEntry *pEntry)
{
    if (pEntry->nColors == PALETTE_COLORS_MAX)
        return;
    for (u8 *pGun : {pEntry->abRed, pEntry->abGreen, pEntry->abBlue})
        InterpolatePalette(pGun, pEntry->nColors);
    pEntry->nColors = PALETTE_COLORS_MAX;
}

} // namespace

std::u16string PaletteStartFolder(std::u16string_view given)
{
    std::u16string folder(given);
    if (given.empty())
        folder = FolderPart(ProgramPath());
    else if (!FolderExists(given)) {
        folder = ExpandVariables(OWN_PALETTES);
        if (folder == OWN_PALETTES)
            folder = FolderPart(given);
    }
    return FromUtf8(NativePath(WithoutTrailingSeparators(folder)));
}

u32 FillPaletteList(PaletteList *pList)
{
    PaletteWalk walk(pList);
    while (walk.Look(std::numeric_limits<i64>::max()))
        ;
    return walk.Finish();
}

u32 AddPaletteRow(PaletteList *pList, std::u16string_view path)
{
    const std::u16string whole = WithoutTrailingSeparators(path); // a folder that was dropped may end in one
    return AddRow(pList, FolderPlace(pList, FolderPart(whole)), ToUtf8(NameAndExtension(whole)));
}

void EmptyPaletteList(PaletteList *pList)
{
    *pList = {};
}

void ListPaletteFiles(PaletteList *pList, std::span<const std::u16string> paths)
{
    EmptyPaletteList(pList);
    szPaletteFolder.clear();
    for (const std::u16string &path : paths)
        AddPaletteRow(pList, path);
    if (!pList->folders.empty())
        szPaletteFolder = WithoutTrailingSeparators(pList->folders.front());
}

PaletteWalk::PaletteWalk(PaletteList *pList) : pTo(pList), pWalk(OpenFolderWalk(szPaletteFolder))
{
    found.folders.push_back(szPaletteFolder);
}

PaletteWalk::~PaletteWalk()
{
    CloseFolderWalk(pWalk);
}

u32 PaletteWalk::Look(i64 nNanoseconds)
{
    const i64 nStart = RealNanoseconds();
    while (pWalk) {
        LookAtNames();
        if (found.rows.size() - runs.back() >= ROWS_SORTED_AT_ONCE)
            SortNewRows();
        if (RealNanoseconds() - nStart >= nNanoseconds)
            break;
    }
    return pWalk != nullptr;
}

u32 PaletteWalk::Finish()
{
    SortNewRows();
    while (runs.size() > 2)
        MergeLastRuns();
    const size_t nBefore = pTo->rows.size();
    MoveRows(&found, pTo);
    return static_cast<u32>(pTo->rows.size() - nBefore);
}

// Sorts while it walks: a run of rows is merged with the one before it when it is as long, so none is merged often.
void PaletteWalk::SortNewRows()
{
    const auto nameOf = [this](const PaletteRow &row) { return NameOf(found, row); };
    std::ranges::sort(found.rows.begin() + static_cast<i64>(runs.back()), found.rows.end(), {}, nameOf);
    runs.push_back(found.rows.size());
    const auto length = [this](i64 iFromLast) { return runs.end()[-iFromLast] - runs.end()[-iFromLast - 1]; };
    while (runs.size() > 2 && length(1) >= length(2))
        MergeLastRuns();
}

void PaletteWalk::MergeLastRuns()
{
    const auto place = [this](i64 iFromLast) { return found.rows.begin() + static_cast<i64>(runs.end()[-iFromLast]); };
    std::ranges::inplace_merge(place(3), place(2), place(1), {},
                               [this](const PaletteRow &row) { return NameOf(found, row); });
    runs.erase(runs.end() - 2);
}

void PaletteWalk::LookAtNames()
{
    for (u32 i = 0; i < NAMES_BETWEEN_LOOKS; i++) {
        const std::string_view name = NextName(pWalk);
        if (name.empty()) {
            CloseFolderWalk(pWalk);
            pWalk = nullptr;
            return;
        }
        if (IsPaletteName(name))
            AddRow(&found, 0, name);
    }
}

std::u16string PaletteName(const PaletteList &list, u32 iRow)
{
    return FromUtf8(NameOf(list, list.rows[iRow]));
}

std::u16string PalettePath(const PaletteList &list, u32 iRow)
{
    return JoinPath(list.folders[list.rows[iRow].iFolder], PaletteName(list, iRow));
}

const PaletteEntry *ReadPaletteRow(PaletteList *pList, u32 iRow)
{
    PaletteRow &row = pList->rows[iRow];
    if (row.nEntry)
        return pList->entries[row.nEntry - 1].get();
    // Asked first: a file that is gone costs a search of its folder for another case, and opening a device can wake it.
    const std::u16string path = PalettePath(*pList, iRow);
    PaletteEntry entry = {};
    if (QueryFile(path, nullptr) != FileKind::Regular ||
        !ReadPaletteFile(path, &entry.nColors, entry.abRed, entry.abGreen, entry.abBlue) || entry.nColors <= 0)
        return nullptr;
    pList->entries.push_back(std::make_unique<PaletteEntry>(entry));
    row.nEntry = static_cast<u32>(pList->entries.size());
    return pList->entries.back().get();
}

std::vector<u32> PaletteStrip(PaletteList *pList, u32 iRow)
{
    const PaletteEntry *pEntry = ReadPaletteRow(pList, iRow);
    if (!pEntry)
        return {};
    PaletteEntry entry = *pEntry;
    if (bInterpolatePalettes)
        Interpolate(&entry);
    std::vector<u32> pixels(static_cast<size_t>(entry.nColors));
    for (i32 i = 0; i < entry.nColors; i++)
        pixels[static_cast<size_t>(i)] = Pixel(entry, i);
    return pixels;
}

std::u16string PaletteResult(const PaletteList &list, std::span<const u32> rows, u32 bMultiple)
{
    if (rows.empty())
        return {};
    if (!bMultiple)
        return PalettePath(list, rows.front());
    std::u16string s = WithoutTrailingSeparators(list.folders[list.rows[rows.front()].iFolder]);
    s += u'\0';
    for (const u32 iRow : rows)
        s.append(PaletteName(list, iRow)) += u'\0';
    return s += u'\0';
}

std::vector<std::u16string> PathsOfPaletteResult(std::u16string_view result)
{
    const size_t cchFolder = result.find(u'\0');
    if (cchFolder == result.npos)
        return result.empty() ? std::vector<std::u16string>() : std::vector{std::u16string(result)};
    const std::u16string_view folder = result.substr(0, cchFolder);
    std::vector<std::u16string> paths;
    for (result.remove_prefix(cchFolder + 1); !result.empty() && result.front();) {
        const std::u16string_view name = result.substr(0, result.find(u'\0'));
        paths.push_back(JoinPath(folder, name));
        result.remove_prefix(std::min(name.size() + 1, result.size()));
    }
    return paths;
}

PaletteColumns PaletteColumnsOf(i32 nWidth)
{
    return {nWidth * NAME_PERCENT / 100, nWidth * PALETTE_PERCENT / 100};
}
