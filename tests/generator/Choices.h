#pragma once

#include <cstdint>
#include <span>
#include <string>

/// Where generators get their choices from: a seeded sequence, or the bytes of a fuzzer's input.
///
/// The seeded sequence is SplitMix64 (Sebastiano Vigna), the same on every machine, so that a seed
/// names a test. A fuzzer's bytes give zeros when they are used up, so that every input ends.
class Choices {
 public:
  explicit Choices(std::uint64_t seed) : state_(seed), seeded_(true) {}
  explicit Choices(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  std::uint64_t bits();

  /// 0 to `limit` - 1; 0 for a limit of 0.
  std::uint32_t below(std::uint32_t limit) {
    return limit == 0 ? 0 : static_cast<std::uint32_t>(bits() % limit);
  }

  /// True in `percent` of a hundred.
  bool chance(unsigned int percent) { return below(100) < percent; }

  std::uint8_t byte() { return static_cast<std::uint8_t>(bits()); }

  /// 1 to `longest` characters that may stand in a name.
  std::string name(std::uint32_t longest);

 private:
  std::uint64_t state_ = 0;
  bool seeded_ = false;
  std::span<const std::uint8_t> bytes_;
};
