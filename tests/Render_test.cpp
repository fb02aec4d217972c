// Render_test.cpp -- runs vorticade-render the way a user does
#include "platform/BaseTypes.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sndfile.h>
#include <sstream>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct RunResult {
    int nExit;
    std::string sOut; // standard output
    std::string sErr;
};

std::string ReadAll(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream s;
    s << file.rdbuf();
    return s.str();
}

class Render : public testing::Test {
  protected:
    // Runs the program with the stock data and modules.
    RunResult Run(const std::string &sArguments) const
    {
        return RunBare("--data " SOURCE_FOLDER "/data --modules " STOCK_MODULE_FOLDER " " + sArguments);
    }
    RunResult RunBare(const std::string &sArguments, const char *pszOutput = nullptr) const
    {
        const fs::path out = folder / "stdout", err = folder / "stderr";
        const std::string sCommand = "cd " + folder.string() + " && " PROGRAM_FOLDER "/vorticade-render " + sArguments +
                                     " >" + (pszOutput ? pszOutput : out.string()) + " 2>" + err.string() +
                                     " </dev/null";
        const int nStatus = std::system(sCommand.c_str());
        RunResult result = {WEXITSTATUS(nStatus), ReadAll(out), ReadAll(err)};
        fs::remove(out);
        fs::remove(err);
        return result;
    }
    // Runs a line of shell that knows the program and the stock data and modules as $render.
    RunResult RunShell(const std::string &sLine) const
    {
        const fs::path err = folder.string() + ".err";
        const std::string sCommand = "cd " + folder.string() +
                                     " && render='" PROGRAM_FOLDER "/vorticade-render --data " SOURCE_FOLDER
                                     "/data --modules " STOCK_MODULE_FOLDER "' && " +
                                     sLine + " 2>" + err.string();
        const int nStatus = std::system(sCommand.c_str());
        const RunResult result = {WEXITSTATUS(nStatus), {}, ReadAll(err)};
        fs::remove(err);
        return result;
    }
    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto &entry : fs::recursive_directory_iterator(folder))
            names.push_back(fs::relative(entry.path(), folder).string());
        std::sort(names.begin(), names.end());
        return names;
    }
    // Three seconds of silence, three of a loud tone that beats, three of silence.
    void WriteSong(const std::string &sName) const
    {
        SF_INFO info = {};
        info.samplerate = 44100;
        info.channels = 2;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        std::vector<float> af(44100 * 9 * 2);
        for (size_t i = 44100 * 3 * 2; i < 44100 * 6 * 2; i++) {
            const double fSecond = static_cast<double>(i / 2) / 44100;
            af[i] = static_cast<float>((0.1 + 0.6 * std::exp(-8 * std::fmod(fSecond, 0.5))) * std::sin(fSecond * 1400));
        }
        SNDFILE *pFile = sf_open((folder / sName).c_str(), SFM_WRITE, &info);
        ASSERT_NE(nullptr, pFile);
        sf_writef_float(pFile, af.data(), 44100 * 9);
        sf_close(pFile);
    }
    static long Lines(const std::string &s)
    {
        return std::count(s.begin(), s.end(), '\n');
    }

    TempFolder folder;
};

TEST_F(Render, TheSameCallGivesTheSameBytesInBothThreadModesAndBothMixers)
{
    const std::string sCommon = "default --frames 12 --warmup 3 --size 333x217 --out - ";
    const RunResult first = Run(sCommon);
    ASSERT_EQ(0, first.nExit) << first.sErr;
    ASSERT_EQ(12u * 333 * 217 * 4, first.sOut.size());
    EXPECT_EQ("", first.sErr);
    for (const char *pszVariant : {"", "--threads 0", "--mix onepass", "--seed 1"})
        EXPECT_TRUE(first.sOut == Run(sCommon + pszVariant).sOut) << pszVariant;
    EXPECT_FALSE(first.sOut == Run(sCommon + "--seed 2").sOut);
    EXPECT_FALSE(first.sOut == Run(sCommon + "--fps 30").sOut);
}

TEST_F(Render, FilesAreNumberedFromOneAndHoldTheRawFrames)
{
    const RunResult raw = Run("default --frames 2 --warmup 30 --size 200x150 --out -");
    const RunResult files = Run("default --frames 2 --warmup 30 --size 200x150 --out f-%03d.ppm");
    ASSERT_EQ(0, files.nExit) << files.sErr;
    EXPECT_EQ((std::vector<std::string>{"f-001.ppm", "f-002.ppm"}), Files());
    const std::string sPpm = ReadAll(folder / "f-002.ppm");
    const std::string sHead = "P6\n200 150\n255\n";
    ASSERT_EQ(sHead.size() + 200 * 150 * 3, sPpm.size());
    EXPECT_EQ(sHead, sPpm.substr(0, sHead.size()));
    // The raw frame has its top row first, the PPM its bottom row.
    for (size_t y = 0; y < 150; y++)
        for (size_t x = 0; x < 200; x++)
            for (size_t c = 0; c < 3; c++)
                ASSERT_EQ(raw.sOut[200 * 150 * 4 + ((149 - y) * 200 + x) * 4 + 2 - c],
                          sPpm[sHead.size() + (y * 200 + x) * 3 + c]);
}

