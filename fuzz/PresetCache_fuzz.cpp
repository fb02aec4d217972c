// PresetCache_fuzz.cpp -- the cache file: hostile bytes never get past the limits, and what was read can be found again
#include "library/PresetCache.h"

#include "modules/ModuleRegistry.h"
#include "platform/Assert.h"
#include "platform/Text.h"

#include <algorithm>

namespace {

u32 LoadTestModules()
{
    for (const char16_t *pszName : {u"Idle.dll", u"Recorder.dll", u"RecorderColor.dll"})
        LoadModule(FromUtf8(TEST_MODULE_FOLDER) + u"/" + pszName);
    return ModuleCount();
}

void CheckImage(const PresetCacheImage &image, size_t cb)
{
    VD_ASSERT(image.records.size() * sizeof(PresetCacheRecord) + sizeof(u32) <= cb);
    const u64 qwModules = (1ull << ModuleCount()) - 1;
    for (const CachedPreset &cached : image.records)
        VD_ASSERT(cached.bSoundSync <= 1 && cached.nFavor >= 0 && (cached.qwModules & ~qwModules) == 0);
    VD_ASSERT(std::adjacent_find(image.records.begin(), image.records.end(), [](const auto &a, const auto &b) {
                  return a.ftDate == b.ftDate && a.dwNameHash == b.dwNameHash && a.dwSize == b.dwSize;
              }) == image.records.end());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8 *pData, size_t cb)
{
    static const u32 nModules = LoadTestModules();
    VD_ASSERT(nModules == 3);
    FILE *pFile = cb ? fmemopen(const_cast<u8 *>(pData), cb, "rb") : nullptr;
    if (!pFile)
        return 0;
    PresetCacheImage image;
    // The size that the system tells and the bytes that come need not agree: somebody may write meanwhile.
    const u64 cbClaimed = cb % 5 == 0 ? cb + sizeof(PresetCacheRecord) : cb;
    if (ReadCacheImage(pFile, cbClaimed, &image))
        CheckImage(image, cb);
    else
        VD_ASSERT(image.records.empty());
    std::fclose(pFile);
    return 0;
}
