// WholeFile.cpp -- reads a file into memory at once
#include "platform/WholeFile.h"

#include "platform/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Reads to the end of the file; 0, EFBIG beyond cbMax bytes, or the error. The size is only a hint: a file can grow
// meanwhile.
int ReadToEnd(int fd, u64 cbHint, u64 cbMax, std::string *psBytes)
{
    psBytes->resize(std::min(cbHint, cbMax) + 1);
    u64 cb = 0;
    for (;;) {
        const ssize_t cbRead = read(fd, psBytes->data() + cb, psBytes->size() - cb);
        if (cbRead < 0 && errno == EINTR)
            continue;
        if (cbRead < 0)
            return errno;
        cb += static_cast<u64>(cbRead);
        if (cb > cbMax)
            return EFBIG;
        if (cbRead == 0)
            break;
        if (cb == psBytes->size())
            psBytes->resize(std::min(cb * 2, cbMax + 1));
    }
    psBytes->resize(cb);
    return 0;
}

// Opens a regular file; an error number otherwise.
int OpenRegularFile(const std::string &sPath, int *pfd, u64 *pcb)
{
    *pfd = open(sPath.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (*pfd < 0)
        return errno;
    struct stat st;
    const int nError = fstat(*pfd, &st) != 0 ? errno : S_ISREG(st.st_mode) ? 0 : EINVAL;
    if (nError != 0)
        close(*pfd);
    else
        *pcb = static_cast<u64>(st.st_size);
    return nError;
}

int ReadRegularFile(const std::string &sPath, u64 cbMax, std::string *psBytes)
{
    int fd;
    u64 cb = 0;
    int nError = OpenRegularFile(sPath, &fd, &cb);
    if (nError != 0)
        return nError;
    nError = cb > cbMax ? EFBIG : ReadToEnd(fd, cb, cbMax, psBytes);
    close(fd);
    return nError;
}

} // namespace

u32 ReadWholeFile(std::u16string_view path, u64 cbMax, std::string *psBytes, std::string *psWhy)
{
    const std::string sPath = NativePath(path);
    const int nError = ReadRegularFile(sPath, cbMax, psBytes);
    if (nError == 0)
        return 1;
    psBytes->clear();
    if (psWhy && nError == EFBIG)
        *psWhy = sPath + ": larger than the " + std::to_string(cbMax) + " bytes that such a file can have";
    else if (psWhy && nError == EINVAL)
        *psWhy = sPath + ": no ordinary file";
    else if (psWhy && nError != ENOENT)
        *psWhy = sPath + ": " + std::strerror(nError);
    return 0;
}

u32 ReadFileStart(std::u16string_view path, u64 cbMost, std::string *psBytes)
{
    int fd;
    u64 cb = 0;
    psBytes->clear();
    if (OpenRegularFile(NativePath(path), &fd, &cb) != 0)
        return 0;
    psBytes->resize(cbMost);
    cb = 0;
    ssize_t cbRead = 1;
    while (cbRead != 0 && cb < cbMost) {
        cbRead = read(fd, psBytes->data() + cb, cbMost - cb);
        if (cbRead < 0 && errno != EINTR)
            break;
        cb += cbRead > 0 ? static_cast<u64>(cbRead) : 0;
    }
    close(fd);
    psBytes->resize(cbRead < 0 ? 0 : cb);
    return cbRead >= 0;
}
