#pragma once

/// Parsers of pairs of ports.

#include <cstdint>

/// Two ports with "-" or else ":" between them, the low one not above the high one.
bool Str2PortOrRange(const char* text, long* low, long* high);

/// The same with low strictly below high.
bool Str2PortRange(const char* text, long* low, long* high);

/// A port, which sets `low` only, or a range of at least two. Network order; both cleared first.
bool ParsePortString(const char* text, std::uint16_t* low, std::uint16_t* high);
