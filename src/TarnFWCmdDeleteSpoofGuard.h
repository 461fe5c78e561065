#pragma once

#include <array>

#include "TarnFWAddressEther.h"
#include "TarnFWRecordCmd.h"

namespace TarnFirewall {

/// Body of command 26: a MAC address and two zeros.
using FWSpoofGuardMac = std::array<std::uint8_t, 8>;

/// Ends the binding of a MAC address, or that of the filter.
///
/// Command 26  request  +0  6 bytes  MAC address, zero when none is given     reply  none
class CTarnFWCmdDeleteSpoofGuard final : public CTarnFWRecordCmd<26, FWSpoofGuardMac> {
 public:
  /// The address may be null.
  CTarnFWCmdDeleteSpoofGuard(const dvs_port_* port, const CTarnFWAddressEther* mac);
  std::string toString() const override { return "delete spoofguard"; }
};

}  // namespace TarnFirewall
