// HostileControls.cpp -- a module that gets its control records wrong in every way that a careless author can
#include "EmptyEntryPoints.h"
#include "HostileModes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>

MODULE_EXPORT std::atomic<uint32_t> HostileMode;
std::atomic<uint32_t> HostileMode = HostileSetting("HOSTILE_MODE", 0);

namespace {

constexpr uint32_t SOURCES = FLUIDSOURCE_FIXED | FLUIDSOURCE_RANDOM | FLUIDSOURCE_ANIMATED;

struct Builder {
    AllocControlFn pfnAllocControl;
    int32_t *pnControls;
    char16_t chName;
};

ItemSelectRow asRowsWithoutText[] = {{nullptr, 0, 0}, {nullptr, 70000, 0xFFFFFFFF}};

template <size_t N> void CopyTo(char16_t *pszTo, const char16_t (&szFrom)[N])
{
    std::copy_n(szFrom, N, pszTo);
}

// A record whose common part is in order; null when the host gives no more.
ControlRecord *Ask(Builder &b, uint32_t dwType)
{
    ControlRecord *pctl = b.pfnAllocControl(b.pnControls);
    if (!pctl)
        return nullptr;
    CopyTo(pctl->Base.szName, u"Hostile\0?\0");
    pctl->Base.szName[8] = b.chName++;
    pctl->Base.dwType = dwType;
    pctl->Base.dwSourceMask = SOURCES;
    return pctl;
}

void AskForMany(Builder &b)
{
    for (int i = 0; i < 200; i++) {
        ControlRecord *pctl = Ask(b, CONTROLTYPE_INTEGER);
        if (pctl)
            pctl->Integer = {0, 9, 0, 9, 0, 9, 4, 4, 0, 0, 0};
    }
}

void SpoilCount(Builder &b)
{
    for (int32_t n : {-1, 1000000, std::numeric_limits<int32_t>::min(), 139}) {
        *b.pnControls = n;
        Ask(b, CONTROLTYPE_BOOLEAN);
    }
}

void SpoilTypes(Builder &b)
{
    for (uint32_t dwType : {0u, 1u, 8u, 99u, 0xFFFFFFFFu})
        if (ControlRecord *pctl = Ask(b, dwType))
            std::fill_n(reinterpret_cast<unsigned char *>(&pctl->Integer),
                        sizeof(ControlRecord) - offsetof(ControlRecord, Integer), static_cast<unsigned char>(0xA5));
}

void SpoilNames(Builder &b)
{
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT)) {
        std::fill(std::begin(pctl->Base.szName), std::end(pctl->Base.szName), u'n');
        std::fill(std::begin(pctl->Base.szDescription), std::end(pctl->Base.szDescription), u'd');
    }
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT)) {
        std::fill(std::begin(pctl->Base.szName), std::end(pctl->Base.szName), u'n');
        pctl->Base.szName[CONTROL_TEXT - 1] = 0;
    }
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT))
        std::fill(std::begin(pctl->Base.szName), std::end(pctl->Base.szName), u'\0');
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT))
        for (size_t i = 0; i < CONTROL_TEXT; i++) // components of one character until the field is full
            pctl->Base.szName[i] = i % 2 ? u'\0' : u'.';
}

void SpoilItems(Builder &b)
{
    const ControlItemSelect as[] = {
        {5, 2, 3, 0, nullptr},           {5, 2, 3, 1, nullptr},
        {0, 7, 8, 0, asRowsWithoutText}, {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0, asRowsWithoutText},
        {2, 1, 1, 0, asRowsWithoutText},
    };
    for (const ControlItemSelect &s : as)
        if (ControlRecord *pctl = Ask(b, CONTROLTYPE_ITEMSELECT)) {
            pctl->ItemSelect = s;
            pctl->Base.dwDefaultSource = pctl->Base.dwSource = FLUIDSOURCE_RANDOM;
        }
}

