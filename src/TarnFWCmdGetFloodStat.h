#pragma once

#include "TarnFWRecordCmd.h"
#include "TarnFWSettingsRecords.h"

namespace TarnFirewall {

/// Asks for the state of the protection against floods, and zeroes its counters where the record
/// asks for it. Prints nothing.
///
/// Command 79  request  +0  `FWFloodStat_`                     reply  +0  the same
class CTarnFWCmdGetFloodStat final : public CTarnFWRecordCmd<79, FWFloodStat_> {
 public:
  CTarnFWCmdGetFloodStat(const dvs_port_* port, const FWFloodStat_& stat)
      : CTarnFWRecordCmd(port, stat) {}
  std::string toString() const override { return "describe stat of flood" + dvsportToString("of"); }

  /// The kernel's answer. Counts no more rows than it has room for; logs when the kernel did.
  static FWFloodStat_ stat(const CTarnFWCmdReply& reply);
};

}  // namespace TarnFirewall
