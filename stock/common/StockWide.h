// StockWide.h -- hot loops for the processor at hand
//
// STOCK_WIDE before a static function that is no template builds it twice and takes the wider one where the processor
// bears it. The bytes are the same: no fused arithmetic (see CMakeLists.txt).
#ifndef VORTICADE_STOCK_WIDE_H
#define VORTICADE_STOCK_WIDE_H

// The choice is made while the library is loaded, before a sanitizer is ready for it.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__OPTIMIZE__) &&                        \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define STOCK_WIDE [[maybe_unused]] __attribute__((target_clones("avx2", "default")))
#else
#define STOCK_WIDE [[maybe_unused]]
#endif

#endif
