// SongLength.cpp -- what the header of a sound file promises
#include "app/SongLength.h"

#include <cstring>
#include <string_view>

namespace {

constexpr u32 CHUNKS_MAX = 1000; // a file of that many before its sound is no honest one

// Files of chunks: a name, a length, that many bytes, over and over.
struct ChunkFormat {
    std::string_view magic;
    size_t iKind; // where in the file the kind stands
    std::string_view kind;
    u64 cbHead;     // of the file, before the first chunk
    u32 cbName;     // of a chunk
    u32 cbLength;   // of its length
    bool bBig;      // the length has its high byte first
    bool bWithHead; // the length counts name and length too
    u32 nAlign;     // where the next one begins
    std::string_view sound;
};

constexpr ChunkFormat asFormat[] = {
    {"RIFF", 8, "WAVE", 12, 4, 4, false, false, 2, "data"}, {"RIFX", 8, "WAVE", 12, 4, 4, true, false, 2, "data"},
    {"RF64", 8, "WAVE", 12, 4, 4, false, false, 2, "data"}, {"FORM", 8, "AIFF", 12, 4, 4, true, false, 2, "SSND"},
    {"FORM", 8, "AIFC", 12, 4, 4, true, false, 2, "SSND"},  {"riff", 24, "wave", 40, 16, 8, false, true, 8, "data"},
};

u64 Number(const u8 *p, u32 cb, bool bBig)
{
    u64 n = 0;
    for (u32 i = 0; i < cb; i++)
        n = n << 8 | p[bBig ? i : cb - 1 - i];
    return n;
}

bool ReadAt(FILE *pFile, u64 nAt, u8 *pTo, size_t cb)
{
    return fseeko(pFile, static_cast<off_t>(nAt), SEEK_SET) == 0 && std::fread(pTo, 1, cb, pFile) == cb;
}

bool Holds(const u8 *p, std::string_view text)
{
    return std::memcmp(p, text.data(), text.size()) == 0;
}

// Nothing, all ones or the highest number of a sign, more or less a header: what stands in a file whose writer did not
// know its length.
bool IsUnknown(u64 cb, u32 cbLength)
{
    if (cb == 0)
        return true;
    if (cbLength == 8)
        return cb >= u64{1} << 62;
    return cb >= 0xFFFF0000u || (cb >= 0x7FFF0000u && cb <= 0x80010000u);
}

SoundBytesPromised Compare(u64 cbPromised, u32 cbLength, u64 nAt, u64 cbFile)
{
    if (IsUnknown(cbPromised, cbLength) || nAt > cbFile)
        return {};
    return {cbPromised, cbPromised < cbFile - nAt ? cbPromised : cbFile - nAt, 0};
}

SoundBytesPromised WalkChunks(FILE *pFile, const ChunkFormat &format, u64 cbFile)
{
    const u32 cbHead = format.cbName + format.cbLength;
    u64 nAt = format.cbHead, cbLong = 0; // the second from a table of lengths beyond 32 bits
    u8 ab[24];
    for (u32 i = 0; i < CHUNKS_MAX && nAt < cbFile && ReadAt(pFile, nAt, ab, cbHead); i++) {
        u64 cb = Number(ab + format.cbName, format.cbLength, format.bBig);
        if (format.bWithHead)
            cb = cb > cbHead ? cb - cbHead : 0;
        nAt += cbHead;
        if (Holds(ab, format.sound))
            return cb == 0 ? SoundBytesPromised{0, 0, nAt - format.cbLength}
                           : Compare(cbLong ? cbLong : cb, cbLong ? 8 : format.cbLength, nAt, cbFile);
        if (cb > cbFile - nAt)
            return {};
        if (Holds(ab, "ds64") && cb >= 16 && ReadAt(pFile, nAt, ab, 16))
            cbLong = Number(ab + 8, 8, false);
        nAt = (nAt + cb + format.nAlign - 1) / format.nAlign * format.nAlign;
    }
    return {};
}

// Where the whole is longer than its head, a length of nothing is meant.
SoundBytesPromised Checked(SoundBytesPromised promise, const ChunkFormat &format, u64 cbWhole)
{
    if (format.kind != "WAVE" || (!IsUnknown(cbWhole, 4) && cbWhole > promise.nEmptyAt))
        promise.nEmptyAt = 0;
    return promise;
}

} // namespace

SoundBytesPromised ReadSoundPromise(FILE *pFile)
{
    u8 ab[40] = {};
    if (fseeko(pFile, 0, SEEK_END) != 0)
        return {};
    const u64 cbFile = static_cast<u64>(ftello(pFile));
    if (!ReadAt(pFile, 0, ab, sizeof ab))
        return {};
    if (Holds(ab, ".snd"))
        return Compare(Number(ab + 8, 4, true), 4, Number(ab + 4, 4, true), cbFile);
    for (const ChunkFormat &format : asFormat)
        if (Holds(ab, format.magic) && Holds(ab + format.iKind, format.kind))
            return Checked(WalkChunks(pFile, format, cbFile), format, Number(ab + 4, 4, format.bBig));
    return {};
}
