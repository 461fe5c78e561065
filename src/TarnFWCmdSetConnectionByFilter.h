#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWFlowRecords.h"

namespace TarnFirewall {

/// Sets the connections that a block chooses; how is the kernel's matter. Prints nothing.
///
/// Command 66  request  +0  `FWConnFilter_`, as it is     reply  +80  u32  connections that were
/// set
class CTarnFWCmdSetConnectionByFilter final : public CTarnFWFixedCmd<66, 84> {
 public:
  /// Zeros are sent without a block.
  CTarnFWCmdSetConnectionByFilter(const dvs_port_* port, const FWConnFilter_* filter)
      : CTarnFWFixedCmd(port), filter_(filter != nullptr ? *filter : FWConnFilter_{}) {}
  std::string toString() const override { return "set connection" + dvsportToString("of"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(80); }

 private:
  void fill(std::span<std::byte> body) const override { storeAt(body, 0, filter_); }

  FWConnFilter_ filter_;
};

}  // namespace TarnFirewall
