#pragma once

#include "TarnFWRecords.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the statistics of rules, and prints them.
///
/// Command 11  request  as `CTarnFWRuleSetReadCmd`, ids at +80
///             reply    behind the ids 64 bytes each, `FWRuleStat_`
class CTarnFWCmdGetStatOfRuleSet final : public CTarnFWRuleSetReadCmd<11, 80, 68> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("stat"); }

  /// Records in the reply, and one of them.
  std::uint32_t returned(const CTarnFWCmdReply& reply) const;
  static FWRuleStat_ statAt(const CTarnFWCmdReply& reply, std::uint32_t index);

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
