#pragma once

/// The record of a rule, as the kernel lays it out, with those of its parts. Integers are in the
/// order that their type says; what a rule does not use is zero.

#include <cstddef>
#include <cstdint>

#include "TarnFWRecords.h"
#include "TarnFWTypes.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

/// Kinds of protocol specs, as the header of a spec names them on the wire.
enum FWProtocolSpecType_t : std::uint32_t {
  FW_SPEC_NONE = 0,
  FW_SPEC_L4_PORT = 1,
  FW_SPEC_L4_PORT_RANGE = 2,
  FW_SPEC_L4_PORT_SET = 3,
  FW_SPEC_TCP_FLAGS = 4,
  FW_SPEC_TCP_OPTIONS = 5,
  FW_SPEC_ICMP_TYPE = 6,
  FW_SPEC_STATELESS = 7,
  FW_SPEC_DSCP = 8,
  FW_SPEC_STRICT = 9,
  FW_SPEC_SLOPPY = 10,
};

/// Where a spec looks.
enum FWProtocolSpecDir : unsigned char {
  FW_SPEC_DIR_BOTH = 0,
  FW_SPEC_DIR_SOURCE = 1,
  FW_SPEC_DIR_DESTINATION = 2,
};

/// Header in front of a spec's body in the rule record: bits 0 and 1 dir, bit 2 negated, bits 3 to
/// 10 the kind, the rest zero. Kind 0 means that there is no spec in this place.
struct FWSpecHeader_ {
  host16 word;

  unsigned char dir() const { return static_cast<unsigned char>(word & 0x3); }
  bool negated() const { return (word & 0x4) != 0; }
  unsigned int kind() const { return (static_cast<unsigned int>(word) >> 3) & 0xff; }
};
static_assert(sizeof(FWSpecHeader_) == 2 && alignof(FWSpecHeader_) == 1);

/// Source or destination ports in the rule record.
struct FWPortBlock_ {
  FWSpecHeader_ header;   // +0
  std::uint8_t body[36];  // +2  an L4 port, range or set
};
static_assert(sizeof(FWPortBlock_) == 38 && alignof(FWPortBlock_) == 1);
static_assert(offsetof(FWPortBlock_, body) == 2);

/// Connection specs in the rule record. TCP flags and ICMP type share one place.
struct FWSessionBlock_ {
  host16 flags;                 //  +0  bit 0 stateless, 5 to 10 DSCP, 11 strict, 12 sloppy
  std::uint8_t reserved[2];     //  +2  zero
  FWSpecHeader_ flagsHeader;    //  +4  of the TCP flags or ICMP spec
  std::uint8_t flagsBody[6];    //  +6
  FWSpecHeader_ optionsHeader;  // +12  of the TCP options spec
  std::uint8_t options[42];     // +14
};
static_assert(sizeof(FWSessionBlock_) == 56 && alignof(FWSessionBlock_) == 1);
static_assert(offsetof(FWSessionBlock_, reserved) == 2 &&
              offsetof(FWSessionBlock_, flagsHeader) == 4 &&
              offsetof(FWSessionBlock_, flagsBody) == 6 &&
              offsetof(FWSessionBlock_, optionsHeader) == 12 &&
              offsetof(FWSessionBlock_, options) == 14);

/// Bits of FWSessionBlock_::flags.
inline constexpr std::uint16_t kSessionStateless = 0x0001;
inline constexpr unsigned int kSessionDSCPShift = 5;
inline constexpr std::uint16_t kSessionDSCPMask = 0x3f << kSessionDSCPShift;
inline constexpr std::uint16_t kSessionStrict = 0x0800;
inline constexpr std::uint16_t kSessionSloppy = 0x1000;

/// What a rule does with a packet that matches.
enum FWRuleAction_t : std::uint32_t {
  FW_ACTION_UNKNOWN = 0,
  FW_ACTION_ACCEPT = 1,
  FW_ACTION_DROP = 2,
  FW_ACTION_REJECT = 3,
  FW_ACTION_JUMPTO = 4,
  FW_ACTION_PUNT = 5,
  FW_ACTION_DIVERT = 6,
  FW_ACTION_SNAT = 7,
  FW_ACTION_DNAT = 8,
  FW_ACTION_MACREWRITE = 9,
  FW_ACTION_COPY = 10,
  FW_ACTION_ENCRYPT = 11,
  FW_ACTION_CLEAR = 12,
  FW_ACTION_LB = 13,
  FW_ACTION_PBR = 14,
};
inline constexpr unsigned int kRuleActions = 15;

