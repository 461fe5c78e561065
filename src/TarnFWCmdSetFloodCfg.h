#pragma once

#include "TarnFWRecordCmd.h"
#include "TarnFWSettingsRecords.h"

namespace TarnFirewall {

/// Sets the protection against floods.
///
/// Command 78  request  +0  `FWFloodCfg_`                      reply  none
class CTarnFWCmdSetFloodCfg final : public CTarnFWRecordCmd<78, FWFloodCfg_> {
 public:
  CTarnFWCmdSetFloodCfg(const dvs_port_* port, const FWFloodCfg_& configuration)
      : CTarnFWRecordCmd(port, configuration) {}
  std::string toString() const override { return "set flood config" + dvsportToString("of"); }
};

}  // namespace TarnFirewall
