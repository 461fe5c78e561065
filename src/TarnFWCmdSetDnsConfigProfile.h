#pragma once

#include <vector>

#include "TarnFWFixedCmd.h"
#include "TarnFWRecords.h"
#include "TarnFWSettingsRecords.h"

namespace TarnFirewall {

/// Sets how long a filter keeps what it has learned from answers of name servers, and which servers
/// it believes.
///
/// Command 83  request   +4  1 byte     kind: 1 for ever, 2 automatic, else seconds    reply  none
///                       +5  u32        seconds
///                       +9  u32        addresses
///                      +13  144 bytes  each address
class CTarnFWCmdSetDnsConfigProfile final : public CTarnFWSizedCmd<83> {
 public:
  /// The automatic time to live.
  explicit CTarnFWCmdSetDnsConfigProfile(const dvs_port_* port)
      : CTarnFWCmdSetDnsConfigProfile(port, FW_DNS_TTL_AUTOMATIC, 0) {}

  /// Throws `CUnsupportedException` for a kind of more than a byte, and
  /// `CIntegerOverflowException` for more addresses than a message has room for.
  CTarnFWCmdSetDnsConfigProfile(const dvs_port_* port, unsigned int kind, unsigned int seconds,
                                std::vector<FWAddress_> addresses = {});
  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;

  std::vector<FWAddress_> addresses_;
  FWDnsConfigProfile_ profile_{};
};

}  // namespace TarnFirewall
