// GlobalsFile.cpp -- the settings file
#include "app/GlobalsFile.h"

#include "app/Folders.h"
#include "app/SettingsTable.h"
#include "engine/XmlText.h"
#include "platform/Files.h"
#include "platform/Text.h"

namespace {

u32 ReadDocument(XmlContext *pxc, GlobalSettingsRecord *pgs)
{
    if (!pxc)
        return 0;
    if (XmlEnterTag(pxc, u"Globals")) {
        pgs->ShowModules = 0;
        ReadSettings(pxc, pgs);
        XmlLeaveTag(pxc);
    }
    XmlClose(pxc);
    if (SettingsHook.pfnSnapToEdge)
        SettingsHook.pfnSnapToEdge(static_cast<u32>(pgs->SnapToEdge));
    return 1;
}

} // namespace

u32 ReadGlobals(GlobalSettingsRecord *pgs, std::u16string_view argument)
{
    const u32 bRead = ReadDocument(XmlOpenFile(FolderPath(PATH_GLOBALS)), pgs);
    if (argument.size() < NAME_CHARS && FileExists(argument))
        CopyText(pgs->Preset, argument);
    return bRead;
}

u32 ReadGlobalsText(GlobalSettingsRecord *pgs, std::string_view bytes)
{
    return ReadDocument(XmlOpenBytes(bytes), pgs);
}

u32 WriteGlobals(const GlobalSettingsRecord *pgs, std::string *psWhy)
{
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
