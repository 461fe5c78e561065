#include "TarnFWCmdSetFailPolicy.h"

namespace TarnFirewall {

const char* failPolicyName(FWFailPolicy_t policy) {
  switch (policy) {
    case FW_FAIL_OPEN:
      return "fail open";
    case FW_FAIL_CLOSE:
      return "fail close";
    default:
      return "undefined";
  }
}

CTarnFWCmdSetFailPolicy::CTarnFWCmdSetFailPolicy(const dvs_port_* port, FWFailPolicy_t policy)
    : CTarnFWFixedCmd(port), policy_(policy) {
  if (policy > FW_FAIL_CLOSE) throw CUnsupportedException("invalid fail policy");
}

// Begins with a blank: logs are searched for this text.
std::string CTarnFWCmdSetFailPolicy::toString() const {
  return std::string(" failure policy: ") + failPolicyName(policy_);
}

void CTarnFWCmdSetFailPolicy::fill(std::span<std::byte> body) const {
  storeAt(body, 0, static_cast<std::uint8_t>(policy_));
}

}  // namespace TarnFirewall
