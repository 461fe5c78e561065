#pragma once

#include "TarnFWAddrSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the names of address sets, and prints them.
///
/// Command 21  request  as `CTarnFWAddrSetReadCmd`              reply  +16  38 bytes each
class CTarnFWCmdGetAddrSetList final : public CTarnFWAddrSetReadCmd<21, sizeof(FWAddrSetID_t)> {
 public:
  using CTarnFWAddrSetReadCmd::CTarnFWAddrSetReadCmd;
  std::string toString() const override;

  static FWAddrSetID_t nameAt(const CTarnFWCmdReply& reply, std::uint32_t index) {
    return reply.record<FWAddrSetID_t>(offsetOf(index));
  }

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
