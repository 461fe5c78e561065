#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks for the names of up to `max` rule sets from an index on, and prints them.
///
/// Command 2   request  +0  u32  max                            reply   +8  u32  names returned
///                      +4  u32  from                                  +12  64 bytes each
class CTarnFWCmdGetRuleSetList final : public CTarnFWPrinted<CTarnFWSizedCmd<2>> {
 public:
  /// Throws `CIntegerOverflowException` for more names than a message holds.
  CTarnFWCmdGetRuleSetList(const dvs_port_* port, std::uint32_t max, std::uint32_t from);
  std::string toString() const override;

  CTarnFWReplyRecords<FWRuleSetID_t> records(const CTarnFWCmdReply& reply) const {
    return reply.records<FWRuleSetID_t>(12, reply.word(8), max_);
  }

 private:
  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  std::uint32_t max_;
  std::uint32_t from_;
};

}  // namespace TarnFirewall
