// AtomicFile.cpp -- writes a file so that a failure leaves the old one whole
#include "platform/AtomicFile.h"

#include "platform/Files.h"
#include "platform/MainThread.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t NEW_FILE_MODE = 0666;
constexpr mode_t PERMISSION_BITS = 0777;
constexpr u32 LINKS_MAX = 40; // as many as the system follows
constexpr time_t STALE_SECONDS = 24 * 60 * 60;
constexpr int FOLDER_FLAGS = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr char TEMPORARY_FOLDER[] = ".saving-"; // and six more characters

std::string sSaveFolder; // native path; empty: none. Set once at start

std::string FolderPart(const std::string &sPath)
{
    const size_t iSlash = sPath.rfind('/');
    return iSlash == std::string::npos ? "." : iSlash == 0 ? "/" : sPath.substr(0, iSlash);
}

// Where the last of the links leads, be there a file or not. A ring of links stays a link, which cannot be opened.
std::string FollowLinks(std::string s)
{
    for (u32 i = 0; i < LINKS_MAX; i++) {
        char szTarget[PATH_MAX];
        const ssize_t cch = readlink(s.c_str(), szTarget, sizeof szTarget);
        if (cch <= 0)
            break;
        const std::string sTarget(szTarget, static_cast<size_t>(cch));
        s = sTarget[0] == '/' ? sTarget : FolderPart(s) + "/" + sTarget;
    }
    return s;
}

bool IsOurs(int fdFolder, const char *pszName, mode_t nKind, time_t nNow)
{
    struct stat st;
    return fstatat(fdFolder, pszName, &st, AT_SYMLINK_NOFOLLOW) == 0 && (st.st_mode & S_IFMT) == nKind &&
           st.st_uid == geteuid() && st.st_mtime < nNow - STALE_SECONDS;
}

bool IsTemporaryName(std::string_view name)
{
    return name.ends_with(".tmp") && name.size() > 4 &&
           name.substr(0, name.size() - 4).find_first_not_of("0123456789-") == name.npos;
}

bool IsTemporaryFolderName(std::string_view name)
{
    return name.starts_with(TEMPORARY_FOLDER) && name.size() == std::strlen(TEMPORARY_FOLDER) + 6;
}

// What a save left that was killed: more than a day old, so that no other program is still at it. Takes the descriptor.
void RemoveStaleFiles(int fdFolder)
{
    DIR *pFolder = fdFolder >= 0 ? fdopendir(fdFolder) : nullptr;
    if (!pFolder) {
        if (fdFolder >= 0)
            close(fdFolder);
        return;
    }
    const time_t nNow = time(nullptr);
    while (const dirent *pEntry = readdir(pFolder))
        if (IsTemporaryName(pEntry->d_name) && IsOurs(fdFolder, pEntry->d_name, S_IFREG, nNow))
            unlinkat(fdFolder, pEntry->d_name, 0);
    closedir(pFolder);
}

void RemoveStaleFolders(const std::string &sFolder)
{
    DIR *pFolder = opendir(sFolder.c_str());
    if (!pFolder)
        return;
    const int fdFolder = dirfd(pFolder);
    const time_t nNow = time(nullptr);
    while (const dirent *pEntry = readdir(pFolder))
        if (IsTemporaryFolderName(pEntry->d_name) && IsOurs(fdFolder, pEntry->d_name, S_IFDIR, nNow)) {
            RemoveStaleFiles(openat(fdFolder, pEntry->d_name, FOLDER_FLAGS));
            unlinkat(fdFolder, pEntry->d_name, AT_REMOVEDIR);
        }
    closedir(pFolder);
}

// How a save went.
struct SaveResult {
    int nError;   // 0: all is on the disk
    u32 bInPlace; // the new file has its name, whatever failed after that
};

int WriteAll(int fd, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t cb = write(fd, bytes.data(), bytes.size());
        if (cb < 0 && errno != EINTR)
            return errno;
        if (cb > 0)
            bytes.remove_prefix(static_cast<size_t>(cb));
    }
    return 0;
}

