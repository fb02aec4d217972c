// FileFilter.h -- which files a file chooser shows, and the extension that it adds
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>
#include <vector>

struct FileFilter {
    std::u16string sDescription;
    std::u16string sPattern; // such as "*.VD"
};

// A pattern that holds a description ("text, tab, pattern, tab" and so on) as it stands; else "<pattern> Files" for the
// pattern alone; without a pattern, one made of the name's extension; else all files.
std::vector<FileFilter> FileFilters(std::u16string_view pattern, std::u16string_view name);
// What stands behind the last dot of the pattern; empty: nothing that could be added to a name.
std::u16string DefaultExtension(std::u16string_view pattern);
