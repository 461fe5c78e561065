#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// What a spoof guard has seen.
struct FWSpoofGuardStat_ {
  host64 l3Drop;      //  +0
  host64 l2Drop;      //  +8
  host64 invalidArp;  // +16
  host64 unknownArp;  // +24
  host64 badMacArp;   // +32
  host64 badIpArp;    // +40
  host64 goodArp;     // +48
};
static_assert(sizeof(FWSpoofGuardStat_) == 56 && alignof(FWSpoofGuardStat_) == 1);
static_assert(offsetof(FWSpoofGuardStat_, l3Drop) == 0 &&
              offsetof(FWSpoofGuardStat_, l2Drop) == 8 &&
              offsetof(FWSpoofGuardStat_, invalidArp) == 16 &&
              offsetof(FWSpoofGuardStat_, unknownArp) == 24 &&
              offsetof(FWSpoofGuardStat_, badMacArp) == 32 &&
              offsetof(FWSpoofGuardStat_, badIpArp) == 40 &&
              offsetof(FWSpoofGuardStat_, goodArp) == 48);

/// Asks what the spoof guard of a filter has seen, and prints it.
///
/// Command 28  request  +0  56 bytes  zero                     reply  +0  `FWSpoofGuardStat_`
class CTarnFWCmdGetSpoofGuardStat final : public CTarnFWPrinted<CTarnFWFixedCmd<28, 56>> {
 public:
  explicit CTarnFWCmdGetSpoofGuardStat(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe stat of spoofguard"; }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