TEST_F(Render, ThePictureMovesAndIsNotBlack)
{
    const RunResult result = Run("default --frames 60 --warmup 60 --size 320x180 --out -");
    ASSERT_EQ(0, result.nExit) << result.sErr;
    const size_t cbFrame = 320 * 180 * 4;
    size_t nLit = 0, nMoved = 0;
    for (size_t i = 0; i < cbFrame; i += 4) {
        nLit += (static_cast<u8>(result.sOut[i]) | static_cast<u8>(result.sOut[i + 1]) |
                 static_cast<u8>(result.sOut[i + 2])) > 32;
        nMoved += result.sOut.compare(i, 3, result.sOut, 59 * cbFrame + i, 3) != 0;
    }
    EXPECT_GT(nLit, 320u * 180 / 50);
    EXPECT_GT(nMoved, 320u * 180 / 50);
}

// How much the raw frames iFrom to iTo differ from the ones before them, on average.
double Activity(const std::string &sRaw, size_t cbFrame, size_t iFrom, size_t iTo)
{
    double fSum = 0;
    for (size_t i = iFrom * cbFrame; i < iTo * cbFrame; i++)
        fSum += std::abs(static_cast<u8>(sRaw[i]) - static_cast<u8>(sRaw[i - cbFrame]));
    return fSum / static_cast<double>((iTo - iFrom) * cbFrame);
}

TEST_F(Render, ASongMovesThePictureAndItsSilenceCalmsIt)
{
    WriteSong("song.wav");
    const std::string sCommon = "default --size 192x128 --fps 15 --sound song.wav --out - ";
    const RunResult film = Run(sCommon);
    ASSERT_EQ(0, film.nExit) << film.sErr;
    const size_t cbFrame = 192 * 128 * 4;
    ASSERT_EQ(9 * 15 * cbFrame, film.sOut.size()); // as long as the song
    const double fBefore = Activity(film.sOut, cbFrame, 15, 45);
    const double fDuring = Activity(film.sOut, cbFrame, 50, 90);
    const double fAfter = Activity(film.sOut, cbFrame, 110, 135);
    EXPECT_GT(fDuring, 1.3 * fBefore);
    EXPECT_GT(fDuring, 1.3 * fAfter);
    EXPECT_TRUE(film.sOut == Run(sCommon + "--threads 0").sOut);
    // Silence is not simulated: the first second looks the same in another song that is silent there.
    const RunResult start = Run(sCommon + "--frames 15");
    EXPECT_TRUE(start.sOut == film.sOut.substr(0, 15 * cbFrame));
    EXPECT_FALSE(start.sOut == Run("default --size 192x128 --fps 15 --frames 15 --out -").sOut);
    // The song begins with the first frame written.
    const RunResult warm = Run("default --size 128x128 --fps 15 --sound song.wav --out - --warmup 30 --frames 60");
    EXPECT_GT(Activity(warm.sOut, 128 * 128 * 4, 48, 60), 1.3 * Activity(warm.sOut, 128 * 128 * 4, 30, 44));
}

TEST_F(Render, ASongThatCannotBeReadEndsWithOneAndOneLine)
{
    folder.Write("empty.wav", "");
    folder.Write("text.mp3", std::string(100000, 'x'));
    fs::create_directory(folder / "folder");
    for (const char *pszSong : {"empty.wav", "text.mp3", "folder", "missing.wav"}) {
        const RunResult result = Run(std::string("default --size 128x128 --out f-%d.png --sound ") + pszSong);
        EXPECT_EQ(1, result.nExit) << pszSong;
        EXPECT_EQ(1, Lines(result.sErr)) << result.sErr;
        EXPECT_NE(std::string::npos, result.sErr.find(pszSong)) << result.sErr;
    }
    EXPECT_EQ(3u, Files().size());
}

