#pragma once

/// A kernel's reply as a command's reading code sees it: a view that cannot be read past.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "TarnFWException.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

/// Bytes of one reply. What lies behind the end throws `CInsufficientMsgBufException`; a count that
/// the kernel gives is cut to what the reply can hold, with a line in the log.
class CTarnFWCmdReply {
 public:
  CTarnFWCmdReply(const void* data, std::size_t size)
      : bytes_(static_cast<const std::byte*>(data), data == nullptr ? 0 : size) {}

  std::size_t size() const { return bytes_.size(); }

  /// `length` bytes from `offset`.
  std::span<const std::byte> part(std::size_t offset, std::size_t length) const {
    if (offset > bytes_.size() || length > bytes_.size() - offset) refuse(offset, length);
    return bytes_.subspan(offset, length);
  }

  /// Everything from `offset` on.
  std::span<const std::byte> rest(std::size_t offset) const {
    if (offset > bytes_.size()) refuse(offset, 0);
    return bytes_.subspan(offset);
  }

  /// A copy of the record at `offset`.
  template <typename Record>
  Record record(std::size_t offset) const {
    return loadRecord<Record>(part(offset, sizeof(Record)).data());
  }

  /// Copies `count` records from `offset` on. The caller's memory has room for them.
  template <typename Record>
  void copyRecords(std::size_t offset, std::size_t count, Record* to) const {
    static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
    if (count == 0) return;
    const std::span<const std::byte> records = part(offset, sizeof(Record) * count);
    std::memcpy(static_cast<void*>(to), records.data(), records.size());
  }

  std::uint8_t byte(std::size_t offset) const { return record<std::uint8_t>(offset); }
  std::uint32_t word(std::size_t offset) const { return record<host32>(offset); }
  std::uint64_t longWord(std::size_t offset) const { return record<host64>(offset); }

  /// Text of a fixed field, up to its NUL or its end.
  std::string text(std::size_t offset, std::size_t length) const {
    const auto* field = reinterpret_cast<const char*>(part(offset, length).data());
    return std::string(field, fieldLength(field, length));
  }

  /// How many of `count` items of `stride` bytes from `offset` may be read: at most `asked`, and at
  /// most what is there.
  std::uint32_t fitting(std::uint32_t count, std::uint32_t asked, std::size_t offset,
                        std::size_t stride) const;

 private:
  [[noreturn]] void refuse(std::size_t offset, std::size_t length) const;

  std::span<const std::byte> bytes_;
};

}  // namespace TarnFirewall
