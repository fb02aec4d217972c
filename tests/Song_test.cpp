// Song_test.cpp -- sound files of many kinds, and their levels against the live meter
#include "app/Song.h"
#include "stock/shared/LevelMeter.h"
#include "tests/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sndfile.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int WAV = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int FLAC = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
constexpr int OGG = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
constexpr int MP3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

// A tone from second 1 to second 2 of three, loud and soft four times a second; the same on all channels.
f32 Sample(double fSecond)
{
    if (fSecond < 1 || fSecond >= 2)
        return 0;
    return static_cast<f32>((0.2 + 0.5 * std::exp(-6 * std::fmod(fSecond, 0.25))) * std::sin(fSecond * 2765));
}

class SongFile : public testing::Test {
  protected:
    std::vector<f32> Write(const std::string &sName, int nFormat, int nRate, int nChannels) const
    {
        SF_INFO info = {};
        info.samplerate = nRate;
        info.channels = nChannels;
        info.format = nFormat;
        std::vector<f32> af(static_cast<size_t>(nRate) * 3 * static_cast<size_t>(nChannels));
        for (size_t i = 0; i < af.size(); i++)
            af[i] = Sample(static_cast<double>(i / static_cast<size_t>(nChannels)) / nRate);
        SNDFILE *pFile = sf_open((folder / sName).c_str(), SFM_WRITE, &info);
        EXPECT_NE(nullptr, pFile) << sName << ": " << sf_strerror(nullptr);
        sf_writef_float(pFile, af.data(), nRate * 3);
        sf_close(pFile);
        return af;
    }
    // Empty, or why it cannot be read.
    std::string Read(const std::string &sName)
    {
        std::string sError;
        const bool bRead = ReadSong(&song, (folder / sName).string(), &sError);
        EXPECT_EQ(bRead, sError.empty());
        return sError;
    }
    f32 Level(double fMs) const
    {
        const LevelReading reading = SongReadingAt(song, fMs);
        const SimulatedTempo tempo = {};
        return LevelAt(&reading, &tempo, VOLUMETYPE_DYNAMIC, fMs);
    }

    TempFolder folder;
    Song song = {};
};

} // namespace

