#pragma once

#include "TarnFWLoadBalancerRecords.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Asks which services the load balancer has and how much they hold. Prints nothing.
///
/// Command 87  request  +0  `FWLBConfigSize_`                  reply  +0  the same
class CTarnFWCmdGetLBConfigSize final : public CTarnFWRecordCmd<87, FWLBConfigSize_> {
 public:
  CTarnFWCmdGetLBConfigSize(const dvs_port_* port, const FWLBConfigSize_& sizes)
      : CTarnFWRecordCmd(port, sizes) {}
  std::string toString() const override {
    return "describe config size of lb" + dvsportToString("of");
  }
};

}  // namespace TarnFirewall
