// FileFacts.h -- date, size and identity of files: one file, a whole folder, or a file together with its contents
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>
#include <vector>

// What a file system says of a regular file, links followed. Zero-filled means none.
struct FileFacts {
    u64 ftLastWrite; // last write, UTC, in 100 ns units since 1601; 0 for anything before
    u64 cb;          // size in bytes
    u64 qwFileId;    // stays the same over a rename; a later file may get it again
    bool operator==(const FileFacts &) const = default;
};

enum class FileKind { Missing, Regular, Folder, Other };

// The path is taken as it is spelled: no search for another case. *pFacts (may be null) is filled for a regular file.
// [any-thread]
FileKind QueryFile(std::u16string_view path, FileFacts *pFacts);

// Files of a folder, in the byte order of their UTF-8 names.
struct FolderFile {
    u32 iName; // place in sNames
    u32 cbName;
    FileFacts facts; // zeros when they were not asked for
};
struct FolderListing {
    std::string sNames;
    std::vector<FolderFile> files;
    u32 nLeftOut; // files whose names could not be opened again from their UTF-16 form
    std::string_view Name(const FolderFile &file) const
    {
        return std::string_view(sNames).substr(file.iName, file.cbName);
    }
};

// Lists the files whose names end in the suffix (ASCII, without regard to case), in one walk; with bFacts regular files
// only, and their facts, which takes a query each. 0 when the folder cannot be read. [any-thread]
u32 ListFolder(std::u16string_view folder, std::string_view suffix, u32 bFacts, FolderListing *pListing);

// Walks through a folder name by name, so that a walk through a huge one can rest in between. Opaque; null means none.
struct FolderWalk;
FolderWalk *OpenFolderWalk(std::u16string_view folder); // null when the folder cannot be read
void CloseFolderWalk(FolderWalk *pWalk);                // null is fine
// The next name in the order of the disk, valid until the call after it; empty: there are no more. Names of all kinds,
// folders and pipes too, but no name that could not be opened again from its UTF-16 form.
std::string_view NextName(FolderWalk *pWalk);

// A buffer that one thread reads file after file into.
constexpr u64 READ_SLACK = 128; // zero bytes behind the contents: a search may look ahead
struct ReadBuffer {
    std::vector<char> ab;
    u64 cb; // contents
};

// A folder kept open, so that each file in it costs no walk down the path. fd -1: none; paths then serve as they are.
struct OpenedFolder {
    std::u16string folder;
    int fd;
};
OpenedFolder OpenFolder(std::u16string_view folder);
void CloseFolder(OpenedFolder *pFolder);

// Reads a regular file of at most cbMax bytes together with its facts. *pFacts holds what was known just before: a file
// of that size is taken as it was, for if somebody writes it meanwhile, its date tells the next one who looks. With
// zeros, or another size, it is read until two looks at it agree, a few times. 0 when it cannot be read or does not
// come to rest. [any-thread]
u32 ReadFileAndFacts(const OpenedFolder &folder, std::u16string_view path, u64 cbMax, ReadBuffer *pBuffer,
                     FileFacts *pFacts);
