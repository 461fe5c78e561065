#include "RuleText.h"

#include <netinet/in.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// A reason that names bytes of a record which nobody here knows.
[[noreturn]] void refuseNumber(const char* what, unsigned int number) {
  throw Unsayable(formatText("%s %u is unknown", what, number));
}

/// Why the rule can't be said beside its parts, empty where nothing speaks against it.
std::string reasonOf(const FWRule_& rule) {
  if ((rule.origin & kRuleInternal) != 0) return "the kernel made it for itself";
  return {};
}

std::string number(std::uint64_t value) { return std::to_string(value); }

std::string bracesText(const std::vector<std::string>& words) {
  std::string text = "{ ";
  for (const std::string& word : words) {
    if (text.size() > 2) text += ", ";
    text += word;
  }
  return text + " }";
}

/// One word alone, several in braces.
std::string listText(const std::vector<std::string>& words) {
  return words.size() == 1 ? words.front() : bracesText(words);
}

// ---- addresses

/// The address of one end of a rule's traffic.
std::string endText(bool isThere, const FWAddress_& address) {
  if (!isThere) return "any";
  if (address.type == FW_ADDRESS_IPV4_RANGE || address.type == FW_ADDRESS_IPV6_RANGE) {
    throw Unsayable("a range in a rule comes back as an address set");
  }
  if (address.type == FW_ADDRESS_ANY) throw Unsayable("it is any, and yet there");
  return addressText(address);
}

// ---- specs

std::string portsOfSet(const CTarnFWProtocolSpecL4PortSet::Body& body) {
  const unsigned int count =
      std::min(body.count & 0x0fu, CTarnFWProtocolSpecL4PortSet::kMaxEntries);
  const unsigned int ranges = body.ranges;
  std::vector<std::string> words;
  for (unsigned int i = 0; i < count; ++i) {
    std::string word = number(body.entries[i]);
    if ((ranges >> i & 1u) != 0 && i + 1 < count) word += "-" + number(body.entries[++i]);
    words.push_back(std::move(word));
  }
  if (words.empty()) throw Unsayable("its list of ports is empty");
  return bracesText(words);
}

std::string portsText(const FWPortBlock_& block) {
  const FWSpecHeader_& header = block.header;
  std::string text = header.negated() ? "not port " : "port ";
  switch (header.kind()) {
    case FW_SPEC_NONE:
      return {};
    case FW_SPEC_L4_PORT:
      return text + number(std::uint16_t{loadRecord<net16>(block.body)});
    case FW_SPEC_L4_PORT_RANGE:
      return text + number(std::uint16_t{loadRecord<net16>(block.body)}) + "-" +
             number(std::uint16_t{loadRecord<net16>(block.body + 2)});
    case FW_SPEC_L4_PORT_SET:
      return text + portsOfSet(loadRecord<CTarnFWProtocolSpecL4PortSet::Body>(block.body));
    default:
      refuseNumber("the kind of ports", header.kind());
  }
}

std::string tcpFlagsText(unsigned int flags) {
  static constexpr const char* kNames[] = {"FIN", "SYN", "RST", "PSH", "ACK",
                                           "URG", "ECE", "CWR", "NS"};
  std::vector<std::string> words;
  for (unsigned int i = 0; i < 9; ++i) {
    if ((flags >> i & 1u) != 0) words.emplace_back(kNames[i]);
  }
  if (words.empty()) words.emplace_back("0");
  return "flag " + listText(words);
}

/// TCP flags, or an ICMP type with its code.
void addFlags(const FWSessionBlock_& session, std::vector<std::string>& words) {
  const FWSpecHeader_& header = session.flagsHeader;
  const std::string negation = header.negated() ? "not " : "";
  switch (header.kind()) {
    case FW_SPEC_NONE:
      return;
    case FW_SPEC_TCP_FLAGS: {
      const auto body = loadRecord<CTarnFWProtocolSpecTCPFlags::Body>(session.flagsBody);
      words.push_back(negation + tcpFlagsText(body.low | (body.high & 1u) << 8));
      return;
    }
    case FW_SPEC_ICMP_TYPE: {
      constexpr unsigned int kHasCode = 2;
      const auto body = loadRecord<CTarnFWProtocolSpecICMPType::Body>(session.flagsBody);
      words.push_back(negation + ((body.flags & kHasCode) != 0
                                      ? "typecode " + number(body.type) + ":" + number(body.code)
                                      : "icmptype " + number(body.type)));
      return;
    }
    default:
      refuseNumber("the kind of spec", header.kind());
  }
}

