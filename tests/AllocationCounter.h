// AllocationCounter.h -- counts every allocation of the process, for tests that prove there are none
#pragma once

#include "platform/BaseTypes.h"

#include <atomic>
#include <cstddef>

// Include in one source of a program only: it replaces malloc and its kin. With a sanitizer, which has an allocator of
// its own, nothing is counted.
inline std::atomic<u64> nCountedAllocations{0};

inline u64 AllocationCount()
{
    return nCountedAllocations;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {
void *__libc_malloc(size_t cb);
void *__libc_calloc(size_t n, size_t cb);
void *__libc_realloc(void *pv, size_t cb);
void *__libc_memalign(size_t cbAlignment, size_t cb);

void *malloc(size_t cb)
{
    nCountedAllocations++;
    return __libc_malloc(cb);
}

void *calloc(size_t n, size_t cb)
{
    nCountedAllocations++;
    return __libc_calloc(n, cb);
}

void *realloc(void *pv, size_t cb)
{
    nCountedAllocations++;
    return __libc_realloc(pv, cb);
}

int posix_memalign(void **ppv, size_t cbAlignment, size_t cb)
{
    nCountedAllocations++;
    *ppv = __libc_memalign(cbAlignment, cb);
    return *ppv ? 0 : 12;
}
}
#endif
