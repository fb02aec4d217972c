// DesktopOptions.cpp -- the command line of the desktop program
#include "app/DesktopOptions.h"

#include "app/CommandLine.h"
#include "platform/Files.h"
#include "platform/Text.h"

namespace {

DesktopOptions *Options(void *pv)
{
    return static_cast<DesktopOptions *>(pv);
}

// Folders are made absolute: later working-folder changes must not move them.
bool SetFolder(const std::string &s, std::u16string *pFolder)
{
    *pFolder = AbsolutePath(FromUtf8(s));
    return FolderExists(*pFolder);
}

bool SetData(void *pv, const std::string &s)
{
    return SetFolder(s, &Options(pv)->start.data);
}

bool SetModules(void *pv, const std::string &s)
{
    return SetFolder(s, &Options(pv)->start.modules);
}

template <u32 DesktopOptions::*pSwitch> bool SwitchOn(void *pv, const std::string &)
{
    Options(pv)->*pSwitch = 1;
    return true;
}

constexpr OptionRow asOption[] = {
    {"--data", "DIR", "an existing data folder, instead of the one that belongs to the program", SetData},
    {"--modules", "DIR", "an existing folder of module libraries, instead of the program's own", SetModules},
    {"--list-sound", nullptr, "say which sound the program listens to, and end", SwitchOn<&DesktopOptions::bListSound>},
    {"--help", nullptr, "this text", SwitchOn<&DesktopOptions::bHelp>},
    {"--version", nullptr, "the version", SwitchOn<&DesktopOptions::bVersion>},
};

// What names no file is no error: it is ignored.
bool TakePreset(const std::string &s, std::u16string *pPreset, std::string *psError)
{
    if (!FileExists(FromUtf8(s)))
        return true;
    *pPreset = AbsolutePath(FromUtf8(s));
    if (pPreset->size() < NAME_CHARS)
        return true;
    *psError = "the path of the preset has " + std::to_string(pPreset->size()) +
               " characters; move the file to where it has fewer than " + std::to_string(NAME_CHARS);
    return false;
}

} // namespace

bool ReadDesktopOptions(int argc, char **argv, DesktopOptions *pdo, std::string *psError)
{
    std::vector<std::string> asOperand;
    if (!ParseCommandLine(asOption, argc, argv, pdo, &asOperand, psError))
        return false;
    return asOperand.empty() || TakePreset(asOperand[0], &pdo->start.preset, psError);
}

std::string DesktopHelp()
{
    return "vorticade [options] [PRESET]\n"
           "Shows moving pictures that follow the sound of the machine. PRESET is a preset file to open in place\n"
           "of the last one; a name that is no file is ignored. Settings stand in Globals.XML in the data folder.\n\n" +
           OptionHelp(asOption) + "\nExit status: 0 after a normal end, 1 without a display, 2 wrong command line.\n";
}
