#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// One run of a target, by libFuzzer's name. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the run as a finding when a property does not hold.
inline void require(bool holds) {
  if (!holds) std::abort();
}
