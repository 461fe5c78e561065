#pragma once

/// The kernel's timeouts by name, and lists of their values.

#include <cstdint>

/// The kernel's timeouts, by number.
inline constexpr unsigned int kTimeouts = 22;
extern const char* const g_tarnfw_timeout_name[kTimeouts];

/// What `TimeoutName2ID` gives for an unknown name. One more than the count: callers compare so.
inline constexpr unsigned int kTimeoutNotFound = 23;
unsigned int TimeoutName2ID(const char* name);

/// Exactly `count` numbers, separated by blank, tab, "," or ":". Logs what is wrong.
bool ParseTimeoutList(const char* text, std::uint32_t* values, unsigned int count);
