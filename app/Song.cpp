// Song.cpp -- the sound levels of a sound file at any moment of it
#include "app/Song.h"

#include "app/SongLength.h"
#include "platform/MainThread.h"
#include "stock/shared/LevelMeter.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sndfile.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr u32 BLOCK_STEPS = 16;
constexpr f64 SILENCE_AFTER_MS = QUIET_AFTER_MS + 500;
constexpr u64 SECONDS_MAX = 24 * 60 * 60;
constexpr u64 MISSING_MS_MAX = 50; // some programs write a length that is wrong by a header

struct CloseSound {
    void operator()(SNDFILE *pFile) const
    {
        sf_close(pFile);
    }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSound>;

// Some decoders print what they think of a file; the caller says it in one line.
class NoStandardError {
  public:
    NoStandardError() : fdKept(dup(STDERR_FILENO))
    {
        std::fflush(stderr);
        const int fdNull = fdKept >= 0 ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
        if (fdNull >= 0) {
            dup2(fdNull, STDERR_FILENO);
            close(fdNull);
        }
    }
    ~NoStandardError()
    {
        std::fflush(stderr);
        if (fdKept >= 0) {
            dup2(fdKept, STDERR_FILENO);
            close(fdKept);
        }
    }

  private:
    int fdKept;
};

std::string ReasonText(int nError)
{
    return std::system_category().message(nError);
}

// Empty, or why there is no use in asking the decoders. A pipe or a device could hold everything up for ever.
std::string CheckFile(const std::string &sPath)
{
    struct stat st;
    if (stat(sPath.c_str(), &st) != 0)
        return ReasonText(errno);
    if (!S_ISREG(st.st_mode))
        return "this is no file";
    if (st.st_size == 0)
        return "the file is empty";
    return {};
}

// How the decoders reach the file.
struct SoundBytes {
    FILE *pFile;
    sf_count_t nTimesLonger; // than it is: what is told of its length
    sf_count_t nEmptyAt;     // see SoundBytesPromised
};

SoundBytes *Bytes(void *pv)
{
    return static_cast<SoundBytes *>(pv);
}

sf_count_t BytesTell(void *pv)
{
    return ftello(Bytes(pv)->pFile);
}

sf_count_t BytesSeek(sf_count_t nOffset, int nFrom, void *pv)
{
    if (fseeko(Bytes(pv)->pFile, nOffset, nFrom) != 0)
        return -1;
    return BytesTell(pv) * (nFrom == SEEK_END && nOffset == 0 ? Bytes(pv)->nTimesLonger : 1);
}

sf_count_t BytesLength(void *pv)
{
    struct stat st;
    return fstat(fileno(Bytes(pv)->pFile), &st) == 0 ? st.st_size : 0;
}

sf_count_t BytesRead(void *p, sf_count_t cb, void *pv)
{
    const sf_count_t nAt = BytesTell(pv), nEmptyAt = Bytes(pv)->nEmptyAt;
    const auto cbRead = static_cast<sf_count_t>(std::fread(p, 1, static_cast<size_t>(cb), Bytes(pv)->pFile));
    // The decoder would take 0 for a length; of one beyond the file it makes the rest of the file.
    for (sf_count_t i = nEmptyAt; nEmptyAt && i < nEmptyAt + 4; i++)
        if (i >= nAt && i < nAt + cbRead)
            static_cast<u8 *>(p)[i - nAt] = 0xFF;
    return cbRead;
}

sf_count_t BytesWrite(const void *, sf_count_t, void *)
{
    return 0;
}

SoundFile OpenSound(SoundBytes *pBytes, SF_INFO *pInfo)
{
    SF_VIRTUAL_IO io = {BytesLength, BytesSeek, BytesRead, BytesWrite, BytesTell};
    std::rewind(pBytes->pFile);
    *pInfo = {};
    return SoundFile(sf_open_virtual(&io, SFM_READ, pInfo, pBytes));
}

// Where an MP3 file does not tell its length, the decoder guesses it from the first frame and the size of the file, and
// stops there, be it in the middle of the song. A file that seems much longer is read to its end. The two lengths
// differ where they are a guess: then nothing is promised.
SoundFile OpenWholeSound(SoundBytes *pBytes, SF_INFO *pInfo)
{
    SoundFile file = OpenSound(pBytes, pInfo);
    if (!file || (pInfo->format & SF_FORMAT_TYPEMASK) != SF_FORMAT_MPEG)
        return file;
    const sf_count_t nFrames = pInfo->frames;
    file.reset();
    pBytes->nTimesLonger = 100;
    file = OpenSound(pBytes, pInfo);
    if (pInfo->frames != nFrames)
        pInfo->frames = 0;
    return file;
}

// The meter takes a limited number of channels: those beyond it are left out.
void DropChannels(std::vector<f32> *pBlock, size_t nFrom, size_t nTo)
{
    for (size_t i = 0; nFrom > nTo && i < pBlock->size() / nFrom; i++)
        std::copy_n(pBlock->begin() + static_cast<std::ptrdiff_t>(i * nFrom), nTo,
                    pBlock->begin() + static_cast<std::ptrdiff_t>(i * nTo));
}

// Feeds the meter one step of samples (null: silence) and keeps the levels. A last step that is not full is filled up
// with silence.
void FeedStep(Song *pSong, LevelMeter *pMeter, const f32 *pfSamples, u32 nFrames)
{
    const u32 nStep = static_cast<u32>(pSong->steps.size()) + 1;
    const f64 fEndMs = static_cast<f64>(nStep) * pSong->nStepFrames * 1000.0 / pSong->nRate;
    const f64 fMissingMs = static_cast<f64>(pSong->nStepFrames - nFrames) * 1000.0 / pSong->nRate;
    FeedLevelMeter(pMeter, pfSamples, nFrames, fEndMs - fMissingMs);
    if (nFrames < pSong->nStepFrames)
        FeedLevelMeter(pMeter, nullptr, pSong->nStepFrames - nFrames, fEndMs);
    const bool bSound = pMeter->Reading.fRaw >= QUIET_LEVEL;
    const u32 nBefore = pSong->steps.empty() ? 0 : pSong->steps.back().nLastSound;
    pSong->steps.push_back({pMeter->Reading.fRaw, pMeter->Reading.fDynamic, bSound ? nStep : nBefore});
}

void FeedBlock(Song *pSong, LevelMeter *pMeter, const std::vector<f32> &block, u64 nFrames)
{
    for (u64 i = 0; i < nFrames; i += pSong->nStepFrames)
        FeedStep(pSong, pMeter, block.data() + i * pMeter->nChannels,
                 static_cast<u32>(std::min<u64>(nFrames - i, pSong->nStepFrames)));
}

void FeedSilence(Song *pSong, LevelMeter *pMeter)
{
    const u64 nWanted =
        pSong->steps.size() + static_cast<u64>(SILENCE_AFTER_MS * pSong->nRate / 1000.0 / pSong->nStepFrames) + 1;
    while (pSong->steps.size() < nWanted)
        FeedStep(pSong, pMeter, nullptr, pSong->nStepFrames);
}

std::string ReadLevels(Song *pSong, SNDFILE *pFile, const SF_INFO &info)
{
    LevelMeter meter;
    const u32 nChannels = static_cast<u32>(info.channels);
    InitLevelMeter(&meter, static_cast<u32>(info.samplerate), nChannels, 0);
    *pSong = {meter.nRate, meter.nStepFrames, 0, static_cast<u64>(std::max<sf_count_t>(info.frames, 0)), 0, {}};
    const u64 nBlock = static_cast<u64>(BLOCK_STEPS) * pSong->nStepFrames;
    std::vector<f32> block(nBlock * nChannels);
    for (sf_count_t n; (n = sf_readf_float(pFile, block.data(), static_cast<sf_count_t>(nBlock))) > 0;) {
        DropChannels(&block, nChannels, meter.nChannels);
        FeedBlock(pSong, &meter, block, static_cast<u64>(n));
        pSong->nFrames += static_cast<u64>(n);
        if (pSong->nFrames > SECONDS_MAX * pSong->nRate)
            return "it is longer than a day";
    }
    if (pSong->nFrames == 0)
        return "it holds no sound";
    if (sf_error(pFile) != SF_ERR_NO_ERROR)
        pSong->bBroken = 1;
    FeedSilence(pSong, &meter);
    return {};
}

// A file without compression that was cut off looks like a shorter song to its decoder.
void NoteMissingBytes(Song *pSong, const SoundBytesPromised &bytes)
{
    if (bytes.cbPresent == 0)
        return;
    const f64 fFrames =
        static_cast<f64>(pSong->nFrames) * static_cast<f64>(bytes.cbPromised) / static_cast<f64>(bytes.cbPresent);
    if (fFrames < 1e15 && fFrames > static_cast<f64>(pSong->nFrames + pSong->nRate * MISSING_MS_MAX / 1000))
        pSong->nPromised = std::max(pSong->nPromised, static_cast<u64>(fFrames));
}

std::string ReadSound(Song *pSong, FILE *pFile)
{
    const SoundBytesPromised promised = ReadSoundPromise(pFile);
    const NoStandardError quiet;
    SoundBytes source = {pFile, 1, static_cast<sf_count_t>(promised.nEmptyAt)};
    SF_INFO info;
    const SoundFile file = OpenWholeSound(&source, &info);
    if (!file)
        return "this is no sound file that can be read";
    if (info.samplerate < static_cast<int>(METER_RATE_MIN) || info.samplerate > static_cast<int>(METER_RATE_MAX))
        return "its sample rate of " + std::to_string(info.samplerate) + " a second is out of range";
    const std::string sError = ReadLevels(pSong, file.get(), info);
    NoteMissingBytes(pSong, promised);
    return sError;
}

} // namespace

