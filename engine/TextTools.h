// TextTools.h -- the small text and file tools beside the tag reader
#pragma once

#include "platform/BaseTypes.h"
#include "platform/Files.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"

#include <string>
#include <string_view>

// Place of the first match without regard to case that lies in the first cch characters, or npos. An empty text to look
// for matches at the start. [any-thread]
inline size_t FindTextNoCase(std::u16string_view text, size_t cch, std::u16string_view what)
{
    return FindNoCase(text.substr(0, cch), what);
}

// The same over whole strings, wide and 8-bit. The 8-bit one compares bytes, folding A to Z alone: it looks into files
// that nobody has decoded, at the speed of memory.
inline size_t FindWideNoCase(std::u16string_view text, std::u16string_view what)
{
    return FindNoCase(text, what);
}
size_t FindAnsiNoCase(std::string_view text, std::string_view what);

// Whether the whole text matches the pattern, in which "*" stands for any run of characters, without regard to case.
// Takes at most length times length steps, whatever the pattern.
bool MatchWildcard(std::u16string_view text, std::u16string_view pattern);

// The entry with the number in a list of strings that each end in a 0, the list in a second one; ALL_ONES: the last
// entry. Empty beyond the list. cch bounds the list, which may come from a module and lack its second 0.
std::u16string_view ListItem(const char16_t *pszList, u32 cch, u32 nItem);

// Number of files that match the pattern, and the full path of the one with the number; empty beyond them. Whoever
// wants all of them calls ListFiles once.
inline u32 CountFiles(std::u16string_view pattern)
{
    return static_cast<u32>(ListFiles(pattern).size());
}
inline std::u16string NthFile(std::u16string_view pattern, u32 nFile)
{
    const auto paths = ListFiles(pattern);
    return nFile < paths.size() ? paths[nFile] : std::u16string();
}

// Name and extension of a path, and what stands before them, the last separator included.
inline std::u16string_view PathNameExt(std::u16string_view path)
{
    return NameAndExtension(path);
}
inline std::u16string_view PathFolder(std::u16string_view path)
{
    return path.substr(0, path.size() - NameAndExtension(path).size());
}

// The entry point of a wide name, looked up in the 8-bit code page; null if there is none.
inline void *GetProcWide(SharedLibrary *pLibrary, std::u16string_view name)
{
    return FindEntryPoint(pLibrary, name);
}

// Converts to the 8-bit code page, cut to cb bytes with the terminating 0 and never inside a character. Returns the
// bytes written without the 0; *pbWhole (may be null) tells whether the text fitted.
u32 WideToAnsi(std::u16string_view text, char *pszTo, u32 cb, bool *pbWhole = nullptr);
