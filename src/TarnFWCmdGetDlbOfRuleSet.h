#pragma once

#include "TarnFWRecords.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for the state of load-balancing rules, and prints their ids.
///
/// Command 12  request  as `CTarnFWRuleSetReadCmd`, ids at +80
///             reply    at +80 u32 each, the rule ids; after them 160 bytes each, `FWDlbRule_`
class CTarnFWCmdGetDlbOfRuleSet final : public CTarnFWRuleSetReadCmd<12, 80, FWDlbRule_> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("dlb"); }

 private:
  void read(const CTarnFWCmdReply& reply) override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
