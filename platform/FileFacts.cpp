// FileFacts.cpp -- date, size and identity of files: one file, a whole folder, or a file together with its contents
#include "platform/FileFacts.h"

#include "platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr i64 SECONDS_1601_TO_1970 = 11644473600;
constexpr i64 UNITS_PER_SECOND = 10000000;
constexpr u32 READINGS_MAX = 4;
constexpr u64 FIRST_READ = 32768;        // most files come in one call, whatever was known of their size
constexpr u64 BUFFER_KEPT_MAX = 1 << 20; // one large file does not hold its memory for the rest of the run

u64 ToFileTime(const timespec &ts)
{
    const i64 nSeconds = std::min<i64>(ts.tv_sec, INT64_MAX / UNITS_PER_SECOND - SECONDS_1601_TO_1970 - 1);
    if (nSeconds < -SECONDS_1601_TO_1970)
        return 0;
    return static_cast<u64>((nSeconds + SECONDS_1601_TO_1970) * UNITS_PER_SECOND + ts.tv_nsec / 100);
}

FileFacts FactsOf(const struct stat &st)
{
    return {ToFileTime(st.st_mtim), static_cast<u64>(st.st_size), st.st_ino};
}

bool EqualSuffix(std::string_view name, std::string_view suffix)
{
    const auto fold = [](char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + 32) : ch; };
    return name.size() >= suffix.size() && std::equal(suffix.begin(), suffix.end(), name.end() - suffix.size(),
                                                      [&](char a, char b) { return fold(a) == fold(b); });
}

bool OpensAgain(std::string_view name)
{
    const bool bAscii = std::all_of(name.begin(), name.end(), [](char ch) { return static_cast<u8>(ch) < 0x80; });
    return name.find('\\') == name.npos && (bAscii || ToUtf8(FromUtf8(name)) == name);
}

bool CanBeFile(const dirent &entry)
{
    return entry.d_type == DT_REG || entry.d_type == DT_LNK || entry.d_type == DT_UNKNOWN;
}

void ListOpenFolder(DIR *pDir, std::string_view suffix, u32 bFacts, FolderListing *pListing)
{
    while (const dirent *pEntry = readdir(pDir)) {
        const std::string_view name = pEntry->d_name;
        struct stat st = {};
        if (!CanBeFile(*pEntry) || !EqualSuffix(name, suffix))
            continue;
        if (!OpensAgain(name)) {
            pListing->nLeftOut++;
            continue;
        }
        if (bFacts && (fstatat(dirfd(pDir), pEntry->d_name, &st, 0) != 0 || !S_ISREG(st.st_mode)))
            continue;
        const u32 iName = static_cast<u32>(pListing->sNames.size());
        pListing->sNames.append(name).push_back('\0');
        pListing->files.push_back({iName, static_cast<u32>(name.size()), bFacts ? FactsOf(st) : FileFacts{}});
    }
}

// Reads from the start to the end of the file; 0, EFBIG, or the error.
int ReadToEnd(int fd, u64 cbHint, u64 cbMax, ReadBuffer *pBuffer)
{
    pBuffer->cb = 0;
    // Less than was asked for is the end of a regular file: one byte too many saves the second call.
    for (u64 cbWanted = std::max(std::min(cbHint, cbMax) + 1, FIRST_READ);;) {
        if (pBuffer->ab.size() < pBuffer->cb + cbWanted + READ_SLACK)
            pBuffer->ab.resize(pBuffer->cb + cbWanted + READ_SLACK);
        const ssize_t cb = pread(fd, pBuffer->ab.data() + pBuffer->cb, cbWanted, static_cast<off_t>(pBuffer->cb));
        if (cb < 0 && errno != EINTR)
            return errno;
        pBuffer->cb += cb > 0 ? static_cast<u64>(cb) : 0;
        if (pBuffer->cb > cbMax)
            return EFBIG;
        if (cb >= 0 && static_cast<u64>(cb) < cbWanted)
            break;
        cbWanted = pBuffer->cb + FIRST_READ;
    }
    std::memset(pBuffer->ab.data() + pBuffer->cb, 0, READ_SLACK);
    return 0;
}

