#pragma once

#include <cstddef>
#include <cstdint>

#include "TarnFWAddress.h"
#include "TarnFWProtocolSpec.h"
#include "TarnFWRuleAction.h"
#include "TarnFWTypes.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

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

/// The number of a record: an IP protocol is in host order, an ethertype in network order.
inline std::uint16_t ruleProtocolNumber(std::uint16_t stored, bool layer3) {
  return layer3 ? stored : wire::networkToHost(stored);
}

}  // namespace TarnFirewall
