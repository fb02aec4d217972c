// FileList.cpp -- the list of a file select control: its text, its line index, the step to the next file
#include "controls/FileList.h"

#include "app/Folders.h"
#include "controls/ControlManager.h"
#include "controls/FluidSources.h"
#include "platform/Random.h"
#include "platform/Text.h"

#include <cstdlib>
#include <string_view>

namespace {

constexpr std::u16string_view LINE_BREAKS = u"\r\n";

// Calls pfnLine with the offset of each line that has text; returns their number.
template <typename LineFn> u32 WalkLines(std::u16string_view text, LineFn pfnLine)
{
    u32 nLines = 0;
    size_t i = text.find_first_not_of(LINE_BREAKS);
    while (i != text.npos) {
        pfnLine(nLines++, static_cast<u32>(i));
        i = text.find_first_not_of(LINE_BREAKS, text.find_first_of(LINE_BREAKS, i));
    }
    return nLines;
}

void BuildLineIndex(ControlFileSelect *pfs)
{
    const std::u16string_view text(pfs->pszFileList);
    const u32 nLines = WalkLines(text, [](u32, u32) {});
    u32 *pOffsets = static_cast<u32 *>(std::malloc((size_t{nLines} + 1) * sizeof(u32)));
    if (pOffsets) {
        WalkLines(text, [=](u32 iLine, u32 iChar) { pOffsets[iLine] = iChar; });
        pOffsets[nLines] = nLines ? static_cast<u32>(text.size()) : 0;
    }
    pfs->pLineOffsets = pOffsets;
    pfs->nLines = nLines;
}

} // namespace

void FreeFileList(ControlFileSelect *pfs)
{
    std::free(pfs->pszFileList);
    std::free(pfs->pLineOffsets);
    pfs->pszFileList = nullptr;
    pfs->pLineOffsets = nullptr;
}

void SetFileList(ControlRecord *pctl, char16_t *pszList)
{
    ControlFileSelect *pfs = &pctl->FileSelect;
    FreeFileList(pfs);
    pfs->nCurrentLine = 0;
    pfs->szCurrentFile[0] = 0;
    if (pszList && *pszList) {
        pfs->pszFileList = pszList;
        pfs->nLines = ALL_ONES;
    } else {
        std::free(pszList);
    }
}

u32 RefreshLineIndex(ControlFileSelect *pfs)
{
    if (pfs->nLines != ALL_ONES)
        return 0;
    std::free(pfs->pLineOffsets);
    pfs->pLineOffsets = nullptr;
    pfs->nLines = 0;
    if (pfs->pszFileList)
        BuildLineIndex(pfs);
    bPresetChanged = 1;
    return 1;
}

void TakeNextFile(ControlFileSelect *pfs)
{
    if (pfs->nLines == 0 || !pfs->pszFileList || !pfs->pLineOffsets)
        return;
    pfs->nCurrentLine = (pfs->bShuffle ? RandomWord() : pfs->nCurrentLine + 1) % pfs->nLines;
    TakeCurrentFile(pfs);
}

void TakeCurrentFile(ControlFileSelect *pfs)
{
    if (pfs->nCurrentLine >= pfs->nLines || !pfs->pszFileList || !pfs->pLineOffsets)
        return;
    const std::u16string_view rest(pfs->pszFileList + pfs->pLineOffsets[pfs->nCurrentLine]);
    CopyText(pfs->szCurrentFile, rest.substr(0, rest.find_first_of(LINE_BREAKS)));
    FindDataFile(pfs->szCurrentFile);
}
