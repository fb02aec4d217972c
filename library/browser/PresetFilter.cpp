// PresetFilter.cpp -- the browser's marks in the preset table: which entries the search leaves out, which it must list
// anew
#include "library/browser/PresetFilter.h"

#include "library/PresetSearch.h"
#include "library/PresetTable.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

namespace {

bool AnyPresetChanged()
{
    bool bAny = false;
    ForEachPreset([&](i32, const PresetInfo *lppi) { bAny = bAny || lppi->bChanged; });
    return bAny;
}

bool NameMatches(const PresetInfo *lppi, const SearchPattern &pattern)
{
    const std::u16string_view path(lppi->szPath, TextLength(lppi->szPath, NAME_CHARS));
    return MatchesSearch(pattern, NameWithoutExtension(path));
}

} // namespace

u32 ApplySearch(std::u16string_view text, u32 bModuleNames)
{
    ASSERT_MAIN_THREAD();
    const SearchPattern pattern = MakeSearchPattern(text);
    const PresetTableLock lock;
    const u64 qwModules = bModuleNames ? ModulesOfSearch(pattern) : 0;
    const bool bUnsure = bModuleNames && AnyPresetChanged();
    u32 nMatches = 0;
    ForEachPreset([&](i32, PresetInfo *lppi) {
        const bool bMatch = NameMatches(lppi, pattern) ||
                            (bModuleNames && (bUnsure || !lppi->bSummarized || PresetUsesOneOf(lppi, qwModules)));
        lppi->bFiltered = !bMatch;
        nMatches += bMatch;
    });
    return nMatches;
}

void ForgetListedPresets()
{
    ForEachPreset([](i32, PresetInfo *lppi) { MarkPresetChanged(lppi); });
}

void MarkPresetListed(PresetInfo *lppi)
{
    lppi->bChanged = 0;
}
