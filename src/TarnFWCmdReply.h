#pragma once

/// A kernel's reply as a command's reading code sees it: a view that cannot be read past.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>

#include "TarnFWException.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

/// Logs that only `size` of the `count` records that a reply counts are read, if that is so.
void logCutRecords(std::uint32_t count, std::uint32_t size);

template <typename Record>
class CTarnFWReplyRecords;

/// Bytes of one reply. What lies after their end throws `CInsufficientMsgBufException`.
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

  std::uint8_t byte(std::size_t offset) const { return record<std::uint8_t>(offset); }
  std::uint32_t word(std::size_t offset) const { return record<host32>(offset); }
  std::uint64_t longWord(std::size_t offset) const { return record<host64>(offset); }

  /// Text of a fixed field, up to its NUL or its end.
  std::string text(std::size_t offset, std::size_t length) const {
    const auto* field = reinterpret_cast<const char*>(part(offset, length).data());
    return std::string(field, fieldLength(field, length));
  }

  /// The records that begin at `offset`. The kernel counted `count` of them; at most `asked` of
  /// them are read, and no more than are there.
  template <typename Record>
  CTarnFWReplyRecords<Record> records(std::size_t offset, std::uint32_t count,
                                      std::uint32_t asked) const;

 private:
  [[noreturn]] void refuse(std::size_t offset, std::size_t length) const;

  std::span<const std::byte> bytes_;
};

/// Records of one kind in a reply, one after the other. As short-lived as the reply.
template <typename Record>
class CTarnFWReplyRecords {
 public:
  /// `bytes` hold `size` records; the kernel counted `count`, `asked` were asked for.
  CTarnFWReplyRecords(std::span<const std::byte> bytes, std::uint32_t size, std::uint32_t count,
                      std::uint32_t asked)
      : bytes_(bytes), size_(size), count_(count), asked_(asked) {}

  /// How many may be read.
  std::uint32_t size() const { return size_; }

  /// `size()`, with a line in the log when the kernel counted more.
  std::uint32_t checkedSize() const {
    logCutRecords(count_, size_);
    return size_;
  }

  Record operator[](std::size_t index) const {
    return loadRecord<Record>(bytes_.subspan(sizeof(Record) * index, sizeof(Record)).data());
  }

  struct Iterator {
    const CTarnFWReplyRecords* records;
    std::size_t index;
    Record operator*() const { return (*records)[index]; }
    Iterator& operator++() {
      ++index;
      return *this;
    }
    bool operator==(const Iterator&) const = default;
  };
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, size_}; }

  /// Copies all to the caller's memory, which has room for as many as were asked for.
  void copyTo(Record* to) const {
    if (size_ != 0) std::memcpy(static_cast<void*>(to), bytes_.data(), sizeof(Record) * size_);
  }

  /// What a caller is given as the number of records: how many were copied, or what the kernel
  /// counted when that is more than was asked for. Who asks for one then sees that not one came.
  std::uint32_t reported() const { return size_ == asked_ ? count_ : size_; }

 private:
  std::span<const std::byte> bytes_;
  std::uint32_t size_;
  std::uint32_t count_;
  std::uint32_t asked_;
};

template <typename Record>
CTarnFWReplyRecords<Record> CTarnFWCmdReply::records(std::size_t offset, std::uint32_t count,
                                                     std::uint32_t asked) const {
  static_assert(std::is_trivially_copyable_v<Record> && alignof(Record) == 1);
  const std::size_t room = offset < bytes_.size() ? bytes_.size() - offset : 0;
  const std::size_t size = std::min<std::size_t>({count, asked, room / sizeof(Record)});
  return {size == 0 ? std::span<const std::byte>() : bytes_.subspan(offset, size * sizeof(Record)),
          static_cast<std::uint32_t>(size), count, asked};
}

}  // namespace TarnFirewall
