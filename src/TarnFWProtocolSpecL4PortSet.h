#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// A set of TCP or UDP ports and port ranges: at most 15 entries, a range counting 2. Ports are
/// held in order, ranges in the order of their high port, then their low port.
class CTarnFWProtocolSpecL4PortSet final : public CTarnFWProtocolSpec {
 public:
  static constexpr unsigned int kMaxEntries = 15;
  static constexpr unsigned int kMaxRanges = kMaxEntries / 2;

  struct Body {
    std::uint8_t count;       //  +0  low 4 bits: entries in use
    std::uint8_t reserved;    //  +1  zero
    net16 entries[15];        //  +2  ranges, two entries each, then single ports
    host16 ranges;            // +32  bit i: entry i is the low end of a range, entry i + 1 the high
    std::uint8_t padding[2];  // +34  zero
  };
  static_assert(sizeof(Body) == 36 && alignof(Body) == 1);
  static_assert(offsetof(Body, reserved) == 1 && offsetof(Body, entries) == 2 &&
                offsetof(Body, ranges) == 32 && offsetof(Body, padding) == 34);

  /// An empty set.
  CTarnFWProtocolSpecL4PortSet(unsigned char dir, bool negated)
      : CTarnFWProtocolSpec(dir, negated) {}
  /// Ports and ranges ("80-90") with commas, blanks or tabs between them. A member that is none
  /// throws CInvalidL4PortException with the whole text; a sixteenth entry
  /// CTooManyL4PortException.
  CTarnFWProtocolSpecL4PortSet(unsigned char dir, const char* text);
  /// Range keys, at most 7; more throw CTooManyL4PortException.
  CTarnFWProtocolSpecL4PortSet(unsigned char dir, std::span<const unsigned int> keys, bool negated);
  /// Entries as the wire has them, at most 15, with their range bitmap.
  CTarnFWProtocolSpecL4PortSet(unsigned char dir, std::span<const net16> entries,
                               unsigned short ranges, bool negated);
  CTarnFWProtocolSpecL4PortSet(unsigned char dir, const Body& body, bool negated);

  FWProtocolSpecType_t getSpecType() const override { return FW_SPEC_L4_PORT_SET; }
  unsigned int getMsgSize() const override { return sizeof(Body); }
  /// Empty, even when negated, for a set without members.
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  /// A value that would be the sixteenth entry throws CTooManyL4PortException, even when it is in
  /// the set already; one that is in the set already changes nothing.
  void addPort(unsigned short port);
  /// `key` has the high port in its top half and the low port in its bottom half. The order of the
  /// two is the caller's to check.
  void addPortRange(unsigned int key);
  void addPortRange(unsigned short low, unsigned short high);

 private:
  /// A sorted array without repetitions; the caller keeps the number of members within `N`.
  template <typename T, std::size_t N>
  class Sorted {
   public:
    const T* begin() const { return values_.data(); }
    const T* end() const { return values_.data() + size_; }
    unsigned int size() const { return size_; }
    void insert(T value) {
      T* const last = values_.data() + size_;
      T* const place = std::lower_bound(values_.data(), last, value);
      if (place != last && *place == value) return;
      std::copy_backward(place, last, last + 1);
      *place = value;
      ++size_;
    }

   private:
    std::array<T, N> values_{};
    std::uint8_t size_ = 0;
  };

  void requireRoom(unsigned int entries) const;

  Sorted<std::uint32_t, kMaxRanges> ranges_;
  Sorted<std::uint16_t, kMaxEntries> ports_;
};

}  // namespace TarnFirewall