/// Application whose helper follows the connections of a rule.
enum FWDynamicApp_t : std::uint32_t {
  FW_DYNAMIC_FTP = 1,
  FW_DYNAMIC_ORACLE = 2,
  FW_DYNAMIC_SUNRPC = 3,
  FW_DYNAMIC_DCERPC = 4,
};

/// How an address is chosen from a pool of translation addresses. A record may hold any value of 4
/// bits.
enum FWRulePoolOpt_t : std::uint32_t {
  FW_POOL_NONE = 0,
  FW_POOL_BITMASK = 1,
  FW_POOL_RANDOM = 2,
  FW_POOL_SOURCE_HASH = 3,
  FW_POOL_ROUND_ROBIN = 4,
  FW_POOL_TCP_CONN_BALANCE = 5,
};
/// Record of an action, as the kernel lays it out. What an action does not use is zero.
struct fw_rule_action_ {
  std::uint8_t data[144];  //   +0  FWAddress_ (snat, dnat), rule set id (jumpto), MAC (macrewrite)
  net16 port;              // +144  DNAT port or first port
  net16 lastPort;          // +146  DNAT last port
  std::uint8_t lbType;     // +148  load-balancer type
  std::uint8_t reserved149;  // +149  zero
  host16 lbIdleTimeout;      // +150
  host16 lbCloseTimeout;     // +152
  char lbOptions[128];       // +154  NUL-terminated
  std::uint8_t present;      // +282  bit 0 port, bit 1 last port, 2 to 5 pool option, 6 LB options
  std::uint8_t reserved283;  // +283  zero
  host16 poolValue;          // +284
  std::uint8_t reserved286[2];  // +286  zero
  host16 dynamicApp;            // +288  bits 0 to 3 flags, 4 to 11 application
  std::uint8_t action;          // +290  code
  host16 flags;                 // +291  kActionLog and its like
  char keyPolicy[37];           // +293  NUL-terminated, the last byte always zero
};
static_assert(sizeof(fw_rule_action_) == 330 && alignof(fw_rule_action_) == 1);
static_assert(
    offsetof(fw_rule_action_, port) == 144 && offsetof(fw_rule_action_, lastPort) == 146 &&
    offsetof(fw_rule_action_, lbType) == 148 && offsetof(fw_rule_action_, reserved149) == 149 &&
    offsetof(fw_rule_action_, lbIdleTimeout) == 150 &&
    offsetof(fw_rule_action_, lbCloseTimeout) == 152 &&
    offsetof(fw_rule_action_, lbOptions) == 154 && offsetof(fw_rule_action_, present) == 282 &&
    offsetof(fw_rule_action_, reserved283) == 283 && offsetof(fw_rule_action_, poolValue) == 284 &&
    offsetof(fw_rule_action_, reserved286) == 286 && offsetof(fw_rule_action_, dynamicApp) == 288 &&
    offsetof(fw_rule_action_, action) == 290 && offsetof(fw_rule_action_, flags) == 291 &&
    offsetof(fw_rule_action_, keyPolicy) == 293);

/// Bits of fw_rule_action_::flags.
inline constexpr std::uint16_t kActionLog = 0x0001;
inline constexpr std::uint16_t kActionCopy = 0x0002;
inline constexpr std::uint16_t kActionDynamic = 0x0004;
inline constexpr std::uint16_t kActionNoFlow = 0x0008;
inline constexpr std::uint16_t kActionRtt = 0x0010;
inline constexpr std::uint16_t kActionLBRule = 0x0100;
inline constexpr std::uint16_t kActionUnknownFlags = 0xfee0;

/// Bits of fw_rule_action_::present.
inline constexpr unsigned int kActionHasPort = 0x01;
inline constexpr unsigned int kActionHasLastPort = 0x02;
inline constexpr unsigned int kActionPoolShift = 2;
inline constexpr unsigned int kActionPoolMask = 0x0f;
inline constexpr unsigned int kActionHasLBOptions = 0x40;