void SpoilRanges(Builder &b)
{
    const float fNaN = std::nanf("");
    const float fInf = std::numeric_limits<float>::infinity();
    const float fMax = std::numeric_limits<float>::max();
    const int32_t nLow = std::numeric_limits<int32_t>::min();
    const int32_t nHigh = std::numeric_limits<int32_t>::max();
    for (uint32_t dwSource : {1u, 2u, 4u, 8u, 16u}) {
        for (const ControlFloat &s : {ControlFloat{fNaN, fNaN, fNaN, fNaN, fNaN, fNaN, fNaN, fNaN, 0},
                                      ControlFloat{-fInf, fInf, -fInf, fInf, -fInf, fInf, fInf, 0, 1},
                                      ControlFloat{-fMax, fMax, -fMax, fMax, fMax, -fMax, 0, 0, 0}})
            if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT)) {
                pctl->Float = s;
                pctl->Base.dwSource = dwSource;
            }
        for (const ControlInteger &s : {ControlInteger{nLow, nHigh, nLow, nHigh, nLow, nHigh, nHigh, 0, 1, 1, 0},
                                        ControlInteger{nHigh, nLow, nHigh, nLow, nHigh, nLow, nLow, 0, 0, 0, 1}})
            if (ControlRecord *pctl = Ask(b, CONTROLTYPE_INTEGER)) {
                pctl->Integer = s;
                pctl->Base.dwSource = dwSource;
            }
        if (ControlRecord *pctl = Ask(b, CONTROLTYPE_BOOLEAN)) {
            pctl->Boolean = {fNaN, fInf, 0xFFFFFFFF, 77};
            pctl->Base.dwSource = dwSource;
        }
    }
}

void SpoilSources(Builder &b)
{
    for (uint32_t dw : {0u, 3u, 32u, 181u, 0x80000000u, 0xFFFFFFFFu}) {
        for (uint32_t dwSource : {dw, 4u, 8u, 16u}) {
            ControlRecord *pctl = Ask(b, CONTROLTYPE_FLOAT);
            if (!pctl)
                return;
            pctl->Float = {0, 1, 0, 1, 0, 1, 0.5f, 0.5f, 0};
            pctl->Base.dwSourceMask = dw;
            pctl->Base.dwSource = pctl->Base.dwDefaultSource = dwSource;
            pctl->Base.nWavePeriod = pctl->Base.nNoisePeriod = pctl->Base.nSamples = pctl->Base.dwWaveType = dw;
            pctl->Base.bRandomPhase = 0;
            pctl->Base.fWavePhase = dw ? std::nanf("") : -1e30f;
            pctl->Base.qwNextNoiseTick = dw ? ~uint64_t{0} : 1;
        }
    }
}

void SpoilDependencies(Builder &b)
{
    ControlRecord *pctlSelf = Ask(b, CONTROLTYPE_INTEGER);
    ControlRecord *pctlA = Ask(b, CONTROLTYPE_FLOAT);
    ControlRecord *pctlB = Ask(b, CONTROLTYPE_TILE);
    if (!pctlSelf || !pctlA || !pctlB)
        return;
    pctlSelf->Base.pDependsOn = pctlSelf;
    pctlA->Base.pDependsOn = pctlB;
    pctlB->Base.pDependsOn = pctlA;
    pctlSelf->Base.dwDependOp = 77;
    pctlA->Base.fDependValue = std::nanf("");
}

// Pointers that a host which followed or freed them would not survive.
void SpoilPointers(Builder &b)
{
    void *const pGarbage = reinterpret_cast<void *>(uintptr_t{0x5A5A5A5A5A5A5A58});
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_TILE)) {
        pctl->Tile = {0xFFFFFFFF, 0, 99, 0x80000000, static_cast<uint32_t *>(pGarbage)};
        pctl->Base.pOwner = pGarbage;
    }
    if (ControlRecord *pctl = Ask(b, CONTROLTYPE_FILESELECT)) {
        pctl->FileSelect.pszFileList = static_cast<char16_t *>(pGarbage);
        pctl->FileSelect.pLineOffsets = static_cast<uint32_t *>(pGarbage);
        pctl->FileSelect.nLines = 0x10000;
        pctl->FileSelect.nCurrentLine = 0xFFFFFFFF;
        std::fill(std::begin(pctl->FileSelect.szCurrentFile), std::end(pctl->FileSelect.szCurrentFile), u'f');
        pctl->Base.dwSource = FLUIDSOURCE_RANDOM;
    }
}

