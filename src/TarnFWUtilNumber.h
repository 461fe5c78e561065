#pragma once

/// Parsers of numbers, and the network order of long ones.

#include <cstdint>

#include "TarnFWWire.h"

/// Stores the value in any case. False for an overflow, an empty number or a trailing character.
bool Str2Long(const char* text, int base, long* value);
bool Str2ULong(const char* text, int base, unsigned long* value);

/// Stores on success only, and then the low 32 bits of a long.
bool Str2Uint(const char* text, int base, unsigned int* value);

/// Decimal, 0 to 65535.
bool Str2Port(const char* text, long* value);

/// Prefix lengths, decimal, 0 to 32 and 0 to 128.
bool Str2CIDR4(const char* text, long* value);
bool Str2CIDR6(const char* text, long* value);

/// Network order of 64-bit numbers.
constexpr std::uint64_t ntohll(std::uint64_t value) {
  return TarnFirewall::wire::networkToHost(value);
}
constexpr std::uint64_t htonll(std::uint64_t value) { return ntohll(value); }

namespace TarnFirewall {

/// A number below a limit when taken as unsigned, so that a negative number fails. Stores the value
/// in any case.
bool str2Limited(const char* text, int base, unsigned long limit, long* value);

}  // namespace TarnFirewall
