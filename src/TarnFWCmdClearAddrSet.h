#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Removes the members of an address set and keeps the set.
///
/// Command 64  request  +0  38 bytes  name of the set           reply  none
///                      +38  8 bytes  zero
class CTarnFWCmdClearAddrSet final : public CTarnFWAddrSetNameCmd<64, 46> {
 public:
  CTarnFWCmdClearAddrSet(const dvs_port_* port, const FWAddrSetID_t& id) : CTarnFWNamed(port, id) {}
  std::string toString() const override { return statement("delete all from addrset"); }
};

}  // namespace TarnFirewall