TEST_F(Render, AFullDiskOrAnInterruptionEndsWithOneLineAndWholeFiles)
{
    // No file may be larger than 20 KB.
    const RunResult full =
        RunShell("(ulimit -f 20 && exec $render default --size 128x128 --frames 50 --out f-%02d.bmp)");
    EXPECT_EQ(1, full.nExit);
    EXPECT_EQ("vorticade-render: f-01.bmp cannot be written: File too large\n", full.sErr);
    EXPECT_TRUE(Files().empty());

    const RunResult stopped = RunShell("{ $render default --size 640x480 --frames 1000000 --out f-%06d.bmp & "
                                       "while [ ! -e f-000005.bmp ] && kill -0 $!; do sleep 0.02; done; "
                                       "kill -TERM $!; wait $!; }");
    EXPECT_EQ(1, stopped.nExit);
    EXPECT_EQ(1, Lines(stopped.sErr)) << stopped.sErr;
    const std::vector<std::string> names = Files();
    ASSERT_FALSE(names.empty());
    EXPECT_NE(std::string::npos, stopped.sErr.find("interrupted; " + std::to_string(names.size()) + " frames"))
        << stopped.sErr;
    for (const std::string &sName : names)
        EXPECT_EQ(54u + 640 * 480 * 3, fs::file_size(folder / sName)) << sName;
    EXPECT_EQ("f-000001.bmp", names.front());
}

TEST_F(Render, AWrongCommandLineEndsWithTwoAndOneLine)
{
    for (const char *pszArguments : {"--bogus",
                                     "default --frames 0",
                                     "default --frames 1x",
                                     "default --frames",
                                     "default --size 127x128",
                                     "default --size 128x8193",
                                     "default --size 640",
                                     "default --fps 0",
                                     "default --fps nan",
                                     "default --mix both",
                                     "default --threads 2",
                                     "default --seed -1",
                                     "default --out f.png",
                                     "default --out f-%d-%d.png",
                                     "default --out f-%s.png",
                                     "default --out f-%n.png",
                                     "default --out f-%*d.png",
                                     "default --out f.png --sound song.wav",
                                     "default --out f-%d",
                                     "default --out f-%d.xyz",
                                     "default --stats=1",
                                     "default extra",
                                     "",
                                     "--data /no/such/folder default",
                                     "--modules /dev/null default"}) {
        const RunResult result = RunBare(pszArguments);
        EXPECT_EQ(2, result.nExit) << pszArguments;
        EXPECT_EQ(1, Lines(result.sErr)) << pszArguments << "\n" << result.sErr;
        EXPECT_EQ("", result.sOut) << pszArguments;
    }
    for (const char *pszOption : {"--out f-%d-", "--save "}) {
        const RunResult result = RunBare(std::string("default ") + pszOption + "$(printf '\\351').png");
        EXPECT_EQ(2, result.nExit) << "a name that is not UTF-8";
        EXPECT_EQ(1, Lines(result.sErr)) << result.sErr;
    }
    EXPECT_TRUE(Files().empty());
    const int fdTerminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(fdTerminal >= 0 && grantpt(fdTerminal) == 0 && unlockpt(fdTerminal) == 0);
    const RunResult terminal = RunBare("default --frames 1 --out -", ptsname(fdTerminal));
    close(fdTerminal);
    EXPECT_EQ(2, terminal.nExit);
    EXPECT_EQ(1, Lines(terminal.sErr)) << terminal.sErr;
}

TEST_F(Render, RawFramesWaitForRoomInAPipeThatDoesNotBlock)
{
    constexpr int OUTPUT = 9; // the shell knows numbers of one digit
    int afd[2];
    ASSERT_EQ(0, pipe2(afd, O_CLOEXEC));
    ASSERT_EQ(OUTPUT, dup2(afd[1], OUTPUT));
    fcntl(OUTPUT, F_SETFL, O_NONBLOCK);
    close(afd[1]);
    size_t cbRead = 0;
    std::thread reader([&] {
        for (int cb = 0; ioctl(afd[0], FIONREAD, &cb) == 0 && cb < 60000;) // it comes late
            usleep(1000);
        std::vector<char> block(1 << 20);
        for (ssize_t cb; (cb = read(afd[0], block.data(), block.size())) > 0;)
            cbRead += static_cast<size_t>(cb);
    });
    const RunResult result = RunBare("--data " SOURCE_FOLDER "/data --modules " STOCK_MODULE_FOLDER
                                     " default --seconds 0.1 --size 640x480 --out -",
                                     "&9");
    close(OUTPUT);
    reader.join();
    close(afd[0]);
    EXPECT_EQ("", result.sErr);
    EXPECT_EQ(6u * 640 * 480 * 4, cbRead);
}

