// SiblingPrograms.cpp -- the editors that ship as programs of their own
#include "mainwindow/SiblingPrograms.h"

#include "platform/Files.h"
#include "platform/MainThread.h"

#include <string_view>

std::u16string FindSiblingProgram(PathRow eRow)
{
    ASSERT_MAIN_THREAD();
    constexpr std::u16string_view EXTENSION = u".exe";
    std::u16string path = FolderPath(eRow);
    if (FileExists(path))
        return path;
    if (path.ends_with(EXTENSION))
        path.resize(path.size() - EXTENSION.size());
    return FileExists(path) ? path : std::u16string{};
}
