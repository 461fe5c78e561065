#include "TarnFWHash.h"

#include <bit>
#include <cstring>

#include "TarnFWWire.h"

namespace {

/// The three words of lookup3's state.
struct State {
  std::uint32_t a;
  std::uint32_t b;
  std::uint32_t c;
};

constexpr std::size_t kBlock = 12;

inline std::uint32_t littleWord(const unsigned char* bytes) {
  std::uint32_t word;
  std::memcpy(&word, bytes, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    word = TarnFirewall::wire::swapBytes(word);
  }
  return word;
}

inline void add(State& s, const unsigned char* block) {
  s.a += littleWord(block);
  s.b += littleWord(block + 4);
  s.c += littleWord(block + 8);
}

/// lookup3's `mix`: reversible, for all blocks but the last. Six steps of one form, with the words
/// in turn.
inline void mixStep(std::uint32_t& x, std::uint32_t& y, std::uint32_t& z, int bits) {
  x -= y;
  x ^= std::rotl(y, bits);
  y += z;
}
inline void mix(State& s) {
  mixStep(s.a, s.c, s.b, 4);
  mixStep(s.b, s.a, s.c, 6);
  mixStep(s.c, s.b, s.a, 8);
  mixStep(s.a, s.c, s.b, 16);
  mixStep(s.b, s.a, s.c, 19);
  mixStep(s.c, s.b, s.a, 4);
}

/// lookup3's `final`: drives the last block into `c`, and nearly as well into `b`.
inline void finishStep(std::uint32_t& x, std::uint32_t y, int bits) {
  x ^= y;
  x -= std::rotl(y, bits);
}
inline void finish(State& s) {
  finishStep(s.c, s.b, 14);
  finishStep(s.a, s.c, 11);
  finishStep(s.b, s.a, 25);
  finishStep(s.c, s.b, 16);
  finishStep(s.a, s.c, 4);
  finishStep(s.b, s.a, 14);
  finishStep(s.c, s.b, 24);
}

/// The last block, of 1 to 12 bytes, is padded with zeros; an empty key is not mixed at all.
State lookup3(const void* key, std::size_t length, std::uint32_t primary, std::uint32_t secondary) {
  const std::uint32_t start = 0xdeadbeef + static_cast<std::uint32_t>(length) + primary;
  State s{start, start, start + secondary};
  if (length == 0) return s;
  const auto* bytes = static_cast<const unsigned char*>(key);
  for (; length > kBlock; length -= kBlock, bytes += kBlock) {
    add(s, bytes);
    mix(s);
  }
  unsigned char last[kBlock] = {};
  std::memcpy(last, bytes, length);
  add(s, last);
  finish(s);
  return s;
}

}  // namespace

std::uint32_t jhash32(const void* key, std::size_t length, std::uint32_t seed) {
  return lookup3(key, length, seed, 0).c;
}

std::uint64_t jhash64(const void* key, std::size_t length, std::uint64_t seed) {
  const State s = lookup3(key, length, static_cast<std::uint32_t>(seed),
                          static_cast<std::uint32_t>(seed >> 32));
  return (static_cast<std::uint64_t>(s.b) << 32) | s.c;
}
