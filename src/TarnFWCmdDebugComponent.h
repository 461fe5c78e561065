#pragma once

#include "TarnFWCmdDebugLevel.h"
#include "TarnFWLog.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets how much a component of the kernel's firewall logs, or all of them.
///
/// Command 33  request  +0  3 bytes  component: 0 to 20, or 255     reply  none
///                      +3  level in the low four bits
class CTarnFWCmdDebugComponent final : public CTarnFWRecordCmd<33, FWDebugLevel> {
 public:
  /// Throws `CUnsupportedException` for another component, and for a level above 15.
  CTarnFWCmdDebugComponent(const dvs_port_* port, unsigned int component, unsigned int level)
      : CTarnFWRecordCmd(
            port, debugLevel(component, level,
                             component < kTarnComponents || component == FW_COMPONENT_ALL)) {}

  /// All components together have no name: logs are searched for "invalid component".
  std::string toString() const override {
    const unsigned int component = debugComponent(record());
    return debugStatement(
        component < kTarnComponents ? tarn_comp_name[component] : "invalid component", record());
  }
};

}  // namespace TarnFirewall
