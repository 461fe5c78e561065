#pragma once

#include "TarnFWCmdTimeouts.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Asks for timeouts of a filter, and prints those that the kernel marked in its answer.
///
/// Command 42  request  +0  `FWInstTimeout_`: the marked values are wanted   reply  +0  the same
class CTarnFWCmdGetTimeout final : public CTarnFWPrinted<CTarnFWRecordCmd<42, FWInstTimeout_>> {
 public:
  /// Asks for none; one by number; one by name; those that are marked. Throws
  /// `CInvalidTimeoutException` for an unknown name, and for a number of 22 or above.
  explicit CTarnFWCmdGetTimeout(const dvs_port_* port) : CTarnFWPrinted(port, FWInstTimeout_{}) {}
  CTarnFWCmdGetTimeout(const dvs_port_* port, unsigned int id)
      : CTarnFWPrinted(port, oneTimeout(id, 0)) {}
  CTarnFWCmdGetTimeout(const dvs_port_* port, const char* name)
      : CTarnFWPrinted(port, oneTimeout(name, 0)) {}
  CTarnFWCmdGetTimeout(const dvs_port_* port, const FWInstTimeout_& timeouts)
      : CTarnFWPrinted(port, timeouts) {}

  std::string toString() const override { return "describe timeout"; }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
