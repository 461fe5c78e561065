#pragma once

#include "TarnFWAddrSetReadCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Asks for the statistics of address sets, and prints them.
///
/// Command 22  request  as `CTarnFWAddrSetReadCmd`              reply  +16  130 bytes each
class CTarnFWCmdGetAddrSetStatList final : public CTarnFWAddrSetReadCmd<22, FWAddrSetStat_> {
 public:
  using CTarnFWAddrSetReadCmd::CTarnFWAddrSetReadCmd;
  std::string toString() const override;

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
