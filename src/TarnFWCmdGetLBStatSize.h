#pragma once

#include "TarnFWLoadBalancerRecords.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Asks how many virtual servers, pools and members have statistics. Prints nothing.
///
/// Command 89  request  +0  `FWLBStat_`                        reply  +0  the same
class CTarnFWCmdGetLBStatSize final : public CTarnFWRecordCmd<89, FWLBStat_> {
 public:
  CTarnFWCmdGetLBStatSize(const dvs_port_* port, const FWLBStat_& stat)
      : CTarnFWRecordCmd(port, stat) {}
  std::string toString() const override {
    return "describe stat size of lb" + dvsportToString("of");
  }
};

}  // namespace TarnFirewall
