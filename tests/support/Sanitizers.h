// Whether a test was compiled under a sanitizer that takes memory of its own.
#pragma once

#if defined(__has_feature)
#define TARNFW_CLANG_HAS(feature) __has_feature(feature)
#else
#define TARNFW_CLANG_HAS(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || TARNFW_CLANG_HAS(address_sanitizer)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || TARNFW_CLANG_HAS(thread_sanitizer)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

inline constexpr bool kMemorySanitized = kAddressSanitizer || kThreadSanitizer;