TEST_F(SongFile, ItsLevelsAreThoseOfTheLiveMeterAtEveryMoment)
{
    const std::vector<f32> af = Write("a.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100, 2);
    ASSERT_EQ("", Read("a.wav"));
    LevelMeter meter;
    InitLevelMeter(&meter, 44100, 2, 0);
    const SimulatedTempo tempo = {};
    size_t nFed = 0;
    for (int k = 1; k <= 180; k++) {
        const u64 qwMs = static_cast<u64>(k * 1000.0 / 60);
        const size_t nTo = qwMs * 44100 / 1000;
        FeedLevelMeter(&meter, af.data() + nFed * 2, static_cast<u32>(nTo - nFed), static_cast<f64>(nTo) / 44.1);
        nFed = nTo;
        const f64 fMs = static_cast<f64>(qwMs);
        const LevelReading reading = SongReadingAt(song, fMs);
        for (const i32 nType : {VOLUMETYPE_RAW, VOLUMETYPE_EXPANDED, VOLUMETYPE_DYNAMIC})
            ASSERT_NEAR(LevelAt(&meter.Reading, &tempo, nType, fMs), LevelAt(&reading, &tempo, nType, fMs), 1e-5)
                << k << " " << nType;
    }
}

TEST_F(SongFile, EveryFormatHasItsLengthItsSoundAndItsSilence)
{
    const struct {
        const char *pszName;
        int nFormat, nRate, nChannels;
    } asCase[] = {{"mono.wav", WAV, 8000, 1},   {"high.wav", WAV, 192000, 1}, {"eight.wav", WAV, 48000, 8},
                  {"many.wav", WAV, 44100, 20}, {"a.flac", FLAC, 96000, 2},   {"a.ogg", OGG, 44100, 2},
                  {"a.mp3", MP3, 48000, 2}};
    for (const auto &test : asCase) {
        Write(test.pszName, test.nFormat, test.nRate, test.nChannels);
        ASSERT_EQ("", Read(test.pszName));
        EXPECT_EQ("", SongDamage(song)) << test.pszName;
        EXPECT_NEAR(3.0, SongSeconds(song), 0.06) << test.pszName;
        EXPECT_LT(Level(900), 0.01f) << test.pszName;
        for (const double fMs : {1100, 1400, 1700, 1900})
            EXPECT_GT(Level(fMs), 0.1f) << test.pszName << " " << fMs;
        for (const double fMs : {-5.0, 0.0, 2300.0, 3000.0, 4200.0, 1e12})
            EXPECT_LT(Level(fMs), 0.01f) << test.pszName << " " << fMs;
    }
}

TEST_F(SongFile, ALengthThatItsWriterDidNotKnowPromisesNothing)
{
    Write("pipe.wav", WAV, 44100, 2);
    for (const u32 dwLength : {0u, 0xFFFFFFFFu, 0xFFFFFFDBu, 0x7FFFFFFFu, 0x7FFFF000u, 0x80000000u}) {
        std::fstream file(folder / "pipe.wav", std::ios::binary | std::ios::in | std::ios::out);
        for (const int nAt : {4, 40}) // of the whole, and of the sound
            file.seekp(nAt).write(reinterpret_cast<const char *>(&dwLength), 4);
        file.close();
        ASSERT_EQ("", Read("pipe.wav")) << dwLength;
        EXPECT_EQ("", SongDamage(song)) << dwLength;
        EXPECT_NEAR(3.0, SongSeconds(song), 0.01) << dwLength;
    }
}

TEST_F(SongFile, WhatIsNoSoundFileIsToldAndADamagedOneIsTakenAsFarAsItGoes)
{
    folder.Write("empty.wav", "");
    folder.Write("text.mp3", std::string(200000, 'x'));
    fs::create_directory(folder / "folder.wav");
    ASSERT_EQ(0, mkfifo((folder / "pipe.wav").c_str(), 0600));
    for (const char *pszName : {"empty.wav", "text.mp3", "folder.wav", "pipe.wav", "missing.wav"})
        EXPECT_NE("", Read(pszName)) << pszName;
    EXPECT_EQ("No such file or directory", Read("missing.wav"));

    Write("a.flac", FLAC, 44100, 2);
    fs::resize_file(folder / "a.flac", fs::file_size(folder / "a.flac") / 2);
    ASSERT_EQ("", Read("a.flac"));
    EXPECT_NE("", SongDamage(song));
    EXPECT_GT(SongSeconds(song), 1.0);
    EXPECT_LT(SongSeconds(song), 2.5);
    EXPECT_GT(Level(1100), 0.1f);
    for (const int nKind : {SF_FORMAT_WAV, SF_FORMAT_AIFF, SF_FORMAT_W64, SF_FORMAT_RF64, SF_FORMAT_AU})
        for (const int nSample : {SF_FORMAT_PCM_16, SF_FORMAT_FLOAT}) {
            Write("cut.wav", nKind | nSample, 44100, 2);
            ASSERT_EQ("", Read("cut.wav")) << nKind << " " << nSample;
            EXPECT_EQ("", SongDamage(song)) << nKind;
            fs::resize_file(folder / "cut.wav", fs::file_size(folder / "cut.wav") / 2);
            ASSERT_EQ("", Read("cut.wav")) << nKind << " " << nSample;
            EXPECT_EQ("the file is damaged: only 1.5 of 3.0 seconds can be read", SongDamage(song)) << nKind;
        }
    Write("header.wav", WAV, 44100, 2);
    fs::resize_file(folder / "header.wav", 44);
    EXPECT_NE("", Read("header.wav"));
}