TEST_F(Render, WhatCannotBeDoneEndsWithOneAndOneLineAndLeavesNothing)
{
    fs::create_directory(folder / "taken-1.png");
    for (const char *pszArguments : {"default --frames 2 --size 128x128 --out none/f-%d.png",
                                     "default --frames 1 --size 128x128 --out taken-%d.png", "NoSuch.VD --frames 1"}) {
        const RunResult result = Run(pszArguments);
        EXPECT_EQ(1, result.nExit) << pszArguments;
        EXPECT_EQ(1, Lines(result.sErr)) << pszArguments << "\n" << result.sErr;
    }
    const RunResult longName = Run("default --frames 2 --size 128x128 --out " + std::string(260, 'n') + "%d.png");
    EXPECT_EQ(1, longName.nExit);
    EXPECT_NE(std::string::npos, longName.sErr.find("1.png cannot be written: File name too long")) << longName.sErr;
    EXPECT_EQ(std::vector<std::string>{"taken-1.png"}, Files());
    const RunResult full =
        RunBare("--modules " STOCK_MODULE_FOLDER " default --frames 1 --size 128x128 --out -", "/dev/full");
    EXPECT_EQ(1, full.nExit);
    EXPECT_EQ(1, Lines(full.sErr)) << full.sErr;
}

TEST_F(Render, AnEmptyModuleFolderIsToldAndGivesBlackFrames)
{
    fs::create_directory(folder / "empty");
    const RunResult result =
        RunBare("--data " SOURCE_FOLDER "/data --modules empty default --frames 1 --size 128x128 --out -");
    EXPECT_EQ(0, result.nExit);
    EXPECT_NE(std::string::npos, result.sErr.find("no module")) << result.sErr;
    EXPECT_EQ(std::string(128 * 128 * 4, '\0'), result.sOut);
}

TEST_F(Render, HelpAndVersionGoToStandardOutput)
{
    const RunResult help = RunBare("--help");
    EXPECT_EQ(0, help.nExit);
    for (const char *pszOption : {"--frames", "--seconds", "--size", "--fps", "--out", "--warmup", "--seed", "--sound",
                                  "--mix", "--threads", "--data", "--modules", "--save", "--list", "--json", "--stats"})
        EXPECT_NE(std::string::npos, help.sOut.find(pszOption)) << pszOption;
    EXPECT_EQ(0, RunBare("--version").nExit);
    const RunResult stats = Run("default --frames 3 --size 128x128 --out - --stats");
    for (const char *pszStage : {"draw", "mix", "post", "wait", "write"})
        EXPECT_NE(std::string::npos, stats.sErr.find(pszStage)) << pszStage;
}

TEST_F(Render, ListsThePresetsOfAFolderByReadingThem)
{
    fs::create_directory(folder / "p");
    std::ofstream(folder / "p" / "b.VD") << "<ModuleDLL>pmarc.DLL</ModuleDLL><Source>8</Source><ModuleDLL>CMShift.dll";
    folder.Write("p/a \"q\"\t.vd");
    folder.Write("p/c.txt");
    std::ofstream(folder / "Favorites.XML") << "<x>\n<Favorites><Entries>1</Entries><Fave0><Name>b.VD</Name>"
                                               "<Favor>3</Favor></Fave0></Favorites>";
    const timespec ats[] = {{1000000000, 1234500}, {1000000000, 1234500}};
    for (const char *pszName : {"p/b.VD", "p/a \"q\"\t.vd"})
        ASSERT_EQ(0, utimensat(AT_FDCWD, (folder / pszName).c_str(), ats, 0));
    EXPECT_EQ("name\tdate\tsize\tsound sync\tfavorites\tcompatible\tmodules\n"
              "a \"q\"?.vd\t2001-09-09 01:46:40\t1\tNo\t0\tYes\t\n"
              "b.VD\t2001-09-09 01:46:40\t72\tYes\t3\tYes\tCMShift.dll,PMArc.dll\n",
              Run("--list p").sOut);
    const RunResult json = Run("--list p/ --json");
    EXPECT_EQ("[\n  {\"name\": \"a \\\"q\\\"\\u0009.vd\", \"date\": \"2001-09-09T01:46:40.0012345Z\", \"size\": 1, "
              "\"soundSync\": false, \"favorites\": 0, \"compatible\": true, \"modules\": []},\n"
              "  {\"name\": \"b.VD\", \"date\": \"2001-09-09T01:46:40.0012345Z\", \"size\": 72, "
              "\"soundSync\": true, \"favorites\": 3, \"compatible\": true, "
              "\"modules\": [\"CMShift.dll\", \"PMArc.dll\"]}\n]\n",
              json.sOut);
    EXPECT_EQ("", json.sErr);
    EXPECT_EQ(5u, Files().size()) << "nothing was written";
    fs::create_directory(folder / "empty");
    EXPECT_EQ("[]\n", Run("--list empty --json").sOut);
    EXPECT_EQ(1, Run("--list nowhere").nExit);
    const RunResult full = RunBare("--list p --modules " STOCK_MODULE_FOLDER, "/dev/full");
    EXPECT_EQ(1, full.nExit);
    EXPECT_NE(std::string::npos, full.sErr.find("cannot be written"));
}

} // namespace
