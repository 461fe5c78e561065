// The 892-byte record of one rule, and the 330-byte record of its action inside it.
#ifndef TARNLAB_RULE_RECORD_H
#define TARNLAB_RULE_RECORD_H

#include <string>

#include "LabBytes.h"

namespace TarnLab {

namespace RuleRecord {
inline constexpr std::size_t size = 892;
inline constexpr std::size_t id = 0, position = 4, source = 12, destination = 156, sourcePort = 300,
                             destinationPort = 338, portSize = 38, extendedSourceHead = 376,
                             extendedSource = 380, profileHead = 418, profile = 422,
                             containerSize = 38, action = 460, flags = 790, flags2 = 791,
                             flags3 = 793, protocol = 794, session = 796, sessionSize = 56,
                             tag = 852, tagSize = 32, mode = 884;

// Bits of the byte `flags`.
inline constexpr unsigned hasSource = 1, hasDestination = 2, hasProtocol = 4, protocolNegated = 8,
                          layer3 = 16;
// Bits of the byte `flags3`.
inline constexpr unsigned afDerived = 16, internal = 64;
// Bits of `mode`.
inline constexpr unsigned modeNone = 1, modeCopy = 2, modeExtendedSource = 4, modeProfile = 8;

inline unsigned direction(ConstBytes rule) { return get8(rule, flags) >> 5 & 3; }
inline unsigned addressFamily(ConstBytes rule) {
  return get8(rule, flags) >> 7 | (get8(rule, flags2) & 1u) << 1;
}
}  // namespace RuleRecord

/// Offsets from the start of the action.
namespace ActionRecord {
inline constexpr std::size_t size = 330;
inline constexpr std::size_t data = 0, port = 144, lastPort = 146, lbType = 148, lbIdle = 150,
                             lbClose = 152, lbOptions = 154, lbOptionsSize = 128, bits = 282,
                             poolValue = 284, dynamic = 288, code = 290, flags = 291,
                             keyPolicy = 293, keyPolicySize = 37;
inline constexpr std::size_t ruleSetNameSize = 64;
inline constexpr unsigned accept = 1, jumpto = 4, snat = 7, dnat = 8, macRewrite = 9, encrypt = 11,
                          lb = 13, pbr = 14;
inline constexpr unsigned flagLog = 1, flagCopy = 2, flagDynamic = 4, flagNoFlow = 8, flagRtt = 16,
                          flagLbRule = 256, flagsUnknown = 0xfee0;
}  // namespace ActionRecord

namespace RuleRecord {
inline unsigned actionCode(ConstBytes rule) { return get8(rule, action + ActionRecord::code); }

/// The kind under which the rule is kept: 0 filter, 1 source translation, 2 destination
/// translation and load balancing.
inline unsigned kind(ConstBytes rule) {
  const unsigned code = actionCode(rule);
  if (code == ActionRecord::snat) return 1;
  return code == ActionRecord::dnat || code == ActionRecord::lb ? 2 : 0;
}

/// The rule set that a jump rule names.
inline std::string_view jumpTarget(ConstBytes rule) {
  return getText(rule, action, ActionRecord::ruleSetNameSize);
}

/// What a kernel would find wrong with the record; empty when nothing.
std::string fault(ConstBytes record);

/// The rule as the configuration language writes it, as far as a reader of the record can:
/// markings and TCP options are kept in the record but are not read back by anyone.
std::string text(ConstBytes record);
}  // namespace RuleRecord

}  // namespace TarnLab

#endif