// Some file systems cannot flush a folder; that is no failure of the save.
int FlushFolder(const std::string &sFolder)
{
    const int fd = open(sFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return 0;
    const int nError = fsync(fd) != 0 && errno == EIO ? EIO : 0;
    close(fd);
    return nError;
}

// A new file under a name that nobody else has; -1 with errno set on failure.
int CreateTemporary(const std::string &sFolder, std::string *psName)
{
    static std::atomic<u32> nNext{0};
    for (u32 nTry = 0; nTry < 1000; nTry++) {
        *psName = sFolder + "/" + std::to_string(getpid()) + "-" + std::to_string(nNext++) + ".tmp";
        const int fd = open(psName->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, NEW_FILE_MODE);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

int WriteAndFlush(int fd, std::string_view bytes, mode_t nMode)
{
    if (nMode && fchmod(fd, nMode) != 0)
        return errno;
    const int nError = WriteAll(fd, bytes);
    return nError ? nError : fsync(fd) == 0 ? 0 : errno;
}

// Writes the bytes in the folder and renames them over the target. EXDEV when the folder cannot serve this target.
SaveResult SaveThrough(const std::string &sFolder, const std::string &sTarget, std::string_view bytes, mode_t nMode)
{
    std::string sName;
    const int fd = CreateTemporary(sFolder, &sName);
    if (fd < 0)
        return {EXDEV, 0};
    int nError = WriteAndFlush(fd, bytes, nMode);
    if (close(fd) != 0 && nError == 0)
        nError = errno;
    if (nError == 0 && rename(sName.c_str(), sTarget.c_str()) != 0)
        nError = errno;
    if (nError == 0)
        return {FlushFolder(FolderPart(sTarget)), 1};
    unlink(sName.c_str());
    return {nError, 0};
}

SaveResult SaveBeside(const std::string &sTarget, std::string_view bytes, mode_t nMode)
{
    RemoveStaleFolders(FolderPart(sTarget));
    std::string sFolder = FolderPart(sTarget) + "/" + TEMPORARY_FOLDER + "XXXXXX";
    if (!mkdtemp(sFolder.data()))
        return {errno, 0};
    const SaveResult result = SaveThrough(sFolder, sTarget, bytes, nMode);
    rmdir(sFolder.c_str());
    return result;
}

SaveResult Save(const std::string &sTarget, std::string_view bytes)
{
    struct stat st;
    const bool bExists = stat(sTarget.c_str(), &st) == 0;
    if (!bExists && errno != ENOENT)
        return {errno, 0};
    if (bExists && !S_ISREG(st.st_mode))
        return {S_ISDIR(st.st_mode) ? EISDIR : EINVAL, 0};
    if (bExists && access(sTarget.c_str(), W_OK) != 0)
        return {errno, 0};
    const mode_t nMode = bExists ? st.st_mode & PERMISSION_BITS : 0;
    SaveResult result = {EXDEV, 0};
    if (!sSaveFolder.empty() && (mkdir(sSaveFolder.c_str(), 0700) == 0 || errno == EEXIST)) {
        RemoveStaleFiles(open(sSaveFolder.c_str(), FOLDER_FLAGS));
        result = SaveThrough(sSaveFolder, sTarget, bytes, nMode);
    }
    return result.nError == EXDEV ? SaveBeside(sTarget, bytes, nMode) : result;
}

} // namespace

void SetSaveFolder(std::u16string_view folder)
{
    ASSERT_MAIN_THREAD();
    sSaveFolder = NativePath(folder);
}

u32 SaveFileAtomically(std::u16string_view path, std::string_view bytes, std::string *psWhy)
{
    ASSERT_MAIN_THREAD();
    const std::string sPath = NativePath(path);
    const SaveResult result = sPath.empty() ? SaveResult{ENOENT, 0} : Save(FollowLinks(sPath), bytes);
    if (result.nError && psWhy)
        *psWhy = "Cannot save " + sPath + ": " + std::strerror(result.nError) +
                 (result.bInPlace ? ". The file has the new contents, but a power cut may bring the old ones back."
                                  : ". The file is as it was before.");
    return result.nError == 0;
}
