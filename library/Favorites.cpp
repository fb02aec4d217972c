// Favorites.cpp -- how often the user favored each preset: the key, and Favorites.XML
#include "library/Favorites.h"

#include "engine/PresetDocument.h"
#include "engine/XmlText.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <vector>

namespace {

// More entries than a document has room for; a hand-made one may leave out numbers.
constexpr i32 ENTRIES_MAX = 1 << 20;

std::mutex mtxSave; // held from the copy to the end of the file: the later save has the last word

// A name that the format cannot hold would come back as another one.
bool CanBeStored(std::u16string_view name)
{
    return name.find(u'<') == name.npos;
}

void SetFavor(std::u16string_view name, i32 nFavor)
{
    const PresetTableLock lock;
    if (PresetInfo *lppi = GetPresetInfo(FindPresetInfo(JoinPath(PresetFolder(), name))))
        lppi->nFavor = std::max(nFavor, 0);
}

void ReadFave(XmlContext *pxc, u32 iFave)
{
    if (!XmlEnterTag(pxc, NumberedTag(u"Fave", iFave)))
        return;
    std::u16string_view name;
    i32 nFavor = 0;
    XmlReadInt(pxc, u"Favor", &nFavor);
    if (XmlReadText(pxc, u"Name", &name) && !name.empty())
        SetFavor(name, nFavor);
    XmlLeaveTag(pxc);
}

struct Fave {
    std::u16string name;
    i32 nFavor;
};

// A copy, so that nobody waits for the table while the file is written.
std::vector<Fave> CollectFaves()
{
    std::vector<Fave> faves;
    ForEachPreset([&](i32, const PresetInfo *lppi) {
        if (lppi->nFavor > 0 && CanBeStored(NameAndExtension(lppi->szPath)))
            faves.push_back({std::u16string(NameAndExtension(lppi->szPath)), lppi->nFavor});
    });
    return faves;
}

void WriteFave(XmlContext *pxc, u32 iFave, const Fave &fave)
{
    XmlBeginTag(pxc, NumberedTag(u"Fave", iFave));
    XmlWriteString(pxc, u"Name", fave.name);
    XmlWriteInt(pxc, u"Favor", fave.nFavor);
    XmlEndTag(pxc);
}

} // namespace

u32 ServeFavorPresses(u32 *pbPending)
{
    ASSERT_MAIN_THREAD();
    if (!*pbPending)
        return 0;
    *pbPending = 0;
    const std::u16string_view name = PresetName();
    const PresetTableLock lock;
    PresetInfo *lppi = GetPresetInfo(FindPresetFile(JoinPath(PresetFolder(), name)));
    if (lppi && lppi->nFavor < std::numeric_limits<i32>::max()) {
        lppi->nFavor++;
        MarkPresetChanged(lppi);
    }
    return 1;
}

u32 LoadFavorites(std::u16string_view path)
{
    XmlContext *pxc = XmlOpenFile(path);
    if (!pxc)
        return 0;
    i32 nEntries = 0;
    if (XmlEnterTag(pxc, u"Favorites") && XmlReadInt(pxc, u"Entries", &nEntries))
        for (i32 i = 0; i < std::min(nEntries, ENTRIES_MAX); i++)
            ReadFave(pxc, static_cast<u32>(i));
    XmlClose(pxc);
    return 1;
}

u32 SaveFavorites(std::u16string_view path, std::string *psWhy)
{
    const std::lock_guard lock(mtxSave);
    const std::vector<Fave> faves = CollectFaves();
    if (faves.empty())
        return 1;
    XmlContext *pxc = XmlCreate();
    if (!pxc)
        return 0;
    XmlBeginTag(pxc, u"Favorites");
    XmlWriteInt(pxc, u"Entries", static_cast<u32>(faves.size()));
    for (u32 i = 0; i < faves.size(); i++)
        WriteFave(pxc, i, faves[i]);
    XmlEndTag(pxc);
    const u32 bSaved = XmlSaveFile(pxc, path, psWhy);
    XmlClose(pxc);
    return bSaved;
}