void addOptions(const FWSessionBlock_& session, std::vector<std::string>& words) {
  if (session.optionsHeader.kind() == FW_SPEC_NONE) return;
  if (session.optionsHeader.kind() != FW_SPEC_TCP_OPTIONS) {
    refuseNumber("the kind of options", session.optionsHeader.kind());
  }
  const auto body = loadRecord<CTarnFWProtocolSpecTCPOptions::Body>(session.options);
  const std::size_t length = body.length;
  const auto* const text = reinterpret_cast<const char*>(body.options);
  if (length > sizeof body.options) throw Unsayable("its TCP options are too long");
  if (fieldLength(text, length) != length) throw Unsayable("its TCP options hold a zero");
  const std::string negation = session.optionsHeader.negated() ? "not " : "";
  words.push_back(negation + "option " + quoted({text, length}));
}

std::string specsText(const FWSessionBlock_& session) {
  std::vector<std::string> words;
  const unsigned int flags = session.flags;
  if ((flags & kSessionStateless) != 0) words.emplace_back("stateless");
  if ((flags & kSessionStrict) != 0) words.emplace_back("strict");
  if ((flags & kSessionSloppy) != 0) words.emplace_back("sloppy");
  if (const unsigned int dscp = (flags & kSessionDSCPMask) >> kSessionDSCPShift; dscp != 0) {
    words.push_back("dscp " + number(dscp));
  }
  addFlags(session, words);
  addOptions(session, words);
  if (words.empty()) return {};
  return (words.size() > 1 ? "with " : "") + listText(words);
}

// ---- protocol

std::string protocolText(const FWRule_& rule) {
  const bool layer3 = (rule.flags & kRuleLayer3) != 0;
  std::string text = (rule.flags & kRuleProtocolNegated) != 0 ? "not " : "";
  text += layer3 ? "protocol " : "ethertype ";
  if ((rule.flags & kRuleHasProtocol) == 0) return text + "any";
  const std::uint16_t value = ruleProtocolNumber(rule.protocol, layer3);
  // Three names are the same on every host; others are a matter of its /etc/protocols.
  if (layer3 && value == IPPROTO_ICMP) return text + "icmp";
  if (layer3 && value == IPPROTO_TCP) return text + "tcp";
  if (layer3 && value == IPPROTO_UDP) return text + "udp";
  return text + number(value);
}

// ---- action

std::string natTarget(const fw_rule_action_& action) {
  const auto address = loadRecord<FWAddress_>(action.data);
  if ((address.flags & kAddressNegated) != 0) {
    throw Unsayable("it translates to every address but one");
  }
  if (address.type == FW_ADDRESS_IPV4_RANGE || address.type == FW_ADDRESS_IPV6_RANGE) {
    throw Unsayable("a range that a rule translates to comes back as an address set");
  }
  if (address.type == FW_ADDRESS_ADDRSET) return addressText(address);
  return "ip " + addressText(address);
}

std::string poolText(const fw_rule_action_& action) {
  static constexpr const char* kNames[] = {"", "", "random", "", "round-robin", "tcp-conn-balance"};
  const unsigned int pool = action.present >> kActionPoolShift & kActionPoolMask;
  if (pool == FW_POOL_NONE) return {};
  if (pool >= std::size(kNames) || *kNames[pool] == '\0') {
    throw Unsayable("its pool option has no word");
  }
  std::string text = std::string(" poolopt ") + kNames[pool];
  if (action.poolValue != 0) text += " " + number(action.poolValue);
  return text;
}

