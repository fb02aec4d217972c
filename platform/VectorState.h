// VectorState.h -- the upper halves of the vector registers
#pragma once

// Marks them as unused. Code of libraries that leaves them in use, as the toolkit's painter does, makes the plain
// arithmetic that follows three times slower on many processors. [any-thread]
inline void ClearVectorState()
{
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx"))
        __asm__ volatile("vzeroupper");
#endif
}
