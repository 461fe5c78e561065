#pragma once

#include <memory>

#include "TarnFWAddressEther.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Binds a MAC address to the IP addresses that a filter lets it use.
///
/// Command 25  request   +0  6 bytes    MAC address             reply  none
///                       +8  u32        addresses
///                      +12  144 bytes  each address; the room of one is sent when there is none
class CTarnFWCmdCreateSpoofGuard final : public CTarnFWSizedCmd<25> {
 public:
  /// Throws `CUnsupportedException` unless the addresses are a list or the reference to a set.
  CTarnFWCmdCreateSpoofGuard(const dvs_port_* port, std::unique_ptr<CTarnFWAddress> addresses,
                             const CTarnFWAddressEther& mac);
  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;

  std::unique_ptr<CTarnFWAddress> addresses_;
  CTarnFWAddressEther mac_;
};

}  // namespace TarnFirewall
