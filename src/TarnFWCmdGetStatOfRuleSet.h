#pragma once

#include "TarnFWRecords.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the statistics of rules, and prints them.
///
/// Command 11  request  as `CTarnFWRuleSetReadCmd`, ids at +80
///             reply    after the ids 64 bytes each, `FWRuleStat_`
class CTarnFWCmdGetStatOfRuleSet final : public CTarnFWRuleSetReadCmd<11, 80, FWRuleStat_> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("stat"); }

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
