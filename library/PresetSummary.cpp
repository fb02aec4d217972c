// PresetSummary.cpp -- what a full read of a preset's text tells: sound, modules, and whether it can run here
//
// One pass over the text, whatever the number of modules: the file names of modules all end in ".dll", so the pass
// stops at these endings and asks which names stand before them.
#include "library/PresetSummary.h"

#include "engine/TextTools.h"
#include "library/PresetCache.h"
#include "modules/ModuleRegistry.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <vector>

namespace {

constexpr u64 PRESET_BYTES_MAX = 48000001; // no larger one can be loaded
constexpr u32 NAME_BYTES_MAX = 259;        // a longer module name takes no part
constexpr u32 SIZE_UNKNOWN = ALL_ONES;
constexpr std::string_view SOUND_PROBE = ">8</source>"; // the sound source in a control's "Source" element
constexpr std::string_view NAME_ENDING = ".dll";
constexpr u64 BLOCK = 64;
static_assert(READ_SLACK >= BLOCK + SOUND_PROBE.size());

struct SummaryProbes {
    std::vector<std::string> asName;     // of each module, in lower case; empty: takes no part
    std::array<u64, 256> aqwByLast = {}; // modules by the byte before the ending
    u64 qwBareEnding = 0;                // modules that are called as the ending itself
    std::vector<u32> aiOther;            // modules with another ending
    u64 qwUnavailable = 0;
};

SummaryProbes Probes; // does not change while summaries are made

char Lower(char ch)
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch + 32) : ch;
}

std::string ProbeName(u32 iModule)
{
    std::string s = ToUtf8(GetModuleRecord(iModule)->szDll);
    std::transform(s.begin(), s.end(), s.begin(), Lower);
    return s.size() <= NAME_BYTES_MAX ? s : std::string();
}

void AddProbe(u32 iModule, const std::string &sName)
{
    const u64 qwBit = 1ull << iModule;
    if (sName == NAME_ENDING)
        Probes.qwBareEnding |= qwBit;
    else if (sName.ends_with(NAME_ENDING))
        Probes.aqwByLast[static_cast<u8>(sName[sName.size() - NAME_ENDING.size() - 1])] |= qwBit;
    else if (!sName.empty())
        Probes.aiOther.push_back(iModule);
}

bool EqualAt(const char *p, std::string_view lower)
{
    return std::equal(lower.begin(), lower.end(), p, [](char a, char b) { return a == Lower(b); });
}

// Written so that compilers turn it into a few vector instructions.
bool BlockHasCandidate(const char *p)
{
    u8 bAny = 0;
    for (u64 i = 0; i < BLOCK; i++) {
        bAny |= static_cast<u8>((p[i] == '.') & ((p[i + 1] | 0x20) == 'd'));
        bAny |= static_cast<u8>((p[i] == '>') & (p[i + 1] == '8'));
    }
    return bAny != 0;
}

// The modules whose names end where the ending at pEnding does.
u64 ModulesAt(const char *pText, const char *pEnding, u64 qwFound)
{
    u64 qw = Probes.qwBareEnding;
    const size_t cbBefore = static_cast<size_t>(pEnding - pText);
    u64 qwLeft = cbBefore ? Probes.aqwByLast[static_cast<u8>(Lower(pEnding[-1]))] & ~qwFound : 0;
    for (; qwLeft; qwLeft &= qwLeft - 1) {
        const u32 i = static_cast<u32>(std::countr_zero(qwLeft));
        const std::string_view stem =
            std::string_view(Probes.asName[i]).substr(0, Probes.asName[i].size() - NAME_ENDING.size());
        if (stem.size() <= cbBefore && EqualAt(pEnding - stem.size(), stem))
            qw |= 1ull << i;
    }
    return qw;
}

void LookAt(const char *pText, u64 cb, u64 i, PresetSummary *pSummary)
{
    if (pText[i] == '>' && i + SOUND_PROBE.size() <= cb && EqualAt(pText + i, SOUND_PROBE))
        pSummary->bSoundSync = 1;
    if (pText[i] == '.' && i + NAME_ENDING.size() <= cb && EqualAt(pText + i, NAME_ENDING))
        pSummary->qwModules |= ModulesAt(pText, pText + i, pSummary->qwModules);
}

} // namespace

void PrepareSummaries()
{
    Probes = {};
    for (u32 i = 0; i < std::min(ModuleCount(), PRESET_MODULES); i++) {
        Probes.asName.push_back(ProbeName(i));
        AddProbe(i, Probes.asName.back());
        if (GetModuleRecord(i)->md.bUnavailable)
            Probes.qwUnavailable |= 1ull << i;
    }
}

PresetSummary SummarizeText(const char *pText, u64 cb)
{
    PresetSummary summary = {};
    for (u64 iBlock = 0; iBlock < cb; iBlock += BLOCK) {
        if (!BlockHasCandidate(pText + iBlock))
            continue;
        for (u64 i = iBlock; i < std::min(cb, iBlock + BLOCK); i++)
            LookAt(pText, cb, i, &summary);
    }
    for (u32 i : Probes.aiOther)
        if (FindAnsiNoCase({pText, cb}, Probes.asName[i]) != std::string_view::npos)
            summary.qwModules |= 1ull << i;
    return summary;
}

u32 FindCachedSummary(std::u16string_view path, const FileFacts &facts, PresetSummary *pSummary)
{
    const CachedPreset *pCached = LookupPresetCache(path, facts.ftLastWrite, static_cast<u32>(facts.cb));
    if (!pCached)
        return 0;
    *pSummary = {pCached->bSoundSync, pCached->qwModules, pCached->nFavor, 1};
    return 1;
}

u32 SummarizePreset(const OpenedFolder &folder, std::u16string_view path, ReadBuffer *pBuffer, FileFacts *pFacts,
                    PresetSummary *pSummary)
{
    if (FindCachedSummary(path, *pFacts, pSummary))
        return 1;
    if (!ReadFileAndFacts(folder, path, PRESET_BYTES_MAX, pBuffer, pFacts) ||
        static_cast<u32>(pFacts->cb) == SIZE_UNKNOWN)
        return 0;
    *pSummary = SummarizeText(pBuffer->ab.data(), pBuffer->cb);
    return 1;
}

void FillPresetInfo(PresetInfo *lppi, const FileFacts &facts, const PresetSummary *pSummary)
{
    lppi->ftLastWrite = facts.ftLastWrite;
    lppi->dwSize = static_cast<u32>(facts.cb);
    if (!pSummary)
        return;
    lppi->bSoundSync = pSummary->bSoundSync;
    for (u32 i = 0; i < PRESET_MODULES; i++)
        lppi->bModuleUsed[i] = pSummary->qwModules >> i & 1;
    lppi->bCompatible = (pSummary->qwModules & Probes.qwUnavailable) == 0;
    lppi->nFavor = pSummary->bFavorKnown ? pSummary->nFavor : lppi->nFavor;
    lppi->bSummarized = 1;
}
