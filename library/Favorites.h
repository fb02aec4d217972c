// Favorites.h -- how often the user favored each preset: the key, and Favorites.XML
#pragma once

#include "platform/BaseTypes.h"

#include <string>
#include <string_view>

// Takes the favor presses that wait in the flag bFavorPending of the visuals window: they count once, however many
// there were, for the preset of the document. To be called from a timer of 200 ms. Non-zero if a press was
// waiting: a list of presets then shows another count. [main-thread]
u32 ServeFavorPresses(u32 *pbPending);

// Puts the counts of the file into the table. 0 when it cannot be opened. Names that match no preset are dropped.
u32 LoadFavorites(std::u16string_view path);
// Writes the counts of all favored presets; without any, an earlier file stays as it is. 0 when the file could not be
// written; it then is as it was, and *psWhy (may be null) says why.
u32 SaveFavorites(std::u16string_view path, std::string *psWhy = nullptr);
