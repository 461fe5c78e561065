#pragma once

#include "TarnFWRuleRecord.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for rules, and prints them.
///
/// Command 10  request  as `CTarnFWRuleSetReadCmd`, ids at +96
///             reply    +80  u64  realization time, seconds since boot
///                      +88  u64  generation number
///                      after the ids 892 bytes each, `FWRule_`
class CTarnFWCmdGetRuleOfRuleSet final : public CTarnFWRuleSetReadCmd<10, 96, FWRule_> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("rule"); }

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
