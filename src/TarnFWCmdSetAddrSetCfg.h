#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Turns the statistics of a filter or of one address set on or off, shows their state, or changes
/// the validity of one address; prints what came of it.
///
/// Command 46  request   +0  u32        operation               reply    +0  u32  operation
///                       +4  38 bytes   name of the set                +186  u32  old value
///                      +42  u32        component                      +190  u32  new value
///                      +46  140 bytes  address in the first 16, zero
///                     +186  u32        first value
///                     +190  u32        second value
class CTarnFWCmdSetAddrSetCfg final : public CTarnFWPrinted<CTarnFWFixedCmd<46, 194>> {
 public:
  CTarnFWCmdSetAddrSetCfg(const dvs_port_* port, const FWAddrSetCfg_& configuration)
      : CTarnFWPrinted(port), configuration_(configuration) {}
  std::string toString() const override;

  static std::uint32_t first(const CTarnFWCmdReply& reply) { return reply.word(186); }
  static std::uint32_t second(const CTarnFWCmdReply& reply) { return reply.word(190); }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWAddrSetCfg_ configuration_;
};

}  // namespace TarnFirewall
