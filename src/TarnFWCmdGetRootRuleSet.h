#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks for the root rule sets of a filter, and prints them.
///
/// Command 4   request  +0  132 bytes  zero                     reply   +0  64 bytes  layer-3 root
///                                                                    +64  64 bytes  layer-2 root
class CTarnFWCmdGetRootRuleSet final : public CTarnFWPrinted<CTarnFWFixedCmd<4, 132>> {
 public:
  explicit CTarnFWCmdGetRootRuleSet(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override;

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