bool ReadAtRest(int fd, u64 cbMax, ReadBuffer *pBuffer, FileFacts *pFacts)
{
    for (u32 nReading = 0; nReading < READINGS_MAX; nReading++) {
        struct stat st;
        const FileFacts before = *pFacts;
        if (before.cb > cbMax || ReadToEnd(fd, before.cb, cbMax, pBuffer) != 0)
            return false;
        if (nReading == 0 && before.cb != 0 && pBuffer->cb == before.cb)
            return true;
        if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode))
            return false;
        *pFacts = FactsOf(st);
        if (*pFacts == before && pBuffer->cb == before.cb)
            return true;
    }
    return false;
}

int OpenIn(const OpenedFolder &folder, std::u16string_view path)
{
    constexpr int FLAGS = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
    const size_t cch = folder.folder.size();
    const bool bInside =
        folder.fd >= 0 && path.size() > cch + 1 && path.starts_with(folder.folder) && path[cch] == u'/';
    return bInside ? openat(folder.fd, ToUtf8(path.substr(cch + 1)).c_str(), FLAGS) : open(ToUtf8(path).c_str(), FLAGS);
}

} // namespace

FileKind QueryFile(std::u16string_view path, FileFacts *pFacts)
{
    struct stat st;
    if (path.empty() || stat(ToUtf8(path).c_str(), &st) != 0)
        return FileKind::Missing;
    if (!S_ISREG(st.st_mode))
        return S_ISDIR(st.st_mode) ? FileKind::Folder : FileKind::Other;
    if (pFacts)
        *pFacts = FactsOf(st);
    return FileKind::Regular;
}

u32 ListFolder(std::u16string_view folder, std::string_view suffix, u32 bFacts, FolderListing *pListing)
{
    pListing->sNames.clear();
    pListing->files.clear();
    pListing->nLeftOut = 0;
    DIR *pDir = opendir(ToUtf8(folder).c_str());
    if (!pDir)
        return 0;
    ListOpenFolder(pDir, suffix, bFacts, pListing);
    closedir(pDir);
    std::sort(pListing->files.begin(), pListing->files.end(), [&](const FolderFile &a, const FolderFile &b) {
        return std::strcmp(pListing->sNames.data() + a.iName, pListing->sNames.data() + b.iName) < 0;
    });
    return 1;
}

struct FolderWalk {
    DIR *pDir;
};

FolderWalk *OpenFolderWalk(std::u16string_view folder)
{
    DIR *pDir = opendir(ToUtf8(folder).c_str());
    return pDir ? new FolderWalk{pDir} : nullptr;
}

void CloseFolderWalk(FolderWalk *pWalk)
{
    if (pWalk)
        closedir(pWalk->pDir);
    delete pWalk;
}

std::string_view NextName(FolderWalk *pWalk)
{
    while (const dirent *pEntry = readdir(pWalk->pDir)) {
        const std::string_view name = pEntry->d_name;
        if (name != "." && name != ".." && OpensAgain(name))
            return name;
    }
    return {};
}

OpenedFolder OpenFolder(std::u16string_view folder)
{
    return {std::u16string(folder), open(ToUtf8(folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
}

void CloseFolder(OpenedFolder *pFolder)
{
    if (pFolder->fd >= 0)
        close(pFolder->fd);
    pFolder->fd = -1;
}

u32 ReadFileAndFacts(const OpenedFolder &folder, std::u16string_view path, u64 cbMax, ReadBuffer *pBuffer,
                     FileFacts *pFacts)
{
    if (pBuffer->ab.size() > BUFFER_KEPT_MAX)
        pBuffer->ab = {};
    const int fd = OpenIn(folder, path);
    if (fd < 0)
        return 0;
    const bool bRead = ReadAtRest(fd, cbMax, pBuffer, pFacts);
    close(fd);
    return bRead;
}
