// SoundMonitor_test.cpp -- the binding of the sound monitor library
#include "modules/SoundMonitor.h"

#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/SharedLibrary.h"
#include "platform/Text.h"
#include "state/Folders.h"
#include "tests/TempFolder.h"
#include "tests/modules/SoundFake.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

std::string sShownTitle, sShownText;
int nShown;

void RememberError(const char16_t *pszTitle, const char16_t *pszText, void *)
{
    sShownTitle = ToUtf8(pszTitle);
    sShownText = ToUtf8(pszText);
    nShown++;
}

// A module folder of its own, into which a test puts the library that is to be bound.
class SoundMonitor : public testing::Test {
  protected:
    void SetUp() override
    {
        InitFolders({{}, {}, folder.Wide()});
        GlobalSettings.Monitor = {};
        ErrorListeners.Add(RememberError);
        nShown = 0;
    }

    void TearDown() override
    {
        UnbindSoundMonitor(&GlobalSettings.Monitor);
        ErrorListeners.Remove(RememberError);
        UseSystemClock();
    }

    std::filesystem::path LibraryPath() const
    {
        return folder / "SoundLevelDLL.dll";
    }

    void Install(const char *pszFake) const
    {
        std::filesystem::copy_file(std::filesystem::path(TEST_MODULE_FOLDER) / pszFake, LibraryPath(),
                                   std::filesystem::copy_options::overwrite_existing);
    }

    // Binds and returns what was written on standard error.
    static std::string Bind()
    {
        testing::internal::CaptureStderr();
        BindSoundMonitor(&GlobalSettings.Monitor);
        return testing::internal::GetCapturedStderr();
    }

    void AttachLog()
    {
        const auto pfnSetLog = FindEntryPointAs<FakeSetLogFn>(GlobalSettings.Monitor.hMonitorLib, u"FakeSetLog");
        ASSERT_NE(pfnSetLog, nullptr);
        pfnSetLog(&log);
    }

    bool LibraryIsLoaded() const
    {
        void *pHandle = dlopen(LibraryPath().c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (pHandle)
            dlclose(pHandle);
        return pHandle != nullptr;
    }

    TempFolder folder;
    FakeSoundLog log = {};
};

bool IsCleared(const SoundMonitorBinding &binding)
{
    const SoundMonitorBinding none = {};
    return std::memcmp(&binding, &none, sizeof none) == 0;
}

// One line, told by its program, with the path in it.
void ExpectOneLine(const std::string &sText, const std::string &sPath, const char *pszCause)
{
    EXPECT_EQ(sText.find(std::string(program_invocation_short_name) + ": "), 0u) << sText;
    EXPECT_NE(sText.find(sPath), std::string::npos) << sText;
    EXPECT_NE(sText.find(pszCause), std::string::npos) << sText;
    EXPECT_EQ(sText.find('\n'), sText.size() - 1) << sText;
}

} // namespace

TEST_F(SoundMonitor, ACompleteLibraryIsStartedAndStoppedAndUnloaded)
{
    Install("SoundFakeComplete.dll");
    EXPECT_EQ(Bind(), "");
    SoundMonitorBinding &binding = GlobalSettings.Monitor;
    ASSERT_EQ(binding.dwMonitorMark, 8675309u);
    ASSERT_NE(binding.hMonitor, nullptr);
    const auto pfnArgument = FindEntryPointAs<FakeStartArgumentFn>(binding.hMonitorLib, u"FakeStartArgument");
    EXPECT_EQ(pfnArgument(), 20);
    AttachLog();
    log.afLevel[VOLUMETYPE_EXPANDED] = 0.25f;
    f32 fLevel = 0;
    EXPECT_TRUE(binding.pfnGetLevel(binding.hMonitor, VOLUMETYPE_EXPANDED, &fLevel));
    EXPECT_EQ(fLevel, 0.25f);

    void *hMonitor = binding.hMonitor;
    BindSoundMonitor(&binding); // bound already
    EXPECT_EQ(binding.hMonitor, hMonitor);
    UnbindSoundMonitor(&binding);
    EXPECT_EQ(log.hStopped, hMonitor);
    EXPECT_TRUE(log.bUnloaded);
    EXPECT_TRUE(IsCleared(binding));
    EXPECT_FALSE(LibraryIsLoaded());
    UnbindSoundMonitor(&binding); // nothing left to do
    EXPECT_EQ(nShown, 0);
}

TEST_F(SoundMonitor, AMissingLibraryIsShownWithItsPathAndTheProgramGoesOn)
{
    EXPECT_EQ(Bind(), "");
    EXPECT_EQ(nShown, 1);
    EXPECT_EQ(sShownTitle, "Critical file not found!");
    EXPECT_EQ(sShownText, LibraryPath().string());
    EXPECT_TRUE(IsCleared(GlobalSettings.Monitor));
    EXPECT_TRUE(SoundIsQuiet());
    SetMonitorTimeScale(20);

    std::filesystem::create_directory(LibraryPath()); // a folder of that name is no file
    Bind();
    EXPECT_EQ(nShown, 2);

    ErrorListeners.Remove(RememberError);
    ExpectOneLine(Bind(), LibraryPath().string(), "Critical file not found!");
}

