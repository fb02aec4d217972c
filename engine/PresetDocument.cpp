// PresetDocument.cpp -- the document: which preset is open, where it lies, whether it has changes
#include "engine/PresetDocument.h"

#include "controls/ControlManager.h"
#include "engine/PresetManager.h"
#include "engine/PresetNews.h"
#include "platform/Files.h"
#include "platform/MainThread.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "state/GlobalSettings.h"

namespace {

NameText szPresetName = u"Tempname.VD";
std::u16string presetPath;   // absolute; empty: none yet
u32 bStoredChoiceIsKept = 0; // the settings name a preset that could not be read at start

struct OpenRequest {
    std::u16string path;
    PresetReport *pReport;
};

void SetName(std::u16string_view name)
{
    const std::u16string copy(NameAndExtension(name)); // it may lie in one of the places that are written to
    CopyText(szPresetName, copy);
    if (!bStoredChoiceIsKept)
        CopyText(GlobalSettings.Preset, copy);
}

void SetMark(u32 bChanged)
{
    bPresetChanged = bChanged ? 1 : 0;
}

void TellMarked()
{
    TellPresetNews({NewsKind::Marked, CurrentPreset(), nullptr, nullptr, nullptr});
}

// Whoever is told that a preset came finds its name, its path and its mark already there.
void BeUntitled()
{
    presetPath.clear();
    SetName(UNTITLED_PRESET);
    SetMark(0);
}

void BeAt(const std::u16string &path)
{
    presetPath = AbsolutePath(path);
    bStoredChoiceIsKept = 0;
    SetName(path);
    SetMark(0);
}

template <u32 bDefaults> PresetState *MakeUntitled(const void *)
{
    PresetState *lppsi = CreatePresetState(bDefaults);
    BeUntitled();
    return lppsi;
}

PresetState *ReadAndTakeName(const void *pvArgument)
{
    const auto *pRequest = static_cast<const OpenRequest *>(pvArgument);
    PresetState *lppsi = LoadPresetFile(pRequest->path, pRequest->pReport);
    if (lppsi)
        BeAt(pRequest->path);
    else
        BeUntitled();
    return lppsi;
}

void Replace(PresetState *(*pfnMake)(const void *pvArgument), const void *pvArgument)
{
    SwitchPreset(pfnMake, pvArgument);
    TellMarked();
}

// Empty if there is no such file in either place.
std::u16string FindPreset(std::u16string_view name)
{
    if (FileExists(name))
        return std::u16string(name);
    const std::u16string path = name.empty() ? std::u16string() : JoinPath(FolderPath(PATH_PRESETS), name);
    return FileExists(path) ? path : std::u16string();
}

// Nobody has chosen a preset yet.
bool IsFirstStart(std::u16string_view name)
{
    return name.empty() || EqualNoCase(name, UNTITLED_PRESET);
}

} // namespace

const DiscardQuestion sDiscardQuestion = {
    u"Warning: Unsaved changes",
    u"You've made changes to the current preset that have not been saved. If you proceed, those changes will be "
    u"lost.\n\nDo you wish to proceed?",
};

const char16_t *PresetName()
{
    ASSERT_MAIN_THREAD();
    return szPresetName;
}

const char16_t *PresetPath()
{
    ASSERT_MAIN_THREAD();
    return presetPath.c_str();
}

void SetPresetChanged(std::u16string_view name, u32 bChanged)
{
    ASSERT_MAIN_THREAD();
    SetMark(bChanged);
    SetName(name);
    TellMarked();
}

void MarkPresetChanged()
{
    ASSERT_MAIN_THREAD();
    if (!bPresetChanged)
        SetPresetChanged(szPresetName, 1);
}

void NewPreset()
{
    ASSERT_MAIN_THREAD();
    Replace(MakeUntitled<0>, nullptr);
}

void OpenDefaultPreset()
{
    ASSERT_MAIN_THREAD();
    Replace(MakeUntitled<1>, nullptr);
}

u32 LoadPresetByName(std::u16string_view name, PresetReport *pReport)
{
    ASSERT_MAIN_THREAD();
    const OpenRequest request = {FindPreset(name), pReport};
    if (request.path.empty())
        return 0;
    Replace(ReadAndTakeName, &request);
    return 1;
}

void OpenFirstPreset(std::u16string_view path, PresetReport *pReport, std::string *psTrouble)
{
    ASSERT_MAIN_THREAD();
    PresetReport report = {};
    if (!pReport)
        pReport = &report;
    const std::u16string name(path.empty() ? GlobalSettings.Preset : path);
    bStoredChoiceIsKept = 1;
    if (LoadPresetByName(name, pReport) && CurrentPreset())
        return;
    if (psTrouble && !(path.empty() && IsFirstStart(name) && pReport->sFailure.empty()))
        *psTrouble = DescribeFailure(name, *pReport);
    OpenDefaultPreset();
}

u32 SavePresetAs(std::u16string_view path, std::string *psWhy)
{
    ASSERT_MAIN_THREAD();
    if (!CurrentPreset()) {
        if (psWhy)
            *psWhy = "there is no preset to save";
        return 0;
    }
    if (!SavePresetFile(CurrentPreset(), path, psWhy))
        return 0;
    BeAt(std::u16string(path));
    TellMarked();
    TellPresetNews({NewsKind::Saved, CurrentPreset(), nullptr, nullptr, nullptr});
    return 1;
}

bool DiscardNeedsQuestion()
{
    ASSERT_MAIN_THREAD();
    return bPresetChanged != 0;
}
