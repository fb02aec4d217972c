// PresetWatch.cpp -- the library's reaction to changes in the preset folder
#include "library/PresetWatch.h"

#include "library/FolderWatch.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <iterator>

namespace {

NameText szRenamedFrom; // old name of the rename under way, as a path; of the watch thread alone

bool Refresh(std::u16string_view path)
{
    return RefreshPresetInfo(GetPresetInfo(FindPresetFile(path)), 1);
}

// A file that comes in over one of that name, such as a preset that the program itself saves, changes what is there.
// One that could not be read when it came, with its writer still at work, is added when the writer has closed it.
bool TakeContents(std::u16string_view path)
{
    return FindPresetFile(path) >= 0 ? Refresh(path) : AddPresetInfo(path, 1);
}

bool TakeRemoved(std::u16string_view path)
{
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

// The entry goes along with its file and takes the place of the one that the file has replaced. A rename from a
// stranger's name adds nothing, unless it is a preset's: then the file was to be added under the old name.
bool TakeNewName(std::u16string_view path)
{
    const std::u16string from = szRenamedFrom;
    szRenamedFrom[0] = 0;
    {
        const PresetTableLock lock;
        const i32 iFrom = FindPresetFile(from);
        const i32 iReplaced = FindPresetFile(path);
        if (iFrom >= 0 && iReplaced >= 0 && iFrom != iReplaced)
            DropPreset(iReplaced);
        if (iFrom >= 0) {
            MovePreset(iFrom, path);
            return true;
        }
        if (iReplaced < 0 && !IsPresetName(NameAndExtension(from)))
            return false;
    }
    return TakeContents(path);
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
    nullptr, TakeContents, TakeRemoved, TakeContents, TakeOldName, TakeNewName,
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
    else if (dwAction == WATCH_REMOVED || dwAction == WATCH_OLD_NAME || QueryFile(path, nullptr) != FileKind::Folder)
        bChanged = apfnTake[dwAction](path);
    if (bChanged)
        NotifyPresetChange();
}

void PresetFolderLost()
{
    szRenamedFrom[0] = 0;
    if (RescanPresetFolder())
        NotifyPresetChange();
}
