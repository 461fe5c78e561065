#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Sets whether a filter shares its address sets with others.
///
/// Command 44  request  +0  bit 0  enable                       reply  none
class CTarnFWCmdConfigSharedAddrSet final : public CTarnFWFixedCmd<44, 4> {
 public:
  CTarnFWCmdConfigSharedAddrSet(const dvs_port_* port, bool enable)
      : CTarnFWFixedCmd(port), enable_(enable) {}
  std::string toString() const override {
    return (enable_ ? "enable shared addrset" : "disable shared addrset") + dvsportToString("of");
  }

 private:
  void fill(std::span<std::byte> body) const override {
    storeAt(body, 0, static_cast<std::uint8_t>(enable_ ? 1 : 0));
  }

  bool enable_;
};

}  // namespace TarnFirewall
