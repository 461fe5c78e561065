#pragma once

/// Entries of the filter tables as `getfiltertables` prints them.

#include <cstddef>
#include <cstdint>
#include <span>

/// Prints an entry's line; what is missing of its value counts as zero. A virtual NIC is printed in
/// vnic form on demand. False for a type that there is not: its line is repeated until the process
/// ends.
bool printTableEntry(std::uint8_t type, std::span<const std::byte> value, bool vnicForm);
