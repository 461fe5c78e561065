#pragma once

/// What the commands that read the members of an address set have in common.

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

inline constexpr const char* kTooManyAddresses = "integer overflow for the number of addresses";

/// Body:  +0  38 bytes  name of the set
///       +38  u32       `Form`
///       +42  u32       max
///       +46  u32       from
/// The reply has its count at `Count` and its records from `Head` on. A size that needs more than
/// 32 bits throws `CIntegerOverflowException`.
template <std::uint16_t Number, unsigned int Form, unsigned int Count, unsigned int Head,
          typename Record>
class CTarnFWAddressReadCmd : public CTarnFWNamed<CTarnFWSizedCmd<Number>, FWAddrSetID_t> {
  using Named = CTarnFWNamed<CTarnFWSizedCmd<Number>, FWAddrSetID_t>;

 public:
  CTarnFWAddressReadCmd(const dvs_port_* port, const FWAddrSetID_t& id, std::uint32_t max,
                        std::uint32_t from)
      : Named(port, id, countedSize(Head, sizeof(Record), max, kTooManyAddresses)),
        max_(max),
        from_(from) {}

  CTarnFWReplyRecords<Record> records(const CTarnFWCmdReply& reply) const {
    return reply.records<Record>(Head, reply.word(Count), max_);
  }

 protected:
  std::uint32_t from() const { return from_; }

  void fill(std::span<std::byte> body) const override {
    Named::fill(body);
    storeAt(body, 38, host32(Form));
    storeAt(body, 42, host32(max_));
    storeAt(body, 46, host32(from_));
  }

 private:
  std::uint32_t max_;
  std::uint32_t from_;
};

}  // namespace TarnFirewall