// What later calls spoil.
int32_t *pnKept; // the count that building was given
ControlRecord *apKept[CONTROLTYPE_TILE + 1];
ItemSelectRow *pRows; // the host's, until they stand in the record no more
uint32_t nSpoiled;

void KeepForLater(Builder &b)
{
    for (uint32_t dwType = CONTROLTYPE_INTEGER; dwType <= CONTROLTYPE_TILE; dwType++) {
        ControlRecord *pctl = apKept[dwType] = Ask(b, dwType);
        if (pctl && dwType == CONTROLTYPE_ITEMSELECT) {
            pRows = static_cast<ItemSelectRow *>(std::calloc(3, sizeof(ItemSelectRow)));
            pctl->ItemSelect = {3, 0, 0, 1, pRows};
        }
    }
}

void SpoilKept()
{
    if (pnKept)
        *pnKept = 1000000;
    for (ControlRecord *pctl : apKept) {
        nSpoiled++;
        if (!pctl)
            continue;
        unsigned char *const pFirst = reinterpret_cast<unsigned char *>(pctl);
        unsigned char *const pEnd = pFirst + sizeof *pctl;
        const size_t cbBase = offsetof(ControlRecord, Integer);
        if (nSpoiled % 3 == 0)
            std::fill(pFirst, pEnd, static_cast<unsigned char>(0x5A));
        else if (nSpoiled % 3 == 1)
            std::fill(pFirst + cbBase, pEnd, static_cast<unsigned char>(0x5A));
        else
            pctl->Base.dwType = nSpoiled / 3 % (CONTROLTYPE_TILE + 2);
    }
}

struct ModeRow {
    uint32_t dwMode;
    void (*pfn)(Builder &);
};

// The count comes last, so that what the others asked for is in place when it goes wrong.
constexpr ModeRow asMode[] = {
    {HOSTILE_TYPE, SpoilTypes},        {HOSTILE_NAME, SpoilNames},     {HOSTILE_ITEMS, SpoilItems},
    {HOSTILE_RANGES, SpoilRanges},     {HOSTILE_SOURCE, SpoilSources}, {HOSTILE_DEPENDS, SpoilDependencies},
    {HOSTILE_POINTERS, SpoilPointers}, {HOSTILE_LATER, KeepForLater},  {HOSTILE_MANY, AskForMany},
    {HOSTILE_COUNT, SpoilCount},
};

} // namespace

void ModuleGetDescription(ModuleDescription *pmd)
{
    CopyTo(pmd->szName, u"Hostile Controls");
    pmd->dwClass = MODULECLASS_DRAWING;
    pmd->dwCapabilities = MODULECAP_PAINTER | MODULECAP_EFFECT | MODULECAP_INDEXED | MODULECAP_RGB;
}

void ModuleBuildControlStructure(void **ppvContext, PlaneInfo *, AllocControlFn pfnAllocControl, int32_t *pnControls)
{
    *ppvContext = nullptr;
    pnKept = HostileMode & HOSTILE_COUNT ? pnControls : nullptr;
    std::fill(std::begin(apKept), std::end(apKept), nullptr);
    Builder b = {pfnAllocControl, pnControls, u'A'};
    for (const ModeRow &row : asMode)
        if (HostileMode & row.dwMode)
            row.pfn(b);
}

uint32_t ModuleDrawFrame(void *, PlaneInfo *)
{
    SpoilKept();
    return 0;
}

void ModuleCleanUp(void *)
{
    SpoilKept();
    const ControlRecord *pctl = apKept[CONTROLTYPE_ITEMSELECT];
    if (pctl && pctl->ItemSelect.pItems != pRows)
        std::free(pRows);
}
