#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// "fail open", "fail close", or "undefined" for any other.
const char* failPolicyName(FWFailPolicy_t policy);

/// Sets what a filter does with traffic while it cannot enforce rules.
///
/// Command 31  request  +0  1 byte  policy: 0 fail open, 1 fail close    reply  none
class CTarnFWCmdSetFailPolicy final : public CTarnFWFixedCmd<31, 1> {
 public:
  /// Throws `CUnsupportedException` for a policy above 1.
  CTarnFWCmdSetFailPolicy(const dvs_port_* port, FWFailPolicy_t policy);
  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;

  FWFailPolicy_t policy_;
};

}  // namespace TarnFirewall
