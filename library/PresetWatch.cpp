// PresetWatch.cpp -- the library's reaction to changes in the preset folder
#include "library/PresetWatch.h"

#include "library/FolderWatch.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <iterator>
#include <set>
#include <string>

namespace {

// Both of the watch thread alone.
NameText szRenamedFrom;                // old name of the rename under way, as a path
std::set<std::u16string> RefusedPaths; // files with names of presets that were renamed from strangers' names

bool Refresh(std::u16string_view path)
{
    return RefreshPresetInfo(GetPresetInfo(FindPresetFile(path)), 1);
}

// A file that comes in over one of that name, such as a preset that the program itself saves, changes what is there.
bool TakeContents(std::u16string_view path)
{
    return FindPresetFile(path) >= 0 ? Refresh(path) : AddPresetInfo(path, 1);
}

bool TakeAdded(std::u16string_view path)
{
    RefusedPaths.erase(std::u16string(path));
    return TakeContents(path);
}

// A file that could not be read when it came, with its writer still at work, is added now. One that was not to be added
// then is not to be added later.
bool TakeModified(std::u16string_view path)
{
    if (FindPresetFile(path) < 0 && RefusedPaths.contains(std::u16string(path)))
        return false;
    return TakeContents(path);
}

bool TakeRemoved(std::u16string_view path)
{
    RefusedPaths.erase(std::u16string(path));
    const PresetTableLock lock;
    const i32 iSlot = FindPresetFile(path);
    if (iSlot >= 0)
        DropPreset(iSlot);
    return iSlot >= 0;
}

bool TakeOldName(std::u16string_view path)
{
    CopyText(szRenamedFrom, path);
    return false;
}

// The entry goes along with its file and takes the place of the one that the file has replaced. 0: there is none.
bool MoveEntry(std::u16string_view from, std::u16string_view path)
{
    const PresetTableLock lock;
    const i32 iFrom = FindPresetFile(from);
    const i32 iReplaced = FindPresetFile(path);
    if (iFrom < 0)
        return false;
    if (iReplaced >= 0 && iFrom != iReplaced)
        DropPreset(iReplaced);
    MovePreset(iFrom, path);
    return true;
}

// A rename changes neither date nor size; a file that came in under the old name just before it does.
bool IsAsListed(std::u16string_view path)
{
    FileFacts facts;
    if (QueryFile(path, &facts) != FileKind::Regular)
        return true;
    const PresetTableLock lock;
    const i32 iSlot = FindPresetFile(path);
    const PresetInfo *lppi = GetPresetInfo(iSlot);
    return !lppi || (lppi->ftLastWrite == facts.ftLastWrite && lppi->dwSize == static_cast<u32>(facts.cb) &&
                     PresetFileId(iSlot) == facts.qwFileId);
}

// A rename from a stranger's name adds nothing. From a preset's that is not in the table it does: the file was to be
// added under the old name.
bool TakeNewName(std::u16string_view path)
{
    const std::u16string from = szRenamedFrom;
    szRenamedFrom[0] = 0;
    const bool bStranger = RefusedPaths.erase(from) || !IsPresetName(NameAndExtension(from));
    RefusedPaths.erase(std::u16string(path));
    if (MoveEntry(from, path)) {
        if (!IsAsListed(path))
            Refresh(path);
        return true;
    }
    if (!bStranger || FindPresetFile(path) >= 0)
        return TakeContents(path);
    if (IsPresetName(NameAndExtension(path)))
        RefusedPaths.emplace(path);
    return false;
}

// Renamed to a name that is too long a preset is gone; one that had such a name was none.
bool TakeTooLong(u32 dwAction)
{
    if (dwAction != WATCH_OLD_NAME && dwAction != WATCH_NEW_NAME)
        return false;
    const std::u16string from = szRenamedFrom;
    szRenamedFrom[0] = 0;
    return dwAction == WATCH_NEW_NAME && TakeRemoved(from);
}

constexpr bool (*apfnTake[])(std::u16string_view path) = {
    nullptr, TakeAdded, TakeRemoved, TakeModified, TakeOldName, TakeNewName,
};
static_assert(std::size(apfnTake) == WATCH_NEW_NAME + 1);

} // namespace

void PresetFolderCallback(const char16_t *pszName, u32 dwAction)
{
    if (!pszName || !*pszName || dwAction < WATCH_ADDED || dwAction > WATCH_NEW_NAME)
        return;
    const std::u16string path = JoinPath(PresetFolder(), pszName);
    bool bChanged = false;
    if (path.size() >= NAME_CHARS)
        bChanged = TakeTooLong(dwAction);
    else
        bChanged = apfnTake[dwAction](path);
    if (bChanged)
        NotifyPresetChange();
}

void ForgetPresetNames()
{
    szRenamedFrom[0] = 0;
    RefusedPaths.clear();
}

// What stands in the folder counts from now on, whatever it was called before.
void PresetFolderLost()
{
    ForgetPresetNames();
    if (RescanPresetFolder())
        NotifyPresetChange();
}
