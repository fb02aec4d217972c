// PictureLoader.h -- a worker thread of one instance that loads pictures
#ifndef VORTICADE_PICTURE_LOADER_H
#define VORTICADE_PICTURE_LOADER_H

#include "PictureFile.h"

#include <condition_variable>
#include <mutex>
#include <thread>

// The thread starts with the first request and sleeps between them. All functions: one caller at a time.
struct PictureLoader {
    std::thread worker;
    std::mutex mtx;
    std::condition_variable cv;
    // Guarded by mtx:
    std::string request; // the file to load next
    bool bRequested, bQuit;
    bool bLoaded; // loaded and eFault answer the last request
    PictureLevels loaded;
    PictureFault eFault;
};

// Asks for a picture; an earlier request that is not yet answered is dropped. False if there can be no thread.
bool RequestPicture(PictureLoader *pLoader, const std::string &path);

// True once per request, when it has been answered. Never waits for a file.
bool TakePicture(PictureLoader *pLoader, PictureLevels *pLevels, PictureFault *peFault);

// Ends the thread; waits for the file that it is decoding.
void StopLoader(PictureLoader *pLoader);

#endif
