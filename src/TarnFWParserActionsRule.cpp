#define TARNFW_SOURCE "tarnfw_parser.y"

#include "TarnFWParserActionsRule.h"

#include "TarnFWAddrSetID.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdList.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsAddress.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecTCPOptions.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionMacRewrite.h"
#include "TarnFWRuleActionSNAT.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

namespace {

constexpr std::size_t kNormalUuidLength = 36;
constexpr std::int64_t kMaxTCPFlags = 0x1ff;
constexpr std::uint16_t kNoPersistence = 0;

struct PortBounds {
  std::uint16_t low;
  std::uint16_t high;
};

/// Both bounds as ports, in any order.
PortBounds portBounds(const FWNumberRange& range) {
  const std::uint16_t low = portNumber(range.low);
  return {low, portNumber(range.high)};
}

PortBounds risingPortBounds(const FWNumberRange& range) {
  const PortBounds bounds = portBounds(range);
  if (bounds.low >= bounds.high) {
    throw CUnsupportedException(FW_STATUS_PARSING_ERROR, "invalid port range");
  }
  return bounds;
}

/// The command that creates an address set of the range's blocks, and the range's negation mark.
/// Null, with nothing done, for an address that is no range or can't be covered by blocks.
std::unique_ptr<CTarnFWCmd> createRuleIPRangeCmd(const FWParse& parse, const dvs_port_* port,
                                                 const char* name, const CTarnFWAddress& address,
                                                 bool* negated) {
  auto list = emptyList(parse);
  if (!addBlocksOfRange(*list, address)) return nullptr;
  *negated = address.isNegated();
  FWAddrSetID_t id = {};
  Strncpy(id.text, name, sizeof id.text);
  const char* family = address.isIPv4Address() ? "ip" : "ipv6";
  TARNFW_INFO("replaced %s range %s to ipset %s\n", family, address.toString().c_str(), name);
  return std::make_unique<CTarnFWCmdCreateAddrSet>(port, id, FW_ADDRSET_IP, std::move(list));
}

bool isRange(const CTarnFWAddress& address) {
  const int type = address.getType();
  return type == FW_ADDRESS_IPV4_RANGE || type == FW_ADDRESS_IPV6_RANGE;
}

/// Replaces a range by a set named "`word``id`", created ahead of the statement.
void replaceRange(const FWParse& parse, const char* word, std::uint32_t id,
                  std::unique_ptr<CTarnFWAddress>& address) {
  if (!isRange(*address)) return;
  const std::string name = formatText("%s%d", word, static_cast<int>(id));
  bool negated = false;
  auto command = createRuleIPRangeCmd(parse, nullptr, name.c_str(), *address, &negated);
  if (command == nullptr) return;
  (*parse.cmdList)->addCmd(std::move(command));
  address = parse.make<CTarnFWAddrSetID>(name.c_str(), negated);
}

/// The same for the target of a NAT action, which names the set itself.
void replaceTargetRange(const FWParse& parse, std::uint32_t id, CTarnFWRuleAction& action) {
  if (action.getAction() != FW_ACTION_SNAT && action.getAction() != FW_ACTION_DNAT) return;
  const std::string name = formatText("target%d", static_cast<int>(id));
  const std::unique_ptr<CTarnFWAddress> range = action.replaceIPRangeAddress(name.c_str());
  if (range == nullptr) return;
  bool negated = false;
  auto command = createRuleIPRangeCmd(parse, nullptr, name.c_str(), *range, &negated);
  if (command == nullptr) {
    throw CUnsupportedException(FW_STATUS_INTERNAL_ERROR,
                                "failed to replace NAT rule target ip range");
  }
  (*parse.cmdList)->addCmd(std::move(command));
}

CTarnFWProtocolMatch ruleProtocol(const FWParserProtocol& protocol) {
  if (!protocol.defined) return CTarnFWProtocolMatch(protocol.layer);
  return {protocol.layer, protocol.number, protocol.negated};
}

CTarnFWProtocolSpecList connectionSpecs(std::unique_ptr<CTarnFWProtocolSpecList> specs) {
  if (specs == nullptr) return CTarnFWProtocolSpecList(FW_SPEC_DIR_BOTH);
  return std::move(*specs);
}

/// Null for a rule that has none of them.
std::unique_ptr<FWRuleExtras> ruleExtras(const FWParse& parse, FWParserRule& rule) {
  if (rule.extendedSource == nullptr && rule.attributeProfile == nullptr && rule.tag.length == 0)
    return nullptr;
  auto extras = parse.make<FWRuleExtras>();
  extras->extendedSource = std::move(rule.extendedSource);
  extras->attributeProfile = std::move(rule.attributeProfile);
  extras->tag = FWRuleTag({rule.tag.data, rule.tag.length});
  return extras;
}

FWRuleParts ruleParts(const FWParse& parse, FWParserRule& rule, std::uint32_t id,
                      std::uint32_t position) {
  return {.id = id,
          .position = static_cast<std::int32_t>(position),
          .direction = rule.direction,
          .protocol = ruleProtocol(rule.protocol),
          .connection = connectionSpecs(std::move(rule.connection)),
          .source = std::move(rule.source),
          .sourcePorts = {FW_SPEC_DIR_SOURCE, std::move(rule.sourcePorts)},
          .destination = std::move(rule.destination),
          .destinationPorts = {FW_SPEC_DIR_DESTINATION, std::move(rule.destinationPorts)},
          .action = std::move(rule.action),
          .extras = ruleExtras(parse, rule)};
}

std::unique_ptr<CTarnFWRule> assembleRule(const FWParse& parse, FWParserRule& rule,
                                          std::uint32_t id, std::uint32_t position) {
  replaceRange(parse, "src", id, rule.source);
  replaceRange(parse, "dst", id, rule.destination);
  replaceTargetRange(parse, id, *rule.action);
  auto made = parse.make<CTarnFWRule>([&] { return ruleParts(parse, rule, id, position); });
  if (rule.af != FW_AF_NONE) made->setAF(rule.af);
  return made;
}

}  // namespace

