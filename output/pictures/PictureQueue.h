// PictureQueue.h -- saves pictures on worker threads behind a bounded queue, while the next frame is drawn
#pragma once

#include "include/hosttypes.h"
#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

struct PictureQueue; // opaque

// What became of one picture.
struct PictureResult {
    std::u16string_view path; // as submitted; valid during the call
    u64 nOrder;               // 1 for the first picture submitted, and so on
    u32 bSaved;
    int nError;       // errno of the failure; 0: not known, or saved
    i64 nNanoseconds; // that saving took, waiting not counted
};

// Saves one picture; SavePicture unless something else is wanted. Non-zero: saved; else errno tells why.
using SavePictureFn = u32 (*)(const HostBitmap *hbm, const char16_t *pszPath, u32 nQuality);
// Called once for every picture, saved or not, on the thread that saved it but never by two threads at once; must not
// call the queue.
using PictureDoneFn = void (*)(const PictureResult &result, void *pvContext);

// Zero-filled is valid.
struct PictureQueueOptions {
    u32 nWorkers; // 0: one for each processor. One worker saves in the order of submission
    u32 nHeld;    // pictures that are waiting or being saved, at most; 0: two for each worker
    SavePictureFn pfnSave;
    PictureDoneFn pfnDone; // null: nobody wants to know
    void *pvContext;       // of pfnDone
};

// Counts since the start of the queue.
struct PictureReport {
    u64 nSubmitted;
    u64 nSaved;
    u64 nFailed;                // what is submitted and neither saved nor failed is still on its way
    std::u16string firstFailed; // path of the failed picture that was submitted first
    int nFirstError;            // and its errno; 0: not known
};

// Starts the worker threads. Never null: where no thread can be had, SubmitPicture saves by itself. [main-thread]
PictureQueue *StartPictureQueue(const PictureQueueOptions &options);

// Copies the bitmap and returns; waits while the queue is full (nHeld pictures, or a gigabyte of pixels), or while a
// picture of the same path is on its way. Every picture that is submitted is tried, whatever became of those before
// it. Pictures may differ in size. One thread at a time.
void SubmitPicture(PictureQueue *pQueue, const HostBitmap *hbm, std::u16string_view path, u32 nQuality);

// Non-zero when SubmitPicture would not wait. For callers that have events to serve meanwhile. [any-thread]
u32 PictureQueueHasRoom(PictureQueue *pQueue, const HostBitmap *hbm, std::u16string_view path);

PictureReport ReadPictureReport(PictureQueue *pQueue); // [any-thread]

// Waits until everything submitted is saved or has failed. The queue can go on being used. Not while another thread
// submits.
void FinishPictures(PictureQueue *pQueue);

// Finishes, ends the threads and frees everything. Null is fine. Not while another thread uses the queue.
void StopPictureQueue(PictureQueue *pQueue);

// "PATH cannot be written: reason", for a failed picture and its errno.
std::string PictureFailureText(std::u16string_view path, int nError);
