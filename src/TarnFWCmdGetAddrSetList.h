#pragma once

#include "TarnFWAddrSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the names of address sets, and prints them.
///
/// Command 21  request  as `CTarnFWAddrSetReadCmd`              reply  +16  38 bytes each
class CTarnFWCmdGetAddrSetList final : public CTarnFWAddrSetReadCmd<21, FWAddrSetID_t> {
 public:
  using CTarnFWAddrSetReadCmd::CTarnFWAddrSetReadCmd;
  std::string toString() const override;

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
