#pragma once

/// What the commands that list address sets have in common.

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Body:  +0  low four bits  type, 0 for every kind
///        +4  u32            max
///        +8  u32            from
///       +12  u32            entries returned, reply
///       +16                 records of `Stride` bytes, reply
/// A size that needs more than 32 bits throws `CIntegerOverflowException`.
template <std::uint16_t Number, unsigned int Stride>
class CTarnFWAddrSetReadCmd : public CTarnFWSizedCmd<Number> {
 public:
  CTarnFWAddrSetReadCmd(const dvs_port_* port, FWAddrSetType_t type, std::uint32_t max,
                        std::uint32_t from)
      : CTarnFWSizedCmd<Number>(port, countedSize(kRecords, Stride, max,
                                                  "integer overflow for the number of addrsets")),
        type_(type),
        max_(max),
        from_(from) {}

  /// Entries in the reply, at most the ones that were asked for.
  std::uint32_t returned(const CTarnFWCmdReply& reply) const {
    return reply.fitting(reply.word(12), max_, kRecords, Stride);
  }

 protected:
  static std::size_t offsetOf(std::uint32_t index) {
    return kRecords + std::size_t{Stride} * index;
  }
  std::uint32_t from() const { return from_; }

 private:
  static constexpr unsigned int kRecords = 16;

  void fill(std::span<std::byte> body) const final {
    storeAt(body, 0, static_cast<std::uint8_t>(type_ & 0x0f));
    storeAt(body, 4, host32(max_));
    storeAt(body, 8, host32(from_));
  }

  FWAddrSetType_t type_;
  std::uint32_t max_;
  std::uint32_t from_;
};

}  // namespace TarnFirewall
