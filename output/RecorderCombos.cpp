// RecorderCombos.cpp -- the named key combinations that start and stop external screen recorders
#include "output/RecorderCombos.h"

#include "platform/MainThread.h"
#include "platform/Text.h"

#include <algorithm>
#include <iterator>

RecorderComboTable RecorderCombos;
RecorderCombo CurrentCombo;

namespace {

std::u16string_view NameOf(const RecorderCombo &combo)
{
    return {combo.szName, TextLength(combo.szName, RECORDER_TEXT_CHARS)};
}

} // namespace

u32 PrepareRecorderCombos()
{
    ASSERT_MAIN_THREAD();
    if (RecorderCombos.bPrepared)
        return 1;
    RecorderCombos.bPrepared = 1;
    AddRecorderCombo(u"XBOX Game Bar", u"Windows+Alt+R", u"Windows+Alt+R");
    AddRecorderCombo(u"OBS Studio", u"Alt+[", u"Alt+]");
    AddRecorderCombo(u"NVidia Recorder", u"Alt+F9", u"Alt+F9");
    CurrentCombo = RecorderCombos.asCombo[0];
    return 1;
}

u32 AddRecorderCombo(std::u16string_view name, std::u16string_view start, std::u16string_view stop)
{
    ASSERT_MAIN_THREAD();
    if (RecorderCombos.nCount >= RECORDER_COMBOS_MAX)
        return 0;
    name = name.substr(0, RECORDER_TEXT_CHARS - 1);
    RecorderCombo *pEnd = RecorderCombos.asCombo + RecorderCombos.nCount;
    RecorderCombo *pCombo = std::find_if(RecorderCombos.asCombo, pEnd,
                                         [&](const RecorderCombo &combo) { return EqualNoCase(NameOf(combo), name); });
    if (pCombo == pEnd) {
        RecorderCombos.nCount++;
        CopyText(pCombo->szName, name);
    }
    CopyText(pCombo->szStart, start);
    CopyText(pCombo->szStop, stop);
    return 1;
}

void SetCurrentCombo(std::u16string_view start, std::u16string_view stop)
{
    CopyText(CurrentCombo.szName, u"Current");
    CopyText(CurrentCombo.szStart, start);
    CopyText(CurrentCombo.szStop, stop);
}
