#pragma once

#include "TarnFWRecords.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the state of load-balancing rules, and prints their ids.
///
/// Command 12  request  as `CTarnFWRuleSetReadCmd`, ids at +80
///             reply    at +80 u32 each, the rule ids; behind them 160 bytes each, `FWDlbRule_`
class CTarnFWCmdGetDlbOfRuleSet final : public CTarnFWRuleSetReadCmd<12, 80, 164> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("dlb"); }

  /// Records in the reply, and one of them.
  std::uint32_t returned(const CTarnFWCmdReply& reply) const;
  static FWDlbRule_ ruleAt(const CTarnFWCmdReply& reply, std::uint32_t index);

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
