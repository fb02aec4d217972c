// PaletteBrowser.h -- the palettes of a folder, one row each: finding and reading them, their strips, what is chosen
#pragma once

#include "include/module.h"
#include "platform/BaseTypes.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

struct FolderWalk;

// The palette of a row, allocated when the row is first painted: most rows of a large folder never are.
struct PaletteEntry {
    i32 nColors;                  // 1 to PALETTE_COLORS_MAX
    u8 abRed[PALETTE_COLORS_MAX]; // as read, whether or not strips are interpolated
    u8 abGreen[PALETTE_COLORS_MAX];
    u8 abBlue[PALETTE_COLORS_MAX];
};

struct PaletteRow {
    u32 iFolder; // place in PaletteList::folders
    u32 iName;   // place in PaletteList::sNames
    u32 cbName;
    u32 nEntry; // counted from 1 in PaletteList::entries; 0: not read yet, or it could not be
};
static_assert(std::is_trivially_copyable_v<PaletteRow>);

struct PaletteList {
    std::vector<PaletteRow> rows;
    std::string sNames; // UTF-8, one behind the other
    std::vector<std::u16string> folders;
    std::vector<std::unique_ptr<PaletteEntry>> entries;
};

extern std::u16string szPaletteFolder; // the folder shown last; stays for the run. [main-thread]
extern u32 bInterpolatePalettes;       // strips are resampled to PALETTE_COLORS_MAX colours; stays for the run

// Where the browser starts: the folder if it exists; else the program's own palettes; else, where the program's folder
// is not known, the folder part of the path. The folder of the program's file if none is given.
std::u16string PaletteStartFolder(std::u16string_view given);

// Adds a row for each name in szPaletteFolder that holds ".pal" or ".col", sorted by name. Reads none of them. Returns
// the number of rows added.
u32 FillPaletteList(PaletteList *pList);
// Adds one for a path, whatever it names. 0 when there is no room for it.
u32 AddPaletteRow(PaletteList *pList, std::u16string_view path);
void EmptyPaletteList(PaletteList *pList);
// Files in the place of what was listed: the first one's folder becomes szPaletteFolder. Without files it is empty too.
void ListPaletteFiles(PaletteList *pList, std::span<const std::u16string> paths);

// The same as FillPaletteList in pieces, so that a folder of a million files holds nothing up.
class PaletteWalk {
  public:
    explicit PaletteWalk(PaletteList *pList); // outlives the walk
    ~PaletteWalk();
    PaletteWalk(const PaletteWalk &) = delete;
    PaletteWalk &operator=(const PaletteWalk &) = delete;

    // Looks at names for about so long. Returns 0 when all were seen.
    u32 Look(i64 nNanoseconds);
    // Puts the rows that were found into the list. Returns their number.
    u32 Finish();

  private:
    void LookAtNames();
    void SortNewRows();
    void MergeLastRuns();

    PaletteList *const pTo;
    PaletteList found;
    std::vector<size_t> runs = {0}; // where sorted runs of found.rows end, behind the 0 before the first
    FolderWalk *pWalk;              // null: all names were seen
};

// Name and extension, and the full path. [main-thread]
std::u16string PaletteName(const PaletteList &list, u32 iRow);
std::u16string PalettePath(const PaletteList &list, u32 iRow);
// Reads the row's file unless it was read before. Null when that fails, or there are no colours in it: the next call
// tries again. Looks at regular files alone, and waits for nothing.
const PaletteEntry *ReadPaletteRow(PaletteList *pList, u32 iRow);
// The row's colours from left to right as pixels of the form 0xFFRRGGBB, as many as there are colours; resampled if
// bInterpolatePalettes is on. Empty where there is nothing to paint.
std::vector<u32> PaletteStrip(PaletteList *pList, u32 iRow);

// What the user has chosen: the rows in list order. With bMultiple the first row's folder, then the name of each row,
// each with its terminating 0, and a 0 behind them all; else the first row's full path. Empty for no rows.
std::u16string PaletteResult(const PaletteList &list, std::span<const u32> rows, u32 bMultiple);
// The full paths that such a result means.
std::vector<std::u16string> PathsOfPaletteResult(std::u16string_view result);

// The widths of "Name" and "Palette" in a list that is so wide.
struct PaletteColumns {
    i32 nName, nPalette;
};
PaletteColumns PaletteColumnsOf(i32 nWidth);
