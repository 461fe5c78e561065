#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWLoadBalancerRecords.h"

namespace TarnFirewall {

/// Asks for the statistics of the load balancer's virtual servers or pools, and prints them as one
/// JSON object, with the bytes of each block where more detail was asked for.
///
/// Command 88  request  +0  `FWLBStat_`        reply  +0  `FWLBStat_`, then what it counts
class CTarnFWCmdGetLBStat final : public CTarnFWPrinted<CTarnFWSizedCmd<88>> {
 public:
  /// `stat` is what command 89 answered; null asks without any. Throws `CIntegerOverflowException`
  /// for more pools than it has room for, and for a size that needs more than 32 bits.
  explicit CTarnFWCmdGetLBStat(const dvs_port_* port, const FWLBStat_* stat = nullptr);
  std::string toString() const override { return "describe stat of lb" + dvsportToString("of"); }

  static FWLBStat_ answer(const CTarnFWCmdReply& reply) { return reply.record<FWLBStat_>(0); }

 private:
  void fill(std::span<std::byte> body) const override { storeAt(body, 0, stat_); }
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  FWLBStat_ stat_;
};

}  // namespace TarnFirewall
