#include "Choices.h"

#include <algorithm>
#include <cstring>
#include <string_view>

std::uint64_t Choices::bits() {
  if (seeded_) {
    state_ += 0x9e3779b97f4a7c15u;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return z ^ (z >> 31);
  }
  std::uint64_t value = 0;
  const std::size_t taken = std::min<std::size_t>(bytes_.size(), 4);
  if (taken != 0) std::memcpy(&value, bytes_.data(), taken);
  bytes_ = bytes_.subspan(taken);
  return value;
}

std::string Choices::name(std::uint32_t longest) {
  static constexpr std::string_view characters =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.- :;,{}()%#";
  const std::uint32_t length = chance(5) ? longest : 1 + below(std::min(longest, 20u));
  std::string text;
  for (std::uint32_t i = 0; i < length; ++i) {
    text += characters[below(static_cast<std::uint32_t>(characters.size()))];
  }
  return text;
}
