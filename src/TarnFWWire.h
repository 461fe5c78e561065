#pragma once

/// Integers as they stand in records that cross into the kernel.
///
/// A wire integer is an array of bytes of alignment 1 whose name says the byte order: `host16`,
/// `host32`, `host64` hold the value in the host's order, `net16`, `net32`, `net64` in network
/// order. Reading and assigning convert; a record made of them is trivially copyable and may stand
/// at any address. All copies go through `memcpy`.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <span>
#include <type_traits>

namespace TarnFirewall {

namespace wire {

template <typename T>
constexpr T swapBytes(T value) {
  using U = std::make_unsigned_t<T>;
  U in = static_cast<U>(value);
  U out = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    out = static_cast<U>(static_cast<U>(out << 8) | static_cast<U>(in & 0xff));
    in = static_cast<U>(in >> 8);
  }
  return static_cast<T>(out);
}

template <>
constexpr std::uint8_t swapBytes(std::uint8_t value) {
  return value;
}

/// Network order is big-endian; on a big-endian host this is the identity.
template <typename T>
constexpr T hostToNetwork(T value) {
  if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) {
    return swapBytes(value);
  } else {
    return value;
  }
}

template <typename T>
constexpr T networkToHost(T value) {
  return hostToNetwork(value);
}

template <typename T, bool Network>
class Integer {
 public:
  Integer() = default;
  Integer(T value) { *this = value; }  // NOLINT(google-explicit-constructor): reads like the value

  operator T() const {  // NOLINT(google-explicit-constructor): reads like the value
    T value;
    std::memcpy(&value, bytes_, sizeof value);
    return Network ? networkToHost(value) : value;
  }

  Integer& operator=(T value) {
    const T stored = Network ? hostToNetwork(value) : value;
    std::memcpy(bytes_, &stored, sizeof stored);
    return *this;
  }

 private:
  std::uint8_t bytes_[sizeof(T)];
};

}  // namespace wire

using host16 = wire::Integer<std::uint16_t, false>;
using host32 = wire::Integer<std::uint32_t, false>;
using host64 = wire::Integer<std::uint64_t, false>;
using hosti32 = wire::Integer<std::int32_t, false>;
using hosti64 = wire::Integer<std::int64_t, false>;
using net16 = wire::Integer<std::uint16_t, true>;
using net32 = wire::Integer<std::uint32_t, true>;
using net64 = wire::Integer<std::uint64_t, true>;

static_assert(sizeof(host16) == 2 && alignof(host16) == 1 && std::is_trivially_copyable_v<host16>);
static_assert(sizeof(host32) == 4 && alignof(host32) == 1 && std::is_trivially_copyable_v<host32>);
static_assert(sizeof(host64) == 8 && alignof(host64) == 1 && std::is_trivially_copyable_v<host64>);
static_assert(sizeof(net16) == 2 && alignof(net16) == 1 && std::is_trivially_copyable_v<net16>);
static_assert(sizeof(net32) == 4 && alignof(net32) == 1 && std::is_trivially_copyable_v<net32>);

/// Copies one record out of a buffer. The caller has checked that `Record` fits at `from`.
template <typename Record>
Record loadRecord(const void* from) {
  static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
  Record record;
  std::memcpy(&record, from, sizeof record);
  return record;
}

/// Copies one record into a buffer. The caller has checked that `Record` fits at `to`.
template <typename Record>
void storeRecord(void* to, const Record& record) {
  static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
  std::memcpy(to, &record, sizeof record);
}

/// A cleared record that lives in the buffer itself, for a writer that fills it in place. The
/// caller has checked that `Record` fits at `at`.
template <typename Record>
Record& clearRecord(void* at) {
  static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
  return *::new (at) Record{};
}

/// The record that a buffer holds, for a writer that fills in place what is zero. The caller has
/// checked that `Record` fits at `at`.
template <typename Record>
Record& recordAt(void* at) {
  static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
  return *static_cast<Record*>(at);
}

/// Clears memory by the C library. Of a size that it knows, the compiler makes a single instruction
/// instead, which takes twice as long for a record of some hundred bytes.
void clearBytes(void* at, std::size_t size);

/// True when `count` items of `size` bytes fit into `room` bytes. Checked by division, so that no
/// count from a kernel reply can wrap around.
constexpr bool itemsFit(std::uint64_t count, std::uint64_t size, std::uint64_t room) {
  return size == 0 || count <= room / size;
}

/// Length of the text in a fixed field: up to its NUL, or the whole field when there is none.
constexpr std::size_t fieldLength(const char* field, std::size_t size) {
  std::size_t length = 0;
  while (length < size && field[length] != '\0') ++length;
  return length;
}

}  // namespace TarnFirewall
