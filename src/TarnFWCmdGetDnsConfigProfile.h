#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWSettingsRecords.h"

namespace TarnFirewall {

/// Asks how long a filter keeps what it has learned from answers of name servers, and prints it.
///
/// Command 84  request  zero    reply  +4  1 byte  kind: 1 for ever, 2 automatic, else seconds
///                                     +5  u32     seconds
///                                     +9  u32     addresses, which do not follow
class CTarnFWCmdGetDnsConfigProfile final : public CTarnFWPrinted<CTarnFWFixedCmd<84, 13>> {
 public:
  explicit CTarnFWCmdGetDnsConfigProfile(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override;

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