/// Reference of a rule to a container by its name.
struct FWRuleProfile_ {
  host16 type;         // +0  written 0
  host16 flags;        // +2  bit 0 written 0
  FWAddrSetID_t name;  // +4  NUL-terminated
};
static_assert(sizeof(FWRuleProfile_) == 42 && alignof(FWRuleProfile_) == 1);
static_assert(offsetof(FWRuleProfile_, flags) == 2 && offsetof(FWRuleProfile_, name) == 4);

/// Record of a rule, as the kernel lays it out.
struct FWRule_ {
  host32 id;                        //   +0
  hosti32 position;                 //   +4  -1 when it has none
  host32 reserved8;                 //   +8  zero
  FWAddress_ source;                //  +12
  FWAddress_ destination;           // +156
  FWPortBlock_ sourcePorts;         // +300
  FWPortBlock_ destinationPorts;    // +338
  FWRuleProfile_ extendedSource;    // +376
  FWRuleProfile_ attributeProfile;  // +418
  fw_rule_action_ action;           // +460
  std::uint8_t flags;               // +790  kRuleHasSource and its like
  std::uint8_t moreFlags;           // +791  kRuleAFHigh
  std::uint8_t reserved792;         // +792  zero
  std::uint8_t origin;              // +793  kRuleAFDerived, kRuleInternal
  host16 protocol;                  // +794  host order for layer 3, network order for layer 2
  FWSessionBlock_ session;          // +796
  char tag[32];                     // +852  the last byte always zero
  host32 profileMode;               // +884  kProfileNone and its like
  host32 reserved888;               // +888  zero
};
static_assert(sizeof(FWRule_) == 892 && alignof(FWRule_) == 1);
static_assert(offsetof(FWRule_, id) == 0 && offsetof(FWRule_, position) == 4 &&
              offsetof(FWRule_, reserved8) == 8 && offsetof(FWRule_, source) == 12 &&
              offsetof(FWRule_, destination) == 156 && offsetof(FWRule_, sourcePorts) == 300 &&
              offsetof(FWRule_, destinationPorts) == 338 &&
              offsetof(FWRule_, extendedSource) == 376 &&
              offsetof(FWRule_, attributeProfile) == 418 && offsetof(FWRule_, action) == 460 &&
              offsetof(FWRule_, flags) == 790 && offsetof(FWRule_, moreFlags) == 791 &&
              offsetof(FWRule_, reserved792) == 792 && offsetof(FWRule_, origin) == 793 &&
              offsetof(FWRule_, protocol) == 794 && offsetof(FWRule_, session) == 796 &&
              offsetof(FWRule_, tag) == 852 && offsetof(FWRule_, profileMode) == 884 &&
              offsetof(FWRule_, reserved888) == 888);

/// Bits of FWRule_::flags. The direction stands in bits 5 and 6.
inline constexpr unsigned int kRuleHasSource = 0x01;
inline constexpr unsigned int kRuleHasDestination = 0x02;
inline constexpr unsigned int kRuleHasProtocol = 0x04;
inline constexpr unsigned int kRuleProtocolNegated = 0x08;
inline constexpr unsigned int kRuleLayer3 = 0x10;
inline constexpr unsigned int kRuleDirectionShift = 5;
inline constexpr unsigned int kRuleDirectionMask = 0x3;
inline constexpr unsigned int kRuleAFLowShift = 7;

/// Bit of FWRule_::moreFlags: the second bit of the address family.
inline constexpr unsigned int kRuleAFHigh = 0x01;

/// Bits of FWRule_::origin. The kernel alone sets the second.
inline constexpr unsigned int kRuleAFDerived = 0x10;
inline constexpr unsigned int kRuleInternal = 0x40;

/// Bits of FWRule_::profileMode.
inline constexpr unsigned int kProfileNone = 0x1;
inline constexpr unsigned int kProfileCopy = 0x2;
inline constexpr unsigned int kProfileExtendedSource = 0x4;
inline constexpr unsigned int kProfileAttribute = 0x8;

/// The address family of a record.
inline unsigned int ruleAF(const FWRule_& record) {
  return ((record.flags >> kRuleAFLowShift) & 1u) | ((record.moreFlags & kRuleAFHigh) << 1);
}

/// The number of a record: an IP protocol is in host order, an ethertype in network order.
inline std::uint16_t ruleProtocolNumber(std::uint16_t stored, bool layer3) {
  return layer3 ? stored : wire::networkToHost(stored);
}

}  // namespace TarnFirewall
