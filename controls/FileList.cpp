// FileList.cpp -- the list of a file select control: its text, its line index, the step to the next file
#include "controls/FileList.h"

#include "controls/ControlManager.h"
#include "controls/HostControl.h"
#include "platform/MainThread.h"
#include "platform/Random.h"
#include "platform/Text.h"
#include "state/Folders.h"

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

// The index of what the host holds, shown in the record.
void BuildLineIndex(HostControl *phc)
{
    const std::u16string_view text(phc->pszFileList);
    const u32 nLines = WalkLines(text, [](u32, u32) {});
    u32 *pOffsets = static_cast<u32 *>(std::malloc((size_t{nLines} + 1) * sizeof(u32)));
    if (pOffsets) {
        WalkLines(text, [=](u32 iLine, u32 iChar) { pOffsets[iLine] = iChar; });
        pOffsets[nLines] = nLines ? static_cast<u32>(text.size()) : 0;
    }
    phc->pLineOffsets = pOffsets;
    phc->nLines = nLines;
}

void FreeLineIndex(HostControl *phc)
{
    std::free(phc->pLineOffsets);
    phc->pLineOffsets = nullptr;
}

void ShowInRecord(HostControl *phc)
{
    ControlFileSelect &File = phc->Record.FileSelect;
    File.pszFileList = phc->pszFileList;
    File.pLineOffsets = phc->pLineOffsets;
}

} // namespace

void SetFileList(ControlRecord *pctl, char16_t *pszList)
{
    ASSERT_MAIN_THREAD();
    HostControl *phc = HostPart(pctl);
    FreeLineIndex(phc);
    std::free(phc->pszFileList);
    phc->pszFileList = nullptr;
    pctl->FileSelect.nCurrentLine = 0;
    pctl->FileSelect.szCurrentFile[0] = 0;
    if (pszList && *pszList) {
        phc->pszFileList = pszList;
        phc->nLines = pctl->FileSelect.nLines = ALL_ONES;
    } else {
        std::free(pszList); // nLines keeps its number: the missing pointers say that there is no list
    }
    ShowInRecord(phc);
}

u32 RefreshLineIndex(ControlRecord *pctl)
{
    if (pctl->FileSelect.nLines != ALL_ONES)
        return 0;
    HostControl *phc = HostPart(pctl);
    FreeLineIndex(phc);
    phc->nLines = 0;
    if (phc->pszFileList)
        BuildLineIndex(phc);
    pctl->FileSelect.nLines = phc->nLines;
    ShowInRecord(phc);
    bPresetChanged = 1;
    return 1;
}

void TakeNextFile(ControlRecord *pctl)
{
    const HostControl *phc = HostPart(pctl);
    ControlFileSelect &File = pctl->FileSelect;
    if (phc->nLines == 0 || !phc->pszFileList || !phc->pLineOffsets)
        return;
    File.nCurrentLine = (File.bShuffle ? RandomWord() : File.nCurrentLine + 1) % phc->nLines;
    TakeCurrentFile(pctl);
}

void TakeCurrentFile(ControlRecord *pctl)
{
    const HostControl *phc = HostPart(pctl);
    ControlFileSelect &File = pctl->FileSelect;
    const u32 iLine = File.nCurrentLine;
    if (iLine >= phc->nLines || !phc->pszFileList || !phc->pLineOffsets)
        return;
    const std::u16string_view rest(phc->pszFileList + phc->pLineOffsets[iLine]);
    CopyText(File.szCurrentFile, rest.substr(0, rest.find_first_of(LINE_BREAKS)));
    FindDataFile(File.szCurrentFile);
}
