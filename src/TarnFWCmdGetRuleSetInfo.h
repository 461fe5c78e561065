#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks how large a rule set is and when it took effect, and prints it.
///
/// Command 9   request  +0  64 bytes  name of the rule set      reply  +64  u32  rule count
///                                                                    +68  u64  realization time,
///                                                                              seconds since boot
///                                                                    +76  u64  generation number
class CTarnFWCmdGetRuleSetInfo final : public CTarnFWPrinted<CTarnFWRuleSetNameCmd<9, 84>> {
 public:
  CTarnFWCmdGetRuleSetInfo(const dvs_port_* port, const FWRuleSetID_t& id)
      : CTarnFWPrinted(port, id) {}
  std::string toString() const override { return statement("describe info of ruleset"); }

  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(64); }
  static std::uint64_t realizationTime(const CTarnFWCmdReply& reply) { return reply.longWord(68); }
  static std::uint64_t generation(const CTarnFWCmdReply& reply) { return reply.longWord(76); }

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
};

}  // namespace TarnFirewall
