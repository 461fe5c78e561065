#pragma once

/// Actions of a rule: its specs, its action with the flags, and the rule itself.

#include "TarnFWAddress.h"
#include "TarnFWContainerID.h"
#include "TarnFWParserActions.h"
#include "TarnFWProtocol.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecList.h"
#include "TarnFWRule.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleList.h"
#include "TarnFWRuleParts.h"

namespace TarnFirewall {

// --- Protocol

/// A rule's protocol until the rule is built: it fits into the parser's value.
struct FWParserProtocol {
  FWProtocolLayer layer;
  std::uint16_t number;
  bool negated;
  bool defined;
};

/// By the host's name of the protocol. Throws `CParseFailure` with status 52.
FWParserProtocol protocolOfName(const FWParse& parse, const FWParserText& name, bool negated);
FWParserProtocol protocolOfNumber(std::int64_t number, bool negated);
FWParserProtocol etherType(std::int64_t number, bool negated);

// --- Ports

std::unique_ptr<CTarnFWProtocolSpec> port(const FWParse& parse, std::int64_t number, bool negated);

/// The low bound must be below the high one: equal bounds are refused, with status 16.
std::unique_ptr<CTarnFWProtocolSpec> portRange(const FWParse& parse, const FWNumberRange& range,
                                               bool negated);

std::unique_ptr<CTarnFWProtocolSpecL4PortSet> portSet(const FWParse& parse);
std::unique_ptr<CTarnFWProtocolSpecL4PortSet> withPort(
    std::unique_ptr<CTarnFWProtocolSpecL4PortSet> set, std::int64_t number);
std::unique_ptr<CTarnFWProtocolSpecL4PortSet> withPorts(
    std::unique_ptr<CTarnFWProtocolSpecL4PortSet> set, const FWNumberRange& range);
std::unique_ptr<CTarnFWProtocolSpec> negatedSpec(std::unique_ptr<CTarnFWProtocolSpec> spec);

// --- Protocol specs

/// Adds a spec at the end of the list; a list that is null is begun.
std::unique_ptr<CTarnFWProtocolSpecList> withSpec(const FWParse& parse,
                                                  std::unique_ptr<CTarnFWProtocolSpecList> list,
                                                  std::unique_ptr<CTarnFWProtocolSpec> spec);

/// DSCP of hexadecimal digits. Throws `CUnsupportedException` with status 60.
std::unique_ptr<CTarnFWProtocolSpec> dscpOfText(const FWParse& parse, const FWParserText& text);

/// DSCP of the low byte of the number.
std::unique_ptr<CTarnFWProtocolSpec> dscpOfNumber(const FWParse& parse, std::int64_t number);

std::unique_ptr<CTarnFWProtocolSpec> tcpOptions(const FWParse& parse, const FWParserText& text,
                                                bool negated);
std::unique_ptr<CTarnFWProtocolSpec> icmpType(const FWParse& parse, std::int64_t type,
                                              bool negated);

/// Type and code come as the two numbers of a range token.
std::unique_ptr<CTarnFWProtocolSpec> icmpTypeCode(const FWParse& parse,
                                                  const FWNumberRange& typeCode, bool negated);

/// Bits of the TCP flags, as the wire has them.
enum FWTCPFlag : std::uint16_t {
  FW_TCP_FIN = 0x1,
  FW_TCP_SYN = 0x2,
  FW_TCP_RST = 0x4,
  FW_TCP_PSH = 0x8,
  FW_TCP_ACK = 0x10,
  FW_TCP_URG = 0x20,
  FW_TCP_ECE = 0x40,
  FW_TCP_CWR = 0x80,
  FW_TCP_NS = 0x100,
};

/// Flags as a number of at most 0x1ff; throws `CInvalidTCPFlagsException` for any other.
std::uint16_t tcpFlags(std::int64_t number);

// --- Action

/// Flags of an action, as its record has them, and the application that it belongs to.
struct FWActionFlags {
  std::uint16_t flags;
  std::uint16_t application;
};

/// The flag added to the mask; one that is there already is warned about by its name.
std::uint16_t withActionFlag(std::uint16_t flags, std::uint16_t flag, const char* name);

std::unique_ptr<CTarnFWRuleAction> flaggedAction(std::unique_ptr<CTarnFWRuleAction> action,
                                                 const FWActionFlags& flags);

/// A key policy's identifier, which must be in normal form; throws `CParseFailure` with status 3.
const FWParserText* keyPolicy(const FWParse& parse, const FWParserText& text);

std::unique_ptr<CTarnFWRuleAction> snat(const FWParse& parse,
                                        std::unique_ptr<CTarnFWAddress> address);
std::unique_ptr<CTarnFWRuleAction> macRewrite(const FWParse& parse, const fw_ether_& ether);

/// Destination NAT to any of a range of ports. With a pool option the order of the two bounds is
/// the action's to judge, without one they are a range as rules have it.
std::unique_ptr<CTarnFWRuleAction> dnat(const FWParse& parse,
                                        std::unique_ptr<CTarnFWAddress> address);
std::unique_ptr<CTarnFWRuleAction> dnatToPort(const FWParse& parse,
                                              std::unique_ptr<CTarnFWAddress> address,
                                              std::int64_t port);
std::unique_ptr<CTarnFWRuleAction> dnatToPorts(const FWParse& parse,
                                               std::unique_ptr<CTarnFWAddress> address,
                                               const FWNumberRange& ports);
std::unique_ptr<CTarnFWRuleAction> dnatToPool(const FWParse& parse,
                                              std::unique_ptr<CTarnFWAddress> address,
                                              FWRulePoolOpt_t option, std::uint16_t persist);
std::unique_ptr<CTarnFWRuleAction> dnatToPoolPorts(const FWParse& parse,
                                                   std::unique_ptr<CTarnFWAddress> address,
                                                   const FWNumberRange& ports,
                                                   FWRulePoolOpt_t option, std::uint16_t persist);

/// Load balancing; the time-outs are cut to 16 bits. `options` may be null.
std::unique_ptr<CTarnFWRuleAction> loadBalancing(const FWParse& parse, std::uint16_t type,
                                                 std::int64_t idle, std::int64_t close,
                                                 const char* options);

// --- Rule

/// What the grammar has of a rule. What a rule lacks is null, or an empty tag.
struct FWParserRule {
  std::int64_t id;
  std::int64_t position;
  FWRuleDirection_t direction;
  FWRuleAF_t af;
  FWParserProtocol protocol;
  std::unique_ptr<CTarnFWProtocolSpecList> connection;
  std::unique_ptr<CTarnFWAddress> source;
  std::unique_ptr<CTarnFWProtocolSpec> sourcePorts;
  std::unique_ptr<CTarnFWAddress> destination;
  std::unique_ptr<CTarnFWProtocolSpec> destinationPorts;
  std::unique_ptr<CTarnFWContainerID> extendedSource;
  std::unique_ptr<CTarnFWContainerID> attributeProfile;
  std::unique_ptr<CTarnFWRuleAction> action;
  FWParserText tag;
};

/// The rule. Each address range in it becomes a reference to an address set named after the rule's
/// id, and the command that creates the set goes to the command list at once, so that it stands
/// ahead of the statement. The texts of the rule, after the mark, are freed. Failures after the two
/// numbers end in status 16, whatever their own.
std::unique_ptr<CTarnFWRule> buildRule(const FWParse& parse, CTarnFWParserArena::Mark mark,
                                       FWParserRule rule);

/// Adds a rule at the end of the list; a list that is null is begun.
std::unique_ptr<CTarnFWRuleList> withRule(std::unique_ptr<CTarnFWRuleList> list,
                                          std::unique_ptr<CTarnFWRule> rule);

std::unique_ptr<CTarnFWContainerID> containerID(const FWParse& parse, const FWParserText& name);

}  // namespace TarnFirewall
