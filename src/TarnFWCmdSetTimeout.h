#pragma once

#include "TarnFWCmdTimeouts.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets timeouts of a filter.
///
/// Command 41  request  +0  `FWInstTimeout_`: the marked values are set      reply  none
class CTarnFWCmdSetTimeout final : public CTarnFWRecordCmd<41, FWInstTimeout_> {
 public:
  CTarnFWCmdSetTimeout(const dvs_port_* port, const FWInstTimeout_& timeouts)
      : CTarnFWRecordCmd(port, timeouts) {}

  /// Throws `CInvalidTimeoutException` for an unknown name.
  CTarnFWCmdSetTimeout(const dvs_port_* port, const char* name, unsigned int value)
      : CTarnFWRecordCmd(port, oneTimeout(name, value)) {}

  // The word does not speak of what is built: logs have always had it here.
  std::string toString() const override { return "unimplemented"; }
};

}  // namespace TarnFirewall
