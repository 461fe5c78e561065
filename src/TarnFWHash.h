#pragma once

/// Hashes of identifiers: Bob Jenkins' lookup3 (May 2006, public domain).

#include <cstddef>
#include <cstdint>

/// lookup3's `hashlittle`. The value depends on the key's bytes only, not on where they stand or on
/// the host's byte order. `key` may be null when `length` is 0.
std::uint32_t jhash32(const void* key, std::size_t length, std::uint32_t seed);

/// lookup3's `hashlittle2`: the seed's low half is the primary initial value, its high half the
/// secondary one; the result's low half is the better mixed of the two hashes.
std::uint64_t jhash64(const void* key, std::size_t length, std::uint64_t seed);
