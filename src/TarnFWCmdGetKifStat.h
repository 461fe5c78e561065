#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// One counter of an interface.
struct FWKifStatRow_ {
  char name[25];  //  +0  text
  host64 in;      // +25  packets
  host64 out;     // +33  packets
};
static_assert(sizeof(FWKifStatRow_) == 41 && alignof(FWKifStatRow_) == 1);
static_assert(offsetof(FWKifStatRow_, name) == 0 && offsetof(FWKifStatRow_, in) == 25 &&
              offsetof(FWKifStatRow_, out) == 33);

/// Asks for the counters of a filter's interface, and prints those that counted something.
///
/// Command 29  request  +0  1642 bytes  zero           reply  +2  40 of `FWKifStatRow_`: 20 of the
///                                                                first table, then 20 of the
///                                                                second
class CTarnFWCmdGetKifStat final : public CTarnFWPrinted<CTarnFWFixedCmd<29, 1642>> {
 public:
  explicit CTarnFWCmdGetKifStat(const dvs_port_* port) : CTarnFWPrinted(port) {}
  std::string toString() const override { return "describe stat of kif"; }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
