// Favorites.cpp -- how often the user favored each preset: the key, and Favorites.XML
#include "library/Favorites.h"

#include "app/GlobalSettings.h"
#include "engine/XmlText.h"
#include "library/PresetScan.h"
#include "library/PresetTable.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>
#include <limits>

namespace {

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

bool IsStored(const PresetInfo *lppi)
{
    return lppi->nFavor > 0 && CanBeStored(NameAndExtension(lppi->szPath));
}

void WriteFave(XmlContext *pxc, u32 iFave, const PresetInfo *lppi)
{
    XmlBeginTag(pxc, NumberedTag(u"Fave", iFave));
    XmlWriteString(pxc, u"Name", NameAndExtension(lppi->szPath));
    XmlWriteInt(pxc, u"Favor", lppi->nFavor);
    XmlEndTag(pxc);
}

} // namespace

u32 ServeFavorPresses(u32 *pbPending)
{
    if (!*pbPending)
        return 0;
    *pbPending = 0;
    const std::u16string_view name = NameAndExtension(GlobalSettings.Preset);
    const PresetTableLock lock;
    PresetInfo *lppi = GetPresetInfo(FindPresetFile(JoinPath(PresetFolder(), name)));
    if (lppi && lppi->nFavor < std::numeric_limits<i32>::max()) {
        lppi->nFavor++;
        lppi->bChanged = 1;
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
        // No document holds more entries than tags, whatever it says.
        for (u32 i = 0; i < std::min<size_t>(static_cast<u32>(std::max(nEntries, 0)), pxc->places.size()); i++)
            ReadFave(pxc, i);
    XmlClose(pxc);
    return 1;
}

u32 SaveFavorites(std::u16string_view path, std::string *psWhy)
{
    const PresetTableLock lock;
    u32 nStored = 0;
    ForEachPreset([&](i32, const PresetInfo *lppi) { nStored += IsStored(lppi); });
    if (nStored == 0)
        return 1;
    XmlContext *pxc = XmlCreate();
    if (!pxc)
        return 0;
    XmlBeginTag(pxc, u"Favorites");
    XmlWriteInt(pxc, u"Entries", nStored);
    u32 iFave = 0;
    ForEachPreset([&](i32, const PresetInfo *lppi) {
        if (IsStored(lppi))
            WriteFave(pxc, iFave++, lppi);
    });
    XmlEndTag(pxc);
    const u32 bSaved = XmlSaveFile(pxc, path, psWhy);
    XmlClose(pxc);
    return bSaved;
}
