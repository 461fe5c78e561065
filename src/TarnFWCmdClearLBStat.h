#pragma once

#include "TarnFWLoadBalancerRecords.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Zeroes the statistics of the load balancer's virtual servers or pools, and prints that it did.
///
/// Command 90  request  +0  `FWLBStat_`                        reply  +0  the same
class CTarnFWCmdClearLBStat final : public CTarnFWPrinted<CTarnFWRecordCmd<90, FWLBStat_>> {
 public:
  CTarnFWCmdClearLBStat(const dvs_port_* port, const FWLBStat_& stat)
      : CTarnFWPrinted(port, stat) {}
  std::string toString() const override { return "clear stat of lb" + dvsportToString("of"); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
