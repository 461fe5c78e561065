#pragma once

#include "TarnFWCmdKifFlags.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks for the flags of a filter's interface, and prints them.
///
/// Command 39  request  +0  1316 bytes  zero                  reply  +0  `FWKifFlags_`
class CTarnFWCmdGetKifFlags final : public CTarnFWPrinted<CTarnFWFixedCmd<39, 1316>> {
 public:
  explicit CTarnFWCmdGetKifFlags(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe kif flags"; }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