std::string dnatText(const fw_rule_action_& action) {
  std::string text = "dnat " + natTarget(action);
  const bool hasPort = (action.present & kActionHasPort) != 0;
  const bool hasLast = (action.present & kActionHasLastPort) != 0;
  if (hasPort) text += " port " + number(std::uint16_t{action.port});
  if (hasLast) text += "-" + number(std::uint16_t{action.lastPort});
  return text + poolText(action);
}

std::string lbText(const fw_rule_action_& action) {
  if (action.lbType > 1) refuseNumber("the type of load balancing", action.lbType);
  std::string text = action.lbType == 0 ? "lb lbtype l4" : "lb lbtype l7";
  if (action.lbIdleTimeout != 0) text += " lbidletimeout " + number(action.lbIdleTimeout);
  if (action.lbCloseTimeout != 0) text += " lbclosetimeout " + number(action.lbCloseTimeout);
  if ((action.present & kActionHasLBOptions) != 0) {
    const std::size_t length = fieldLength(action.lbOptions, sizeof action.lbOptions);
    text += " lboptions " + quoted({action.lbOptions, length});
  }
  return text;
}

std::string keyPolicyText(const char* word, const fw_rule_action_& action) {
  const std::size_t length = fieldLength(action.keyPolicy, sizeof action.keyPolicy);
  if (length == 0) throw Unsayable("it has no key policy");
  return std::string(word) + " keypolicy " + quoted({action.keyPolicy, length});
}

std::string actionText(const fw_rule_action_& action) {
  const auto* const data = reinterpret_cast<const char*>(action.data);
  switch (action.action) {
    case FW_ACTION_ACCEPT:
      return "accept";
    case FW_ACTION_DROP:
      return "drop";
    case FW_ACTION_REJECT:
      return "reject";
    case FW_ACTION_JUMPTO:
      return "jumpto " + quoted({data, fieldLength(data, sizeof(FWRuleSetID_t))});
    case FW_ACTION_PUNT:
      return "punt";
    case FW_ACTION_DIVERT:
      return "divert";
    case FW_ACTION_SNAT:
      return "snat " + natTarget(action);
    case FW_ACTION_DNAT:
      return dnatText(action);
    case FW_ACTION_MACREWRITE:
      return "macrewrite " + macText(action.data);
    case FW_ACTION_COPY:
      return "copy";
    case FW_ACTION_ENCRYPT:
      return keyPolicyText("encrypt", action);
    case FW_ACTION_CLEAR:
      return "clear";
    case FW_ACTION_LB:
      return lbText(action);
    case FW_ACTION_PBR:
      return keyPolicyText("pbr", action);
    default:
      refuseNumber("the action", action.action);
  }
}

std::string flagsText(const fw_rule_action_& action) {
  static constexpr struct {
    std::uint16_t bit;
    const char* word;
  } kFlags[] = {{kActionLog, "log"},
                {kActionCopy, "copy"},
                {kActionNoFlow, "noflow"},
                {kActionRtt, "rtt"},
                {kActionLBRule, "lbrule"}};
  const unsigned int bits = action.flags;
  if ((bits & kActionUnknownFlags) != 0) {
    throw Unsayable(formatText("its action has the unknown flags 0x%04x", bits));
  }
  std::vector<std::string> words;
  for (const auto& flag : kFlags) {
    if ((bits & flag.bit) != 0) words.emplace_back(flag.word);
  }
  return words.empty() ? std::string() : "with " + listText(words);
}

std::string applicationText(const fw_rule_action_& action) {
  static constexpr const char* kNames[] = {"", "ftp", "oracle", "sunrpc", "dcerpc"};
  if ((action.flags & kActionDynamic) == 0) return {};
  const unsigned int application = action.dynamicApp >> 4 & 0xffu;
  if (application == 0 || application >= std::size(kNames)) {
    refuseNumber("the application", application);
  }
  return std::string("as ") + kNames[application];
}

// ---- the rest

std::string profileText(const char* word, bool isThere, const FWRuleProfile_& profile) {
  if (!isThere) return {};
  return std::string(word) + " " +
         quoted({profile.name.text, fieldLength(profile.name.text, sizeof profile.name.text)});
}

