#pragma once

#include "TarnFWRuleRecord.h"
#include "TarnFWRuleSetReadCmd.h"

namespace TarnFirewall {

/// Asks for rules, and prints them.
///
/// Command 10  request  as `CTarnFWRuleSetReadCmd`, ids at +96
///             reply    +80  u64  realization time, seconds since boot
///                      +88  u64  generation number
///                      behind the ids 892 bytes each, `FWRule_`
class CTarnFWCmdGetRuleOfRuleSet final : public CTarnFWRuleSetReadCmd<10, 96, 896> {
 public:
  using CTarnFWRuleSetReadCmd::CTarnFWRuleSetReadCmd;
  std::string toString() const override { return readStatement("rule"); }

  /// Records in the reply.
  std::uint32_t returned(const CTarnFWCmdReply& reply) const;

  /// Copies the reply's records to `rules`, which has room for as many as were asked for; their
  /// number.
  std::uint32_t copyRules(const CTarnFWCmdReply& reply, FWRule_* rules) const;

 private:
  void read(const CTarnFWCmdReply& reply) override;
};

}  // namespace TarnFirewall
