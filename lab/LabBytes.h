// Reading and writing the kernel's records by offset, with every access bounded.
//
// The lab stands for the kernel, so it keeps its own idea of every layout and takes none from the
// library that it answers.
#ifndef TARNLAB_BYTES_H
#define TARNLAB_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace TarnLab {

using ConstBytes = std::span<const std::byte>;
using Bytes = std::span<std::byte>;
using ByteVector = std::vector<std::byte>;

/// A part of a record; std::out_of_range when the record does not hold it whole.
inline ConstBytes part(ConstBytes record, std::size_t offset, std::size_t size) {
  if (offset > record.size() || size > record.size() - offset) {
    throw std::out_of_range("record too short");
  }
  return record.subspan(offset, size);
}

inline Bytes part(Bytes record, std::size_t offset, std::size_t size) {
  if (offset > record.size() || size > record.size() - offset) {
    throw std::out_of_range("record too short");
  }
  return record.subspan(offset, size);
}

/// An integer in host order.
template <typename T>
T getHost(ConstBytes record, std::size_t offset) {
  T value;
  std::memcpy(&value, part(record, offset, sizeof value).data(), sizeof value);
  return value;
}

inline std::uint8_t get8(ConstBytes r, std::size_t o) { return getHost<std::uint8_t>(r, o); }
inline std::uint16_t get16(ConstBytes r, std::size_t o) { return getHost<std::uint16_t>(r, o); }
inline std::uint32_t get32(ConstBytes r, std::size_t o) { return getHost<std::uint32_t>(r, o); }
inline std::uint64_t get64(ConstBytes r, std::size_t o) { return getHost<std::uint64_t>(r, o); }

/// A 16-bit integer in network order.
inline std::uint16_t getNet16(ConstBytes r, std::size_t o) {
  return static_cast<std::uint16_t>(get8(r, o) << 8 | get8(r, o + 1));
}

template <typename T>
void putHost(Bytes record, std::size_t offset, T value) {
  std::memcpy(part(record, offset, sizeof value).data(), &value, sizeof value);
}

inline void put8(Bytes r, std::size_t o, std::uint8_t v) { putHost(r, o, v); }
inline void put16(Bytes r, std::size_t o, std::uint16_t v) { putHost(r, o, v); }
inline void put32(Bytes r, std::size_t o, std::uint32_t v) { putHost(r, o, v); }
inline void put64(Bytes r, std::size_t o, std::uint64_t v) { putHost(r, o, v); }

/// The text of a field: up to its first NUL, or the whole field without one.
inline std::string_view getText(ConstBytes record, std::size_t offset, std::size_t size) {
  const ConstBytes field = part(record, offset, size);
  const auto* text = reinterpret_cast<const char*>(field.data());
  return {text, strnlen(text, size)};
}

/// Fills a field with the text, cut to leave a NUL, and clears the rest of it.
inline void putText(Bytes record, std::size_t offset, std::size_t size, std::string_view text) {
  const Bytes field = part(record, offset, size);
  std::memset(field.data(), 0, field.size());
  if (size > 0) std::memcpy(field.data(), text.data(), std::min(text.size(), size - 1));
}

inline bool isZero(ConstBytes bytes) {
  for (const std::byte b : bytes) {
    if (b != std::byte{0}) return false;
  }
  return true;
}

}  // namespace TarnLab

#endif