FWParserProtocol protocolOfName(const FWParse& parse, const FWParserText& name, bool negated) {
  const int number = parse.extra().protocols.number({name.data, name.length});
  if (number < 0) {
    throw CParseFailure(formatText("unknown protocol (%s)", name.data),
                        FW_STATUS_UNKNOWN_PROTOCOL_NAME);
  }
  return {FWProtocolLayer::ip, static_cast<std::uint16_t>(number), negated, true};
}

FWParserProtocol protocolOfNumber(std::int64_t number, bool negated) {
  const auto value = numberUpTo<std::uint8_t>(number, 0xff, "ip protocol value overflows");
  return {FWProtocolLayer::ip, value, negated, true};
}

FWParserProtocol etherType(std::int64_t number, bool negated) {
  const auto value = numberUpTo<std::uint16_t>(number, 0xffff, "ether type value overflows");
  return {FWProtocolLayer::ethernet, value, negated, true};
}

std::unique_ptr<CTarnFWProtocolSpec> port(const FWParse& parse, std::int64_t number, bool negated) {
  return parse.make<CTarnFWProtocolSpecL4Port>(FW_SPEC_DIR_BOTH, portNumber(number), negated);
}

std::unique_ptr<CTarnFWProtocolSpec> portRange(const FWParse& parse, const FWNumberRange& range,
                                               bool negated) {
  const PortBounds bounds = risingPortBounds(range);
  return parse.make<CTarnFWProtocolSpecL4PortRange>(FW_SPEC_DIR_BOTH, bounds.low, bounds.high,
                                                    negated);
}

std::unique_ptr<CTarnFWProtocolSpecL4PortSet> portSet(const FWParse& parse) {
  return parse.make<CTarnFWProtocolSpecL4PortSet>(FW_SPEC_DIR_BOTH, false);
}

std::unique_ptr<CTarnFWProtocolSpecL4PortSet> withPort(
    std::unique_ptr<CTarnFWProtocolSpecL4PortSet> set, std::int64_t number) {
  set->addPort(portNumber(number));
  return set;
}

std::unique_ptr<CTarnFWProtocolSpecL4PortSet> withPorts(
    std::unique_ptr<CTarnFWProtocolSpecL4PortSet> set, const FWNumberRange& range) {
  const PortBounds bounds = risingPortBounds(range);
  set->addPortRange(bounds.low, bounds.high);
  return set;
}

