// FrameOutput.cpp -- where the frames of a headless run go: numbered picture files, or raw bytes to standard output
#include "app/FrameOutput.h"

#include "output/pictures/PixelRows.h"
#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr u32 FILE_QUALITY = 95;
constexpr int PIPE_BYTES = 1024 * 1024; // the most that a user may ask for by default

int nRawError = 0; // of the first raw frame that failed; read and written by the one worker

// A program before or behind this one may have set the pipe so that a full one is an error: then wait for room.
bool WriteToOutput(const u8 *p, size_t cb)
{
    while (cb > 0) {
        const ssize_t cbWritten = write(STDOUT_FILENO, p, cb);
        if (cbWritten >= 0) {
            p += cbWritten;
            cb -= static_cast<size_t>(cbWritten);
        } else if (errno == EAGAIN) {
            pollfd pfd = {STDOUT_FILENO, POLLOUT, 0};
            poll(&pfd, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool WriteRawRows(const HostBitmap *hbm)
{
    const i32 nRows = RowsInBlock(hbm->cbRow, hbm->nHeight);
    std::vector<u8> block(hbm->cbRow * static_cast<u64>(nRows));
    for (i32 y = hbm->nHeight; y > 0;) {
        const i32 yEnd = std::max(y - nRows, 0);
        u8 *pTo = block.data();
        for (; y > yEnd; pTo += hbm->cbRow)
            std::memcpy(pTo, BitmapRow(hbm, --y), hbm->cbRow);
        if (!WriteToOutput(block.data(), static_cast<size_t>(pTo - block.data())))
            return false;
    }
    return true;
}

// After a frame that failed half way, everything behind it would be out of place.
u32 SaveRawFrame(const HostBitmap *hbm, const char16_t *, u32)
{
    if (nRawError == 0 && !WriteRawRows(hbm))
        nRawError = errno ? errno : EIO;
    errno = nRawError;
    return nRawError == 0;
}

void NoteWritten(const PictureResult &result, void *pv)
{
    CountWrite(static_cast<RenderStats *>(pv), result.nNanoseconds);
}

} // namespace

PictureQueue *StartFrameOutput(const RenderOptions &ro, RenderStats *prs)
{
    ASSERT_MAIN_THREAD();
    PictureQueueOptions options = {};
    options.pfnDone = NoteWritten;
    options.pvContext = prs;
    if (ro.out == "-") {
        options.nWorkers = 1; // keeps the order
        options.nHeld = 3;
        options.pfnSave = SaveRawFrame;
        nRawError = 0;
        fcntl(STDOUT_FILENO, F_SETPIPE_SZ, PIPE_BYTES); // fewer switches between the two programs; no pipe, no matter
    }
    return StartPictureQueue(options);
}

void SubmitFrame(PictureQueue *pQueue, const RenderOptions &ro, const HostBitmap *hbm, u32 dwNumber)
{
    if (ro.out == "-")
        SubmitPicture(pQueue, hbm, FromUtf8("frame " + std::to_string(dwNumber) + " on standard output"), 0);
    else
        SubmitPicture(pQueue, hbm, FormatNumberPattern(ro.pattern, dwNumber), FILE_QUALITY);
}