std::string directionText(const FWRule_& rule) {
  switch (rule.flags >> kRuleDirectionShift & kRuleDirectionMask) {
    case FW_DIRECTION_INOUT:
      return "inout";
    case FW_DIRECTION_IN:
      return "in";
    case FW_DIRECTION_OUT:
      return "out";
    default:
      throw Unsayable("its direction is unknown");
  }
}

/// Nothing for a family that follows from the addresses.
std::string familyText(const FWRule_& rule) {
  const unsigned int family = ruleAF(rule);
  if (family == FW_AF_NONE || (rule.origin & kRuleAFDerived) != 0) return {};
  if (family > FW_AF_INET6) refuseNumber("the address family", family);
  return family == FW_AF_INET ? "inet" : "inet6";
}

}  // namespace

const char* rulePartName(RulePart part) {
  static constexpr const char* kNames[kRuleParts] = {"direction",       "address family",
                                                     "protocol",        "specs",
                                                     "source",          "source ports",
                                                     "destination",     "destination ports",
                                                     "extended source", "attribute profile",
                                                     "action",          "flags",
                                                     "application",     "tag"};
  return kNames[static_cast<std::size_t>(part)];
}

std::string rulePartText(const FWRule_& rule, RulePart part) {
  switch (part) {
    case RulePart::direction:
      return directionText(rule);
    case RulePart::family:
      return familyText(rule);
    case RulePart::protocol:
      return protocolText(rule);
    case RulePart::specs:
      return specsText(rule.session);
    case RulePart::source:
      return endText((rule.flags & kRuleHasSource) != 0, rule.source);
    case RulePart::sourcePorts:
      return portsText(rule.sourcePorts);
    case RulePart::destination:
      return endText((rule.flags & kRuleHasDestination) != 0, rule.destination);
    case RulePart::destinationPorts:
      return portsText(rule.destinationPorts);
    case RulePart::extendedSource:
      return profileText("extsrcprofile", (rule.profileMode & kProfileExtendedSource) != 0,
                         rule.extendedSource);
    case RulePart::attributeProfile:
      return profileText("attrprofile", (rule.profileMode & kProfileAttribute) != 0,
                         rule.attributeProfile);
    case RulePart::action:
      return actionText(rule.action);
    case RulePart::flags:
      return flagsText(rule.action);
    case RulePart::application:
      return applicationText(rule.action);
    case RulePart::tag:
      break;
  }
  const std::size_t length = fieldLength(rule.tag, sizeof rule.tag);
  return length == 0 ? std::string() : "tag " + quoted({rule.tag, length});
}

std::string ruleText(const FWRule_& rule) {
  if (const std::string reason = reasonOf(rule); !reason.empty()) throw Unsayable(reason);
  std::string text = "rule " + number(rule.id);
  if (const auto position = static_cast<std::uint32_t>(std::int32_t{rule.position})) {
    text += " at " + number(position);
  }
  for (std::size_t i = 0; i < kRuleParts; ++i) {
    const auto part = static_cast<RulePart>(i);
    const std::string words = rulePartText(rule, part);
    if (words.empty()) continue;
    if (part == RulePart::source) text += " from";
    if (part == RulePart::destination) text += " to";
    text += ' ';
    text += words;
  }
  return text;
}

std::string shownRulePart(const FWRule_& rule, RulePart part) {
  try {
    return escapedText(rulePartText(rule, part));
  } catch (const Unsayable& e) {
    return std::string("(") + e.what() + ")";
  }
}

std::string shownRule(const FWRule_& rule) {
  std::string text = "rule " + number(rule.id);
  for (std::size_t i = 0; i < kRuleParts; ++i) {
    const auto part = static_cast<RulePart>(i);
    const std::string words = shownRulePart(rule, part);
    if (words.empty()) continue;
    if (part == RulePart::source) text += " from";
    if (part == RulePart::destination) text += " to";
    text += ' ';
    text += words;
  }
  if (const std::string reason = reasonOf(rule); !reason.empty()) text += " (" + reason + ")";
  return text;
}
