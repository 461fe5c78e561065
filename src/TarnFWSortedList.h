#pragma once

/// What lists of small records that go to the kernel in ascending order have in common.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <set>

#include "TarnFWException.h"
#include "TarnFWObject.h"

namespace TarnFirewall {

/// `count` entries of `each` bytes as a message size; more than 32 bits throw
/// `CIntegerOverflowException`. The text speaks of connections whatever the entries are: scripts
/// match it as it is.
inline unsigned int sortedListSize(std::uint64_t count, std::uint64_t each) {
  if (count > UINT32_MAX / each) {
    throw CIntegerOverflowException("connection count overflows", static_cast<int>(count));
  }
  return static_cast<unsigned int>(count * each);
}

/// Entries in the order of `Less`, without duplicates. Its text is "{", the entries joined by ",",
/// and "}".
template <typename Entry, typename Less, int Type>
class CTarnFWSortedList : public ITarnFWObject {
 public:
  std::size_t size() const { return entries_.size(); }
  const std::set<Entry, Less>& entries() const { return entries_; }

  /// Throws `CIntegerOverflowException` when it needs more than 32 bits.
  unsigned int getMsgSize() const final { return sizeOf(entries_.size()); }
  int getType() const final { return Type; }

  std::string toString() const final {
    CTarnFWText text;
    text += '{';
    for (const Entry& entry : entries_) {
      if (text.size() > 1) text += ',';
      appendEntry(text, entry);
    }
    text += '}';
    return text.str();
  }

  /// The entries as they are, one after the other.
  bool toMessage(void* buffer, unsigned int room, unsigned int* written) final {
    const unsigned int size = getMsgSize();
    if (size > room) return false;
    auto* to = static_cast<std::byte*>(buffer);
    for (const Entry& entry : entries_) {
      std::memcpy(to, &entry, sizeof entry);
      to += sizeof entry;
    }
    *written = size;
    return true;
  }

  /// Message size of a list of `count` entries, with the exception of `getMsgSize`.
  static unsigned int sizeOf(std::uint64_t count) { return sortedListSize(count, sizeof(Entry)); }

  /// By message size. Lists of one size have no order: throws `CUnsupportedException`, whose text
  /// speaks of connections, too.
  friend bool operator<(const CTarnFWSortedList& left, const CTarnFWSortedList& right) {
    const unsigned int leftSize = left.getMsgSize();
    const unsigned int rightSize = right.getMsgSize();
    if (leftSize == rightSize) throw CUnsupportedException("compare two connection list");
    return leftSize < rightSize;
  }

 protected:
  CTarnFWSortedList() = default;

  /// One that is there already changes nothing. Entries come in ascending order as a rule, so that
  /// the place is the end.
  void add(const Entry& entry) { entries_.insert(entries_.end(), entry); }

 private:
  virtual void appendEntry(CTarnFWText& text, const Entry& entry) const = 0;

  std::set<Entry, Less> entries_;
};

}  // namespace TarnFirewall
