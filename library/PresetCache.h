// PresetCache.h -- the summaries that survive between runs: PresetCache.dat
//
// The file: the number of records as a 32-bit integer, then the records, all little-endian. It names modules by the
// hash of their file names, since set and order of the modules may differ on the next run.
#pragma once

#include "library/PresetInfo.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#pragma pack(push, 4)
struct PresetCacheRecord {
    u32 dwNameHash; // HashBaseName of the path
    u32 dwReserved0;
    u64 ftDate;
    u32 dwSize;
    u32 bSoundSync;
    i32 nFavor;
    u32 dwModuleHash[PRESET_MODULES]; // HashBaseName of the module's file if the preset uses it, else 0
    u32 dwReserved1;
};
#pragma pack(pop)
static_assert(sizeof(PresetCacheRecord) == 288 && offsetof(PresetCacheRecord, ftDate) == 8 &&
              offsetof(PresetCacheRecord, dwModuleHash) == 28);

constexpr u32 CACHE_RECORDS_MAX = 1u << 20; // more than a folder can sensibly hold: such a file is no cache

// A record with the modules of this run: a seventh of the size, for these stay in memory.
struct CachedPreset {
    u64 ftDate;
    u64 qwModules; // one bit for each module of this run
    u32 dwNameHash;
    u32 dwSize;
    i32 nFavor;
    u32 bSoundSync;
};

// Sorted by date, hash and size; of equal ones only the first of the file is left.
struct PresetCacheImage {
    std::vector<CachedPreset> records;
};

// The hash of the name without folder and extension, in upper case whatever the locale: the words of two characters are
// rotated by their place and combined. L characters give L / 4 words and L % 4 bytes, so that only the first half of a
// name counts. 0 for an empty path.
u32 HashBaseName(std::u16string_view path);
// The same for a module, cached by whoever needs all of them.
std::vector<u32> HashModules();

// Turns the module hashes of a stored record into bits of this run's modules; a module that is gone is dropped.
u64 RemapCacheModules(const PresetCacheRecord &record, const std::vector<u32> &adwModuleHash);

// Reads a cache of cbFile bytes. 0, and an empty image, for one that is damaged: the presets are then read again.
u32 ReadCacheImage(FILE *pFile, u64 cbFile, PresetCacheImage *pImage);
// The cache file of the folder into the process-wide image. 0: there is none that is of use. Before the first thread
// that looks into it.
u32 LoadPresetCache(std::u16string_view folder);
void FreePresetCache();

// The record with the date, size and name of the file, or null. Does not read the file. [any-thread]
const CachedPreset *LookupPresetCache(std::u16string_view path, u64 ftLastWrite, u32 dwSize);

// The file's bytes for the live entries, in the order of their slots.
std::string BuildCacheImage();
// Writes them. 0 when the old file stands as it was; *psWhy (may be null) then says why.
u32 SavePresetCache(std::u16string_view folder, std::string *psWhy = nullptr);
