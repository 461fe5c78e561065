#pragma once

#include "TarnFWRecordCmd.h"
#include "TarnFWText.h"

namespace TarnFirewall {

/// Sets the version in which a filter's state is exported.
///
/// Command 54  request  +0  u32  export version                reply  none
class CTarnFWCmdSetSkifferExportver final : public CTarnFWWordCmd<54> {
 public:
  CTarnFWCmdSetSkifferExportver(const dvs_port_* port, unsigned int version)
      : CTarnFWRecordCmd(port, version) {}

  // Two blanks: logs are searched for this text.
  std::string toString() const override { return formatText("set exportver  %u", record() + 0u); }
};

}  // namespace TarnFirewall
