// AtomicFile.h -- writes a file so that a failure leaves the old one whole
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// The folder in which new contents are written before they are renamed over the old file: a hidden folder of the data
// folder, made on first need. It keeps half-written files out of the folders that are watched or listed. Without one,
// or for a target on another file system, a hidden folder beside the target serves and is removed again. What a save
// left in either of them when it was killed is removed by a later save, a day after. [main-thread]
void SetSaveFolder(std::u16string_view folder);

// Replaces or creates the file. Non-zero only if all bytes have reached the disk under that name; otherwise the old
// file stands as it was, or the new one stands there and may not outlast a power cut, and *psWhy (may be null) says why
// and which in words for the user. Links are followed, also to where no file is yet, the permissions of the old file
// are kept, and a file without permission to write is left alone. [any-thread]
u32 SaveFileAtomically(std::u16string_view path, std::string_view bytes, std::string *psWhy = nullptr);
