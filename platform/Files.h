// Files.h -- paths, folders, environment variables
#pragma once

#include "platform/BaseTypes.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

// The file name of the system for a path of the program: UTF-8, both kinds of separator turned into the native
// one. Parts that miss by case alone are given the case that they have on disk.
std::string NativePath(std::u16string_view path);

// The same for a file that is about to be made: the case of its folder counts as above, its own name stays as given.
// Does not look at the folder's other files, so it is quick in a folder of many thousands.
std::string NativePathOfNewFile(std::u16string_view path);

// Exists and is not a folder / is a folder.
bool FileExists(std::u16string_view path);
bool FolderExists(std::u16string_view path);

// Gives the file another name, in place of a file that has it. Non-zero on success.
u32 RenameFile(std::u16string_view from, std::u16string_view to);

// Opens by native path; null with errno set on failure.
FILE *OpenFile(std::u16string_view path, const char *pszMode);

// Files (no folders, pipes or devices) that match the pattern in the last part of the path: "*.EXT" without regard
// to case, "*.*" all of them. Full paths, sorted by name in byte order of their UTF-8, so that the order is the same on
// every machine. An unreadable folder gives none.
std::vector<std::u16string> ListFiles(std::u16string_view pattern);

// The part after the last separator of either kind.
std::u16string_view NameAndExtension(std::u16string_view path);
// That part without its extension.
std::u16string_view NameWithoutExtension(std::u16string_view path);
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);
std::u16string AbsolutePath(std::u16string_view path);
std::u16string WithoutTrailingSeparators(std::u16string_view path);

std::u16string ProgramPath();        // full path of the running program; empty if unknown
std::u16string ProgramFilesFolder(); // where installed programs live
std::u16string RoamingDataFolder();  // the user's application data

void SetVariable(const char *pszName, std::u16string_view value);
// The same, unless the user has set it.
void SetVariableIfUnset(const char *pszName, std::u16string_view value);
// Replaces %NAME% by the value of the environment variable; unknown names stay as they are.
std::u16string ExpandVariables(std::u16string_view text);
