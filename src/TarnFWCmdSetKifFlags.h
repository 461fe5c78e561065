#pragma once

#include "TarnFWCmdKifFlags.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Sets one flag of a filter's interface.
///
/// Command 40  request  +0  `FWKifFlags_`: name and value of the flag in its first entry, all else
///                          zero
///             reply    none
class CTarnFWCmdSetKifFlags final : public CTarnFWRecordCmd<40, FWKifFlags_> {
 public:
  /// Of the name 39 characters are sent, of the value the low eight bits.
  CTarnFWCmdSetKifFlags(const dvs_port_* port, const char* name, unsigned int value);
  std::string toString() const override { return "set kif flags"; }
};

}  // namespace TarnFirewall