bool ReadSong(Song *pSong, const std::string &sPath, std::string *psError)
{
    ASSERT_MAIN_THREAD();
    *psError = CheckFile(sPath);
    if (!psError->empty())
        return false;
    const std::unique_ptr<FILE, int (*)(FILE *)> bytes(std::fopen(sPath.c_str(), "rbe"), std::fclose);
    if (!bytes) {
        *psError = ReasonText(errno);
        return false;
    }
    *psError = ReadSound(pSong, bytes.get());
    return psError->empty();
}

f64 SongSeconds(const Song &song)
{
    return song.nRate ? static_cast<f64>(song.nFrames) / song.nRate : 0;
}

std::string SongDamage(const Song &song)
{
    if (song.nPromised <= song.nFrames && !song.bBroken)
        return {};
    char szText[128];
    const f64 fRead = SongSeconds(song), fPromised = static_cast<f64>(song.nPromised) / song.nRate;
    // Otherwise the file does not know, or the lack is too short to be told in numbers.
    if (fPromised >= fRead + 0.1 && fPromised <= static_cast<f64>(SECONDS_MAX))
        std::snprintf(szText, sizeof szText, "the file is damaged: only %.1f of %.1f seconds can be read", fRead,
                      fPromised);
    else
        std::snprintf(szText, sizeof szText, "the file is damaged: it ends in the middle, after %.1f seconds", fRead);
    return szText;
}

LevelReading SongReadingAt(const Song &song, f64 fSongMs)
{
    LevelReading reading = {};
    if (fSongMs <= 0 || song.steps.empty())
        return reading;
    const f64 fStepMs = song.nStepFrames * 1000.0 / song.nRate;
    // The tick may lie a hair below the end of a step that it stands for.
    const f64 fStep = (fSongMs + 1e-6) / fStepMs;
    const u64 nStep = std::min(static_cast<u64>(fStep), static_cast<u64>(song.steps.size()));
    if (nStep == 0)
        return reading;
    const SongStep &step = song.steps[nStep - 1];
    reading.fTimeMs = fSongMs; // there is never a lack of samples
    reading.fLastSoundMs = step.nLastSound * fStepMs;
    reading.fRaw = step.fRaw;
    reading.fExpanded = ExpandedLevel(step.fRaw);
    reading.fDynamic = step.fDynamic;
    reading.bHeard = step.nLastSound > 0;
    return reading;
}