std::unique_ptr<CTarnFWProtocolSpec> negatedSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  spec->setNegated(true);
  return spec;
}

std::unique_ptr<CTarnFWProtocolSpecList> withSpec(const FWParse& parse,
                                                  std::unique_ptr<CTarnFWProtocolSpecList> list,
                                                  std::unique_ptr<CTarnFWProtocolSpec> spec) {
  if (list == nullptr) list = parse.make<CTarnFWProtocolSpecList>(FW_SPEC_DIR_BOTH);
  list->addSpec(std::move(spec));
  return list;
}

std::unique_ptr<CTarnFWProtocolSpec> dscpOfText(const FWParse& parse, const FWParserText& text) {
  long value = 0;
  if (!Str2Long(text.data, 16, &value) || value < 0 || value > 0xff) {
    throw CUnsupportedException(FW_STATUS_BAD_DSCP_MARKINGS, "bad dscp markings");
  }
  return parse.make<CTarnFWProtocolSpecDSCP>(static_cast<unsigned char>(value));
}

std::unique_ptr<CTarnFWProtocolSpec> dscpOfNumber(const FWParse& parse, std::int64_t number) {
  return parse.make<CTarnFWProtocolSpecDSCP>(static_cast<unsigned char>(number));
}

std::unique_ptr<CTarnFWProtocolSpec> tcpOptions(const FWParse& parse, const FWParserText& text,
                                                bool negated) {
  return parse.make<CTarnFWProtocolSpecTCPOptions>(FW_SPEC_DIR_BOTH, text.data, text.length,
                                                   negated);
}

std::unique_ptr<CTarnFWProtocolSpec> icmpType(const FWParse& parse, std::int64_t type,
                                              bool negated) {
  const auto value = numberUpTo<unsigned char>(type, 0xff, "icmp type overflows");
  return parse.make<CTarnFWProtocolSpecICMPType>(FW_SPEC_DIR_BOTH, value, negated);
}

std::unique_ptr<CTarnFWProtocolSpec> icmpTypeCode(const FWParse& parse,
                                                  const FWNumberRange& typeCode, bool negated) {
  const auto type = numberUpTo<unsigned char>(typeCode.low, 0xff, "icmp type overflows");
  const auto code = numberUpTo<unsigned char>(typeCode.high, 0xff, "icmp code overflows");
  return parse.make<CTarnFWProtocolSpecICMPType>(FW_SPEC_DIR_BOTH, type, code, negated);
}

std::uint16_t tcpFlags(std::int64_t number) {
  if (number < 0 || number > kMaxTCPFlags) {
    throw CInvalidTCPFlagsException(static_cast<unsigned int>(number));
  }
  return static_cast<std::uint16_t>(number);
}

std::uint16_t withActionFlag(std::uint16_t flags, std::uint16_t flag, const char* name) {
  if ((flags & flag) != 0) TARNFW_WARNING("duplicate rule action flag: %s\n", name);
  return static_cast<std::uint16_t>(flags | flag);
}

std::unique_ptr<CTarnFWRuleAction> flaggedAction(std::unique_ptr<CTarnFWRuleAction> action,
                                                 const FWActionFlags& flags) {
  if ((flags.flags & kActionLog) != 0) action->enableLogPacket();
  if ((flags.flags & kActionCopy) != 0) action->enableCopyPacket();
  if ((flags.flags & kActionNoFlow) != 0) action->enableNoFlow();
  if ((flags.flags & kActionRtt) != 0) action->enableRtt();
  if ((flags.flags & kActionLBRule) != 0) action->enableLBRule();
  if ((flags.flags & kActionDynamic) != 0 && flags.application != 0) {
    action->enableDynamic(flags.application);
  }
  return action;
}

const FWParserText* keyPolicy(const FWParse& parse, const FWParserText& text) {
  std::uint8_t uuid[kUuidSize];
  if (!normalstr2uuid(uuid, text.data)) {
    throw CParseFailure(formatText("bad uuid (%s)", text.data), FW_STATUS_INVALID_ARGUMENT);
  }
  if (text.length <= kNormalUuidLength) return &text;
  const FWParserText* cut = parse.arena().copy(text.data, kNormalUuidLength);
  if (cut == nullptr) throw std::bad_alloc();
  return cut;
}

