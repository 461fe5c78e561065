#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Destroys an address set or a container.
///
/// Command 14  request  +0  38 bytes  name of the set           reply  none
///                      +38  4 bytes  zero
class CTarnFWCmdDestroyAddrSet final : public CTarnFWAddrSetNameCmd<14, 42> {
 public:
  CTarnFWCmdDestroyAddrSet(const dvs_port_* port, const FWAddrSetID_t& id)
      : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("destroy addrset"); }
};

}  // namespace TarnFirewall