TEST_F(SoundMonitor, ABrokenLibraryLeavesOneLineAndNothingElse)
{
    folder.Write(LibraryPath(), "this is no library\n");
    ExpectOneLine(Bind(), LibraryPath().string(), "no sound");
    EXPECT_TRUE(IsCleared(GlobalSettings.Monitor));

    Install("SoundFakeLacksExport.dll");
    ExpectOneLine(Bind(), LibraryPath().string(), "AMSetHomingSamples");
    EXPECT_TRUE(IsCleared(GlobalSettings.Monitor));
    EXPECT_FALSE(LibraryIsLoaded());

    Install("SoundFakeStartFails.dll");
    ExpectOneLine(Bind(), LibraryPath().string(), "cannot start");
    EXPECT_TRUE(IsCleared(GlobalSettings.Monitor));
    EXPECT_FALSE(LibraryIsLoaded());
    EXPECT_TRUE(SoundIsQuiet());
    EXPECT_EQ(nShown, 0);

    Install("SoundFakeComplete.dll"); // and after all that a good one still binds
    EXPECT_EQ(Bind(), "");
    EXPECT_EQ(GlobalSettings.Monitor.dwMonitorMark, SOUND_MONITOR_MARK);
}

TEST_F(SoundMonitor, TheTickScaleIsOptionalAndKeptInItsRange)
{
    Install("SoundFakeLacksOptional.dll");
    EXPECT_EQ(Bind(), "");
    ASSERT_EQ(GlobalSettings.Monitor.dwMonitorMark, SOUND_MONITOR_MARK);
    SetMonitorTimeScale(20);
    std::string sText;
    EXPECT_FALSE(DescribeSoundSource(&sText));
    EXPECT_NE(sText, "");
    UnbindSoundMonitor(&GlobalSettings.Monitor);

    Install("SoundFakeComplete.dll");
    Bind();
    AttachLog();
    for (u32 nScale : {0u, 100u, 0x80000000u, 0xFFFFFFFFu})
        SetMonitorTimeScale(nScale);
    EXPECT_EQ(log.nScaleCalls, 0u);
    for (u32 nScale : {1u, 20u, 99u}) {
        SetMonitorTimeScale(nScale);
        EXPECT_EQ(log.dwLastScale, nScale);
    }
    EXPECT_EQ(log.nScaleCalls, 3u);
}

TEST_F(SoundMonitor, ItIsQuietOnceTheDynamicLevelWasLowForMoreThanASecond)
{
    Install("SoundFakeComplete.dll");
    Bind();
    AttachLog();
    UseFixedClock(50000);
    log.afLevel[VOLUMETYPE_RAW] = 0.5f; // only the dynamic level counts
    log.afLevel[VOLUMETYPE_DYNAMIC] = 0.0003f;
    EXPECT_FALSE(SoundIsQuiet());
    EXPECT_EQ(log.nLastType, VOLUMETYPE_DYNAMIC);

    log.afLevel[VOLUMETYPE_DYNAMIC] = 0.00029f;
    EXPECT_FALSE(SoundIsQuiet());
    SetFixedTick(51000);
    EXPECT_FALSE(SoundIsQuiet());
    SetFixedTick(51001);
    EXPECT_TRUE(SoundIsQuiet());

    log.afLevel[VOLUMETYPE_DYNAMIC] = 0.4f; // a sound sets the timer back
    EXPECT_FALSE(SoundIsQuiet());
    log.afLevel[VOLUMETYPE_DYNAMIC] = 0;
    SetFixedTick(60000);
    EXPECT_FALSE(SoundIsQuiet());
    SetFixedTick(60900);
    EXPECT_FALSE(SoundIsQuiet());

    log.bNoLevel = 1;
    EXPECT_TRUE(SoundIsQuiet());
}

TEST_F(SoundMonitor, ADescriptionThatFillsItsFieldIsEnded)
{
    Install("SoundFakeComplete.dll");
    std::string sText;
    EXPECT_TRUE(DescribeSoundSource(&sText));
    EXPECT_GT(sText.size(), 100u);
    EXPECT_EQ(sText.find_first_not_of('u'), std::string::npos); // without a monitor
    EXPECT_FALSE(LibraryIsLoaded());
    Bind();
    EXPECT_TRUE(DescribeSoundSource(&sText));
    EXPECT_EQ(sText.find_first_not_of('b'), std::string::npos); // with one
    UnbindSoundMonitor(&GlobalSettings.Monitor);

    std::filesystem::remove(LibraryPath());
    EXPECT_FALSE(DescribeSoundSource(&sText));
    EXPECT_NE(sText.find(LibraryPath().string()), std::string::npos);
    folder.Write(LibraryPath(), "this is no library\n");
    EXPECT_FALSE(DescribeSoundSource(&sText));
    EXPECT_NE(sText, "");
}