std::unique_ptr<CTarnFWRuleAction> snat(const FWParse& parse,
                                        std::unique_ptr<CTarnFWAddress> address) {
  return parse.make<CTarnFWRuleActionSNAT>(std::move(address));
}

std::unique_ptr<CTarnFWRuleAction> macRewrite(const FWParse& parse, const fw_ether_& ether) {
  return parse.make<CTarnFWRuleActionMacRewrite>(ether.octet);
}

std::unique_ptr<CTarnFWRuleAction> dnat(const FWParse& parse,
                                        std::unique_ptr<CTarnFWAddress> address) {
  return dnatToPool(parse, std::move(address), FW_POOL_NONE, 0);
}

std::unique_ptr<CTarnFWRuleAction> dnatToPort(const FWParse& parse,
                                              std::unique_ptr<CTarnFWAddress> address,
                                              std::int64_t port) {
  return parse.make<CTarnFWRuleActionDNAT>(std::move(address), FW_POOL_NONE, portNumber(port),
                                           kNoPersistence);
}

std::unique_ptr<CTarnFWRuleAction> dnatToPorts(const FWParse& parse,
                                               std::unique_ptr<CTarnFWAddress> address,
                                               const FWNumberRange& ports) {
  const PortBounds bounds = risingPortBounds(ports);
  return parse.make<CTarnFWRuleActionDNAT>(std::move(address), FW_POOL_NONE, bounds.low,
                                           bounds.high, kNoPersistence);
}

std::unique_ptr<CTarnFWRuleAction> dnatToPool(const FWParse& parse,
                                              std::unique_ptr<CTarnFWAddress> address,
                                              FWRulePoolOpt_t option, std::uint16_t persist) {
  return parse.make<CTarnFWRuleActionDNAT>(std::move(address), option, persist);
}

std::unique_ptr<CTarnFWRuleAction> dnatToPoolPorts(const FWParse& parse,
                                                   std::unique_ptr<CTarnFWAddress> address,
                                                   const FWNumberRange& ports,
                                                   FWRulePoolOpt_t option, std::uint16_t persist) {
  const PortBounds bounds = portBounds(ports);
  return parse.make<CTarnFWRuleActionDNAT>(std::move(address), option, bounds.low, bounds.high,
                                           persist);
}

std::unique_ptr<CTarnFWRuleAction> loadBalancing(const FWParse& parse, std::uint16_t type,
                                                 std::int64_t idle, std::int64_t close,
                                                 const char* options) {
  const auto idleTime = static_cast<unsigned short>(idle);
  const auto closeTime = static_cast<unsigned short>(close);
  if (options == nullptr) {
    return parse.make<CTarnFWRuleActionLB>(type, idleTime, closeTime);
  }
  return parse.make<CTarnFWRuleActionLB>(type, idleTime, closeTime, options);
}

std::unique_ptr<CTarnFWRule> buildRule(const FWParse& parse, CTarnFWParserArena::Mark mark,
                                       FWParserRule rule) {
  const std::uint32_t id = number32(rule.id, "rule id value overflows");
  const std::uint32_t position = number32(rule.position, "rule position value overflows");
  try {
    auto made = assembleRule(parse, rule, id, position);
    parse.arena().release(mark);
    return made;
  } catch (const CTarnFWException& e) {
    // The exception's own status is not passed on: callers of the library expect 16 for a rule.
    throw CParseFailure(e.what());
  }
}

std::unique_ptr<CTarnFWRuleList> withRule(std::unique_ptr<CTarnFWRuleList> list,
                                          std::unique_ptr<CTarnFWRule> rule) {
  if (list == nullptr) list = std::make_unique<CTarnFWRuleList>(false);
  list->addRule(std::move(rule));
  return list;
}

std::unique_ptr<CTarnFWContainerID> containerID(const FWParse& parse, const FWParserText& name) {
  return parse.make<CTarnFWContainerID>(asString(name));
}

}  // namespace TarnFirewall
