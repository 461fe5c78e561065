#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks what a filter does with traffic while it cannot enforce rules, and prints it.
///
/// Command 35  request  +0  1 byte  zero        reply  +0  1 byte  policy: 0 fail open, 1 fail
/// close
class CTarnFWCmdGetFailPolicy final : public CTarnFWPrinted<CTarnFWFixedCmd<35, 1>> {
 public:
  explicit CTarnFWCmdGetFailPolicy(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override;

  /// A kernel may answer with a policy that has no name.
  static FWFailPolicy_t policy(const CTarnFWCmdReply& reply) {
    return static_cast<FWFailPolicy_t>(reply.byte(0));
  }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
