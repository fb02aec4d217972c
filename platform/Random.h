// Random.h -- the one random source: strong by default, seeded streams for deterministic runs
#pragma once

#include "platform/BaseTypes.h"

// A stream of its own for a plane, an instance or the main thread in a seeded run. Zero-filled is valid.
struct RandomStream {
    u64 qwState; // advances with every word; guarded by whoever owns the stream
};

// A random 32-bit word. Unseeded: from the system's strong generator, drawn in blocks per thread (one system
// call per word would cost more than a frame step); if that fails, from the fallback generator. Seeded: the
// next word of the thread's current stream. Allocates nothing. [any-thread]
u32 RandomWord();
u64 RandomWord64();

// Seeds the fallback generator of the calling thread.
void SeedFallbackRandom(u32 dwSeed);

// Fixes every later random number of the process. Call before the first stream is made. [main-thread]
void SeedAllRandom(u64 qwSeed);
// Back to the strong source (tests).
void UseStrongRandom();

// Makes the next stream of the run; the n-th stream made is the same in every run with the same seed.
// [main-thread]
RandomStream NewRandomStream();

// Makes the thread draw from this stream in a seeded run; null: the main stream. Returns the stream before.
// The stream must outlive its use. [any-thread]
RandomStream *UseRandomStream(RandomStream *pStream);

// Draws from one stream for as long as it stands.
class RandomStreamScope {
  public:
    explicit RandomStreamScope(RandomStream *pStream) : pBefore(UseRandomStream(pStream))
    {
    }
    ~RandomStreamScope()
    {
        UseRandomStream(pBefore);
    }
    RandomStreamScope(const RandomStreamScope &) = delete;
    RandomStreamScope &operator=(const RandomStreamScope &) = delete;

  private:
    RandomStream *pBefore;
};
