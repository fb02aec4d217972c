// GlobalsFile.cpp -- the settings file
#include "app/GlobalsFile.h"

#include "app/SettingsTable.h"
#include "engine/XmlText.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Notices.h"
#include "platform/Text.h"
#include "state/Folders.h"

namespace {

// Takes over the context. 0 for a document without settings.
u32 ReadDocument(XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    const u32 bEntered = XmlEnterTag(pxc, u"Globals");
    const u32 bAny = bEntered && pxc->apStart[pxc->nDepth] != pxc->apEnd[pxc->nDepth];
    if (bEntered) {
        pgs->ShowModules = 0;
        ReadSettings(pxc, pgs);
        XmlLeaveTag(pxc);
    }
    XmlClose(pxc);
    if (SettingsHook.pfnSnapToEdge)
        SettingsHook.pfnSnapToEdge(static_cast<u32>(pgs->SnapToEdge));
    return bAny;
}

// The end of the run writes new settings over the file: what could not be read is kept under another name.
void SetAside(const std::u16string &path, std::string sWhy)
{
    const std::u16string aside = path + u".unread";
    sWhy += ". The settings are at their defaults";
    if (FileExists(path) && RenameFile(path, aside))
        sWhy += "; the old file is kept as " + ToUtf8(NameAndExtension(aside));
    AddNotice(sWhy);
}

} // namespace

u32 ReadGlobals(GlobalSettingsRecord *pgs)
{
    ASSERT_MAIN_THREAD();
    const std::u16string path = FolderPath(PATH_GLOBALS);
    std::string sWhy;
    XmlContext *pxc = XmlOpenFile(path, &sWhy);
    const u32 bOpened = pxc != nullptr;
    if (bOpened && !ReadDocument(pxc, pgs))
        sWhy = ToUtf8(path) + ": no settings stand between <Globals> and </Globals>";
    if (!sWhy.empty())
        SetAside(path, sWhy);
    return bOpened;
}

u32 ReadGlobalsText(GlobalSettingsRecord *pgs, std::string_view bytes)
{
    ASSERT_MAIN_THREAD();
    XmlContext *pxc = XmlOpenBytes(bytes);
    return pxc && ReadDocument(pxc, pgs);
}

u32 WriteGlobals(const GlobalSettingsRecord *pgs, std::string *psWhy)
{
    ASSERT_MAIN_THREAD();
    XmlContext *pxc = XmlCreate();
    if (!pxc)
        return 0;
    XmlBeginTag(pxc, u"Globals");
    WriteSettings(pxc, pgs);
    XmlEndTag(pxc);
    const u32 bSaved = XmlSaveFile(pxc, FolderPath(PATH_GLOBALS), psWhy);
    XmlClose(pxc);
    return bSaved;
}
