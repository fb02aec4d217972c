// FolderNotices.cpp -- what the system tells of changes in a folder, through inotify
#include "platform/FolderNotices.h"

#include "platform/Text.h"
#include "platform/Threads.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <new>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

struct FolderNotices {
    int fdNotify;
    int fdStop; // stays readable once a stop was asked for
};

namespace {

constexpr u32 WATCH_MASK = IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE | IN_MOVED_FROM |
                           IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;

struct KindRow {
    u32 dwBits;
    NoticeKind eKind;
};
constexpr KindRow asKind[] = {
    {IN_Q_OVERFLOW, NoticeKind::Lost},
    {IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED, NoticeKind::Ended},
    {IN_CREATE, NoticeKind::Created},
    {IN_MODIFY, NoticeKind::Touched},
    {IN_CLOSE_WRITE | IN_ATTRIB, NoticeKind::Written},
    {IN_DELETE, NoticeKind::Removed},
    {IN_MOVED_FROM, NoticeKind::MovedFrom},
    {IN_MOVED_TO, NoticeKind::MovedTo},
};

void AppendNotice(const inotify_event &event, const char *pszName, std::vector<FolderNotice> *pTo)
{
    const auto row = std::find_if(std::begin(asKind), std::end(asKind),
                                  [&](const KindRow &r) { return (event.mask & r.dwBits) != 0; });
    if (row == std::end(asKind))
        return;
    const bool bWhole = row->eKind == NoticeKind::Lost || row->eKind == NoticeKind::Ended;
    // The attributes of the folder itself come without a name.
    if (!bWhole && ((event.mask & IN_ISDIR) || event.len == 0))
        return;
    pTo->push_back({row->eKind, event.cookie, bWhole ? std::string() : std::string(pszName)});
}

void ParseNotices(const char *pBytes, size_t cb, std::vector<FolderNotice> *pTo)
{
    for (size_t i = 0; i + sizeof(inotify_event) <= cb;) {
        inotify_event event;
        std::memcpy(&event, pBytes + i, sizeof event);
        AppendNotice(event, pBytes + i + sizeof event, pTo);
        i += sizeof event + event.len;
    }
}

// As poll: how many have something to tell; 0 when the time is over, below 0 on failure.
int Poll(std::span<pollfd> fds, u32 nWaitMs)
{
    const int nTimeout = nWaitMs == WAIT_FOREVER ? -1 : static_cast<int>(std::min<u32>(nWaitMs, INT_MAX));
    int n = 0;
    do
        n = poll(fds.data(), fds.size(), nTimeout);
    while (n < 0 && errno == EINTR);
    return n;
}

// -1 when the folder is none or the system has no more watches to give.
int StartWatching(std::u16string_view folder)
{
    const int fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd < 0 || inotify_add_watch(fd, ToUtf8(folder).c_str(), WATCH_MASK) >= 0)
        return fd;
    close(fd);
    return -1;
}

} // namespace

FolderNotices *OpenFolderNotices(std::u16string_view folder)
{
    auto *pNotices = new (std::nothrow) FolderNotices{-1, -1};
    if (!pNotices)
        return nullptr;
    pNotices->fdNotify = StartWatching(folder);
    pNotices->fdStop = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (pNotices->fdNotify >= 0 && pNotices->fdStop >= 0)
        return pNotices;
    CloseFolderNotices(pNotices);
    return nullptr;
}

void CloseFolderNotices(FolderNotices *pNotices)
{
    if (!pNotices)
        return;
    for (int fd : {pNotices->fdNotify, pNotices->fdStop})
        if (fd >= 0)
            close(fd);
    delete pNotices;
}

u32 RenewFolderNotices(FolderNotices *pNotices, std::u16string_view folder)
{
    const int fd = StartWatching(folder);
    if (fd < 0)
        return 0;
    close(pNotices->fdNotify);
    pNotices->fdNotify = fd;
    return 1;
}

NoticeWait WaitFolderNotices(const FolderNotices *pNotices, u32 nWaitMs)
{
    pollfd afd[] = {{pNotices->fdStop, POLLIN, 0}, {pNotices->fdNotify, POLLIN, 0}};
    const int n = Poll(afd, nWaitMs);
    if (n <= 0)
        return n == 0 ? NoticeWait::TimedOut : NoticeWait::Failed;
    if (afd[0].revents)
        return NoticeWait::Stopped;
    return afd[1].revents & POLLIN ? NoticeWait::Ready : NoticeWait::Failed;
}

bool WaitNoticesStopped(const FolderNotices *pNotices, u32 nWaitMs)
{
    pollfd fd = {pNotices->fdStop, POLLIN, 0};
    return Poll({&fd, 1}, nWaitMs) > 0;
}

u32 ReadFolderNotices(const FolderNotices *pNotices, std::span<char> buffer, std::vector<FolderNotice> *pTo)
{
    for (;;) {
        const ssize_t cb = read(pNotices->fdNotify, buffer.data(), buffer.size());
        if (cb > 0)
            ParseNotices(buffer.data(), static_cast<size_t>(cb), pTo);
        else if (cb == 0 || errno != EINTR)
            return cb < 0 && errno == EAGAIN;
    }
}

void StopFolderNotices(const FolderNotices *pNotices)
{
    const u64 qwOne = 1;
    [[maybe_unused]] const ssize_t cb = write(pNotices->fdStop, &qwOne, sizeof qwOne);
}
