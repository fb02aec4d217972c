// PictureLoader.cpp -- takes requests, loads, hands over
#include "PictureLoader.h"

#include <system_error>

static void Work(PictureLoader *pLoader)
{
    std::unique_lock lock(pLoader->mtx);
    for (;;) {
        pLoader->cv.wait(lock, [&] { return pLoader->bQuit || pLoader->bRequested; });
        if (pLoader->bQuit)
            return;
        const std::string path = std::move(pLoader->request);
        pLoader->bRequested = false;
        lock.unlock();
        PictureLevels levels;
        const PictureFault eFault = LoadPicture(path, &levels);
        lock.lock();
        if (pLoader->bRequested) // overtaken
            continue;
        std::swap(pLoader->loaded, levels);
        pLoader->eFault = eFault;
        pLoader->bLoaded = true;
    }
}

bool RequestPicture(PictureLoader *pLoader, const std::string &path)
{
    if (!pLoader->worker.joinable()) {
        try {
            pLoader->worker = std::thread(Work, pLoader);
        } catch (const std::system_error &) {
            return false;
        }
    }
    const std::lock_guard lock(pLoader->mtx);
    pLoader->request = path;
    pLoader->bRequested = true;
    pLoader->bLoaded = false;
    pLoader->cv.notify_one();
    return true;
}

bool TakePicture(PictureLoader *pLoader, PictureLevels *pLevels, PictureFault *peFault)
{
    const std::lock_guard lock(pLoader->mtx);
    if (!pLoader->bLoaded)
        return false;
    pLoader->bLoaded = false;
    *pLevels = std::move(pLoader->loaded);
    pLoader->loaded = {};
    *peFault = pLoader->eFault;
    return true;
}

void StopLoader(PictureLoader *pLoader)
{
    if (!pLoader->worker.joinable())
        return;
    {
        const std::lock_guard lock(pLoader->mtx);
        pLoader->bQuit = true;
        pLoader->cv.notify_one();
    }
    pLoader->worker.join();
    pLoader->bQuit = false;
}
