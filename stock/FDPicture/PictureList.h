// PictureList.h -- the pictures that ship, and what to say about files that are none
#ifndef VORTICADE_PICTURE_LIST_H
#define VORTICADE_PICTURE_LIST_H

#include "PictureFile.h"

#include "../common/StockFiles.h"
#include "module.h"

// A picture of the Images folder, another than the last one where there are several; empty: there is none.
std::string StockPicture(const std::string &last, uint32_t dwRandom);

// In the message overlay, or on standard error where there is none. No fault: clears the overlay.
void ShowPictureFault(ShowModuleMessageFn pfnShowMessage, const std::string &path, PictureFault eFault);

#endif
