// Sanitizers.h -- what this build is instrumented with
#pragma once

#if defined(__has_feature)
#define VD_HAS_FEATURE(feature) __has_feature(feature)
#else
#define VD_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_THREAD__) || VD_HAS_FEATURE(thread_sanitizer)
#define VD_THREAD_SANITIZER 1
#endif
#if defined(__SANITIZE_ADDRESS__) || VD_HAS_FEATURE(address_sanitizer)
#define VD_ADDRESS_SANITIZER 1
#endif
