#pragma once

#include "TarnFWCmdDebugLevel.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets how much a half of the kernel's firewall logs.
///
/// Command 32  request  +0  3 bytes  component: 1 dp, 2 cp     reply  none
///                      +3  level in the low four bits
class CTarnFWCmdEnableVerbose final : public CTarnFWRecordCmd<32, FWDebugLevel> {
 public:
  /// Throws `CUnsupportedException` for another component, and for a level above 15.
  CTarnFWCmdEnableVerbose(const dvs_port_* port, unsigned int component, unsigned int level)
      : CTarnFWRecordCmd(port, debugLevel(component, level, component == 1 || component == 2)) {}

  std::string toString() const override {
    static constexpr const char* kNames[] = {"unknown", "dp", "cp"};
    return debugStatement(kNames[debugComponent(record())], record());
  }
};

}  // namespace TarnFirewall
