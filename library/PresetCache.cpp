// PresetCache.cpp -- the summaries that survive between runs: PresetCache.dat
#include "library/PresetCache.h"

#include "library/PresetTable.h"
#include "modules/ModuleRegistry.h"
#include "platform/AtomicFile.h"
#include "platform/FileFacts.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <tuple>

namespace {

constexpr std::u16string_view CACHE_NAME = u"PresetCache.dat";
constexpr u32 BASE_NAME_CHARS = 255;
constexpr u32 RECORDS_PER_READ = 1024;

PresetCacheImage Cache; // does not change while other threads look into it

auto KeyOf(const CachedPreset &cached)
{
    return std::tie(cached.ftDate, cached.dwNameHash, cached.dwSize);
}

bool KeyIsBelow(const CachedPreset &a, const CachedPreset &b)
{
    return KeyOf(a) < KeyOf(b);
}

CachedPreset Compact(const PresetCacheRecord &record, const std::vector<u32> &adwModuleHash)
{
    return {record.ftDate,
            RemapCacheModules(record, adwModuleHash),
            record.dwNameHash,
            record.dwSize,
            std::max(record.nFavor, 0),
            record.bSoundSync != 0};
}

void SortRecords(std::vector<CachedPreset> *pRecords)
{
    std::stable_sort(pRecords->begin(), pRecords->end(), KeyIsBelow);
    const auto equal = [](const CachedPreset &a, const CachedPreset &b) { return KeyOf(a) == KeyOf(b); };
    pRecords->erase(std::unique(pRecords->begin(), pRecords->end(), equal), pRecords->end());
    pRecords->shrink_to_fit();
}

PresetCacheRecord RecordOf(const PresetInfo &info, const std::vector<u32> &adwModuleHash)
{
    PresetCacheRecord record = {};
    record.dwNameHash = HashBaseName({info.szPath, TextLength(info.szPath, NAME_CHARS)});
    record.ftDate = info.ftLastWrite;
    record.dwSize = info.dwSize;
    record.bSoundSync = info.bSoundSync;
    record.nFavor = info.nFavor;
    for (u32 i = 0; i < adwModuleHash.size(); i++)
        record.dwModuleHash[i] = info.bModuleUsed[i] ? adwModuleHash[i] : 0;
    return record;
}

void AppendBytes(std::string *ps, const void *pv, size_t cb)
{
    ps->append(static_cast<const char *>(pv), cb);
}

} // namespace

u32 HashBaseName(std::u16string_view path)
{
    std::u16string name(NameWithoutExtension(path).substr(0, BASE_NAME_CHARS));
    std::transform(name.begin(), name.end(), name.begin(), UpperCase);
    const u32 nWords = static_cast<u32>(name.size() / 4);
    const auto word = [&](u32 k, size_t cb) {
        u32 dw = 0;
        std::memcpy(&dw, reinterpret_cast<const char *>(name.data()) + k * sizeof dw, cb);
        return std::rotl(dw, static_cast<int>(k % 32));
    };
    u32 dwHash = 0;
    for (u32 k = 0; k < nWords; k++)
        dwHash ^= word(k, sizeof(u32));
    return name.size() % 4 ? dwHash ^ word(nWords, name.size() % 4) : dwHash;
}

std::vector<u32> HashModules()
{
    std::vector<u32> adwHash;
    for (u32 i = 0; i < std::min(ModuleCount(), PRESET_MODULES); i++)
        adwHash.push_back(HashBaseName(GetModuleRecord(i)->szDll));
    return adwHash;
}

u64 RemapCacheModules(const PresetCacheRecord &record, const std::vector<u32> &adwModuleHash)
{
    u64 qwModules = 0;
    for (u32 dwHash : record.dwModuleHash) {
        if (!dwHash)
            continue;
        const auto it = std::find(adwModuleHash.begin(), adwModuleHash.end(), dwHash);
        if (it != adwModuleHash.end())
            qwModules |= 1ull << (it - adwModuleHash.begin());
    }
    return qwModules;
}

u32 ReadCacheImage(FILE *pFile, u64 cbFile, PresetCacheImage *pImage)
{
    pImage->records = {};
    i32 nCount = 0;
    if (std::fread(&nCount, sizeof nCount, 1, pFile) != 1 || nCount < 1)
        return 0;
    const u32 nRecords = static_cast<u32>(nCount);
    if (nRecords > CACHE_RECORDS_MAX || cbFile != sizeof nCount + u64{nRecords} * sizeof(PresetCacheRecord))
        return 0;
    const std::vector<u32> adwModuleHash = HashModules();
    std::vector<PresetCacheRecord> block(std::min(RECORDS_PER_READ, nRecords));
    pImage->records.reserve(nRecords);
    while (pImage->records.size() < nRecords) {
        const size_t nBlock = std::min<size_t>(block.size(), nRecords - pImage->records.size());
        if (std::fread(block.data(), sizeof(PresetCacheRecord), nBlock, pFile) != nBlock) {
            pImage->records = {};
            return 0;
        }
        for (size_t i = 0; i < nBlock; i++)
            pImage->records.push_back(Compact(block[i], adwModuleHash));
    }
    SortRecords(&pImage->records);
    return 1;
}

u32 LoadPresetCache(std::u16string_view folder)
{
    Cache = {};
    const std::u16string path = JoinPath(folder, CACHE_NAME);
    FileFacts facts;
    if (QueryFile(path, &facts) != FileKind::Regular)
        return 0;
    const std::unique_ptr<FILE, int (*)(FILE *)> file(OpenFile(path, "rbe"), std::fclose);
    return file && ReadCacheImage(file.get(), facts.cb, &Cache);
}

void FreePresetCache()
{
    Cache = {};
}

const CachedPreset *LookupPresetCache(std::u16string_view path, u64 ftLastWrite, u32 dwSize)
{
    if (Cache.records.empty())
        return nullptr;
    CachedPreset wanted = {};
    wanted.ftDate = ftLastWrite;
    wanted.dwNameHash = HashBaseName(path);
    wanted.dwSize = dwSize;
    const auto it = std::lower_bound(Cache.records.begin(), Cache.records.end(), wanted, KeyIsBelow);
    return it != Cache.records.end() && KeyOf(*it) == KeyOf(wanted) ? &*it : nullptr;
}

std::string BuildCacheImage()
{
    const std::vector<u32> adwModuleHash = HashModules();
    u32 nRecords = 0;
    std::string bytes(sizeof nRecords, '\0');
    ForEachPreset([&](i32, const PresetInfo *lppi) {
        const PresetCacheRecord record = RecordOf(*lppi, adwModuleHash);
        AppendBytes(&bytes, &record, sizeof record);
        nRecords++;
    });
    std::memcpy(bytes.data(), &nRecords, sizeof nRecords);
    return bytes;
}

u32 SavePresetCache(std::u16string_view folder, std::string *psWhy)
{
    return SaveFileAtomically(JoinPath(folder, CACHE_NAME), BuildCacheImage(), psWhy);
}
