#pragma once

/// What the commands that list address sets have in common.

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Body:  +0  low four bits  type, 0 for every kind
///        +4  u32            max
///        +8  u32            from
///       +12  u32            entries returned, reply
///       +16                 records, reply
/// A size that needs more than 32 bits throws `CIntegerOverflowException`.
template <std::uint16_t Number, typename Record>
class CTarnFWAddrSetReadCmd : public CTarnFWPrinted<CTarnFWSizedCmd<Number>> {
 public:
  CTarnFWAddrSetReadCmd(const dvs_port_* port, FWAddrSetType_t type, std::uint32_t max,
                        std::uint32_t from)
      : CTarnFWAddrSetReadCmd::CTarnFWPrinted(
            port, countedSize(kRecords, sizeof(Record), max,
                              "integer overflow for the number of addrsets")),
        type_(type),
        max_(max),
        from_(from) {}

  CTarnFWReplyRecords<Record> records(const CTarnFWCmdReply& reply) const {
    return reply.records<Record>(kRecords, reply.word(12), max_);
  }

 protected:
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
