// Random.cpp -- the one random source: strong by default, seeded streams for deterministic runs
#include "platform/Random.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <sys/random.h>

namespace {

constexpr u32 BLOCK_WORDS = 512;

struct RandomBlock {
    u32 adwWord[BLOCK_WORDS];
    u32 nUsed = BLOCK_WORDS;
    u32 dwFallback = 1; // state of the fallback generator
};

thread_local RandomBlock Block;
thread_local RandomStream *pThreadStream = nullptr;

std::atomic<bool> bSeeded{false};
u64 qwRunSeed = 0;     // [main-thread]
u64 qwStreamsMade = 0; // [main-thread]
RandomStream MainStream;

// splitmix64: every state gives a well-mixed word, and states a constant apart give unrelated ones.
u64 MixWord(u64 qw)
{
    qw = (qw ^ (qw >> 30)) * 0xBF58476D1CE4E5B9ull;
    qw = (qw ^ (qw >> 27)) * 0x94D049BB133111EBull;
    return qw ^ (qw >> 31);
}

u32 NextStreamWord(RandomStream *pStream)
{
    pStream->qwState += 0x9E3779B97F4A7C15ull;
    return static_cast<u32>(MixWord(pStream->qwState) >> 32);
}

u32 FallbackWord(u32 *pdwState)
{
    u32 dwWord = 0;
    for (int i = 0; i < 4; i++)
        dwWord = dwWord << 8 | (static_cast<u32>(rand_r(pdwState)) & 0xFF);
    return dwWord;
}

void RefillBlock(RandomBlock *pBlock)
{
    u8 *pb = reinterpret_cast<u8 *>(pBlock->adwWord);
    size_t cbHave = 0;
    while (cbHave < sizeof pBlock->adwWord) {
        const ssize_t cb = getrandom(pb + cbHave, sizeof pBlock->adwWord - cbHave, GRND_NONBLOCK);
        if (cb < 0 && errno == EINTR)
            continue;
        if (cb <= 0)
            break;
        cbHave += static_cast<size_t>(cb);
    }
    for (size_t i = cbHave / sizeof(u32); i < BLOCK_WORDS; i++)
        pBlock->adwWord[i] = FallbackWord(&pBlock->dwFallback);
    pBlock->nUsed = 0;
}

} // namespace

u32 RandomWord()
{
    if (bSeeded.load(std::memory_order_relaxed))
        return NextStreamWord(pThreadStream ? pThreadStream : &MainStream);
    if (Block.nUsed >= BLOCK_WORDS)
        RefillBlock(&Block);
    return Block.adwWord[Block.nUsed++];
}

u64 RandomWord64()
{
    const u64 qwHigh = RandomWord();
    return qwHigh << 32 | RandomWord();
}

void SeedFallbackRandom(u32 dwSeed)
{
    Block.dwFallback = dwSeed;
}

void SeedAllRandom(u64 qwSeed)
{
    qwRunSeed = qwSeed;
    qwStreamsMade = 0;
    MainStream = NewRandomStream();
    bSeeded = true;
}

void UseStrongRandom()
{
    bSeeded = false;
}

RandomStream NewRandomStream()
{
    qwStreamsMade++;
    return {MixWord(MixWord(qwRunSeed + 0x9E3779B97F4A7C15ull) + qwStreamsMade * 0xD1342543DE82EF95ull)};
}

RandomStream *UseRandomStream(RandomStream *pStream)
{
    RandomStream *pBefore = pThreadStream;
    pThreadStream = pStream;
    return pBefore;
}
