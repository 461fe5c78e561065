#pragma once

#include "TarnFWAddrSetReadCmd.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// Asks for the statistics of address sets, and prints them.
///
/// Command 22  request  as `CTarnFWAddrSetReadCmd`              reply  +16  130 bytes each
class CTarnFWCmdGetAddrSetStatList final
    : public CTarnFWAddrSetReadCmd<22, sizeof(FWAddrSetStat_)> {
 public:
  using CTarnFWAddrSetReadCmd::CTarnFWAddrSetReadCmd;
  std::string toString() const override;

  static FWAddrSetStat_ statAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
    return reply.record<FWAddrSetStat_>(offsetOf(index));
  }

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
