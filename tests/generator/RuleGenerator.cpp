#include "RuleGenerator.h"

#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressAny.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressEtherMask.h"
#include "TarnFWAddressEtherRange.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv4Range.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWAddressIPv6Range.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionEncrypt.h"
#include "TarnFWRuleActionFactory.h"
#include "TarnFWRuleActionJumpto.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionMacRewrite.h"
#include "TarnFWRuleActionPbr.h"
#include "TarnFWRuleActionSNAT.h"

using namespace TarnFirewall;

namespace {

constexpr int kMac = 2;

in_addr v4(std::uint32_t host) { return in_addr{htonl(host)}; }

/// Two different ports, the lower first.
std::pair<unsigned short, unsigned short> portPair(Choices& choices) {
  const auto low = static_cast<unsigned short>(choices.below(65535));
  const auto high = static_cast<unsigned short>(low + 1 + choices.below(65535u - low));
  return {low, high};
}

in6_addr v6(Choices& choices) {
  in6_addr address{};
  for (auto& word : address.s6_addr32) {
    word = choices.chance(40) ? 0 : static_cast<std::uint32_t>(choices.bits());
  }
  return address;
}

fw_ether_ mac(Choices& choices) {
  fw_ether_ address{};
  for (auto& octet : address.octet) octet = choices.byte();
  return address;
}

std::unique_ptr<CTarnFWAddress> address4(Choices& choices, bool negated, RuleLosses* losses) {
  const auto host = static_cast<std::uint32_t>(choices.bits());
  switch (choices.below(3)) {
    case 0:
      return std::make_unique<CTarnFWAddressIPv4>(v4(host), negated);
    case 1: {
      const auto prefix = static_cast<unsigned char>(choices.below(33));
      const std::uint32_t mask = prefix == 0 ? 0 : ~std::uint32_t{0} << (32 - prefix);
      const std::uint32_t kept = choices.chance(70) ? host & mask : host;
      if ((kept & ~mask) != 0) losses->hostBits = true;
      return std::make_unique<CTarnFWAddressIPv4CIDR>(v4(kept), prefix, negated);
    }
    default: {
      const std::uint32_t first = std::min(host, ~std::uint32_t{0} - 1);
      const std::uint32_t last = first + 1 + choices.below(~std::uint32_t{0} - first);
      return std::make_unique<CTarnFWAddressIPv4Range>(v4(first), v4(last), negated);
    }
  }
}

std::unique_ptr<CTarnFWAddress> address6(Choices& choices, bool negated, RuleLosses* losses) {
  const in6_addr one = v6(choices);
  switch (choices.below(3)) {
    case 0:
      return std::make_unique<CTarnFWAddressIPv6>(one, negated);
    case 1: {
      const auto prefix = static_cast<unsigned char>(choices.below(129));
      in6_addr masked = one;
      for (unsigned int bit = prefix; bit < 128; ++bit) {
        auto& byte = masked.s6_addr[bit / 8];
        byte = static_cast<std::uint8_t>(byte & ~(0x80u >> (bit % 8)));
      }
      const bool keep = choices.chance(70);
      if (!keep && std::memcmp(&masked, &one, sizeof one) != 0) losses->hostBits = true;
      return std::make_unique<CTarnFWAddressIPv6CIDR>(keep ? masked : one, prefix, negated);
    }
    default: {
      // The records of ranges are tested word by word: no word of the last below the first's.
      in6_addr last = one;
      for (auto& word : last.s6_addr32) {
        const std::uint32_t host = ntohl(word);
        word = htonl(host + choices.below(~std::uint32_t{0} - host));
      }
      return std::make_unique<CTarnFWAddressIPv6Range>(one, last, negated);
    }
  }
}

std::unique_ptr<CTarnFWAddress> addressMac(Choices& choices, bool negated, RuleLosses* losses) {
  fw_ether_ first = mac(choices);
  fw_ether_ second = mac(choices);
  switch (choices.below(3)) {
    case 0:
      return std::make_unique<CTarnFWAddressEther>(first, negated);
    case 1:
      return std::make_unique<CTarnFWAddressEtherMask>(first, second, negated);
    default:
      // The last octet weighs most in a range.
      if (first.octet[5] == second.octet[5]) {
        first.octet[5] = 0;
        second.octet[5] = 1;
      }
      if (first.octet[5] > second.octet[5]) std::swap(first, second);
      losses->macRange = true;
      return std::make_unique<CTarnFWAddressEtherRange>(first, second, negated);
  }
}

}  // namespace

std::unique_ptr<CTarnFWAddress> RuleGenerator::address(int family, RuleLosses* losses) {
  const bool negated = choices_.chance(25);
  if (choices_.chance(20)) {
    return std::make_unique<CTarnFWAddrSetID>(choices_.name(37).c_str(), negated);
  }
  if (family == kMac) return addressMac(choices_, negated, losses);
  return family == 4 ? address4(choices_, negated, losses) : address6(choices_, negated, losses);
}

std::unique_ptr<CTarnFWProtocolSpec> RuleGenerator::ports(unsigned char dir) {
  const bool negated = choices_.chance(25);
  switch (choices_.below(3)) {
    case 0:
      return std::make_unique<CTarnFWProtocolSpecL4Port>(
          dir, static_cast<unsigned short>(choices_.below(65536)), negated);
    case 1: {
      const auto [low, high] = portPair(choices_);
      return std::make_unique<CTarnFWProtocolSpecL4PortRange>(dir, low, high, negated);
    }
    default: {
      auto set = std::make_unique<CTarnFWProtocolSpecL4PortSet>(dir, negated);
      for (unsigned int room = 1 + choices_.below(15); room > 0;) {
        if (room >= 2 && choices_.chance(40)) {
          const auto [low, high] = portPair(choices_);
          set->addPortRange(low, high);
          room -= 2;
        } else {
          set->addPort(static_cast<unsigned short>(choices_.below(65536)));
          --room;
        }
      }
      return set;
    }
  }
}

std::unique_ptr<CTarnFWAddress> RuleGenerator::natAddress(int family, RuleLosses* losses) {
  return address(family == kMac ? 4 : family, losses);
}

std::unique_ptr<CTarnFWRuleAction> RuleGenerator::actionWithData(unsigned int code, int family,
                                                                 RuleLosses* losses) {
  const auto pool = static_cast<FWRulePoolOpt_t>(choices_.below(kPoolOptions));
  const auto value = static_cast<unsigned short>(choices_.below(65536));
  switch (code) {
    case FW_ACTION_JUMPTO:
      return std::make_unique<CTarnFWRuleActionJumpto>(choices_.name(63).c_str());
    case FW_ACTION_SNAT:
      return std::make_unique<CTarnFWRuleActionSNAT>(natAddress(family, losses));
    case FW_ACTION_DNAT: {
      auto [low, high] = portPair(choices_);
      if (choices_.chance(10)) high = low;
      auto target = natAddress(family, losses);
      switch (choices_.below(3)) {
        case 0:
          return std::make_unique<CTarnFWRuleActionDNAT>(std::move(target), pool, value);
        case 1:
          return std::make_unique<CTarnFWRuleActionDNAT>(std::move(target), pool, low, value);
        default:
          return std::make_unique<CTarnFWRuleActionDNAT>(std::move(target), pool, low, high, value);
      }
    }
    case FW_ACTION_MACREWRITE:
      return std::make_unique<CTarnFWRuleActionMacRewrite>(mac(choices_).octet);
    case FW_ACTION_LB: {
      const auto type = static_cast<unsigned short>(choices_.below(3));
      const auto idle =
          static_cast<unsigned short>(choices_.chance(50) ? choices_.below(65536) : 0);
      if (choices_.chance(50)) {
        return std::make_unique<CTarnFWRuleActionLB>(type, idle, value, choices_.name(127).c_str());
      }
      losses->lbWithoutOptions = true;
      return std::make_unique<CTarnFWRuleActionLB>(type, idle, value);
    }
    case FW_ACTION_ENCRYPT:
      return std::make_unique<CTarnFWRuleActionEncrypt>(choices_.chance(10) ? ""
                                                                            : choices_.name(36));
    default:
      return std::make_unique<CTarnFWRuleActionPbr>(choices_.name(36));
  }
}

std::unique_ptr<CTarnFWRuleAction> RuleGenerator::action(bool layer3, bool out, int family,
                                                         RuleLosses* losses) {
  unsigned int code = 1 + choices_.below(kRuleActions - 1);
  if (!layer3 && (code == FW_ACTION_SNAT || code == FW_ACTION_DNAT || code == FW_ACTION_LB)) {
    code = FW_ACTION_ACCEPT;
  }
  if (code == FW_ACTION_SNAT && !out) code = FW_ACTION_DNAT;
  std::unique_ptr<CTarnFWRuleAction> made;
  switch (code) {
    case FW_ACTION_JUMPTO:
    case FW_ACTION_SNAT:
    case FW_ACTION_DNAT:
    case FW_ACTION_MACREWRITE:
    case FW_ACTION_LB:
    case FW_ACTION_ENCRYPT:
    case FW_ACTION_PBR:
      made = actionWithData(code, family, losses);
      break;
    default: {
      // The plain actions are made by the factory, which every rule that is read goes through.
      fw_rule_action_ record{};
      record.action = static_cast<std::uint8_t>(code);
      made = CTarnFWRuleActionFactory::newFromMsgBuf(&record);
    }
  }
  if (choices_.chance(25)) made->enableLogPacket();
  if (choices_.chance(15)) made->enableCopyPacket();
  if (choices_.chance(15)) made->enableNoFlow();
  if (choices_.chance(15)) made->enableRtt();
  if (choices_.chance(15)) made->enableLBRule();
  if (choices_.chance(15)) made->enableDynamic(1 + choices_.below(4));
  return made;
}

void RuleGenerator::addSpecs(CTarnFWRuleBuilder& builder, bool tcp, bool icmp, RuleLosses* losses) {
  if (choices_.chance(15)) builder.setStateless();
  if (choices_.chance(10)) {
    const auto value = static_cast<unsigned char>(choices_.below(64));
    builder.addProtocolSpec(std::make_unique<CTarnFWProtocolSpecDSCP>(value));
    losses->dscp = true;
  }
  if (tcp) {
    const bool strict = choices_.chance(20);
    const bool strictFirst = choices_.chance(50);
    if (strict && strictFirst) builder.setStrict();
    if (choices_.chance(15)) {
      builder.setSloppy();
      losses->specOrder = strict && strictFirst;
    }
    if (strict && !strictFirst) builder.setStrict();
    if (choices_.chance(25)) {
      const auto flags = static_cast<unsigned short>(choices_.below(512));
      builder.addProtocolSpec(
          std::make_unique<CTarnFWProtocolSpecTCPFlags>(0, flags, choices_.chance(25)));
    }
    if (choices_.chance(10)) {
      const std::string options = choices_.name(40);
      builder.addProtocolSpec(std::make_unique<CTarnFWProtocolSpecTCPOptions>(
          0, options.data(), static_cast<unsigned int>(options.size()), choices_.chance(25)));
      losses->tcpOptions = true;
    }
  }
  if (icmp && choices_.chance(70)) {
    const std::uint8_t type = choices_.byte();
    if (choices_.chance(50)) {
      builder.addICMPType(type, choices_.chance(25));
    } else {
      builder.addICMPTypeCode(type, choices_.byte(), choices_.chance(25));
    }
  }
}

std::unique_ptr<CTarnFWRule> RuleGenerator::rule(RuleLosses* losses) {
  *losses = RuleLosses{};
  CTarnFWRuleBuilder builder;
  builder.setId(static_cast<unsigned int>(choices_.bits()));
  builder.setPosition(choices_.chance(30) ? -1 : static_cast<int>(choices_.below(1u << 31)));
  const auto direction = static_cast<FWRuleDirection_t>(choices_.below(3));
  builder.setDirection(direction);
  const bool layer3 = choices_.chance(75);
  const int family = !layer3 ? kMac : choices_.chance(50) ? 4 : 6;
  builder.setType(layer3);
  unsigned short number = 0;
  bool negated = false;
  const bool defined = choices_.chance(80);
  if (defined) {
    static constexpr unsigned short common[] = {6, 6, 17, 17, 1, 58};
    number = layer3 ? choices_.chance(70) ? common[choices_.below(6)] : choices_.byte()
                    : static_cast<unsigned short>(choices_.below(65536));
    negated = choices_.chance(15);
    builder.setProtocol(number, negated);
  }
  const bool plain = layer3 && defined && !negated;
  addSpecs(builder, plain && number == 6, plain && (number == 1 || number == 58), losses);
  if (choices_.chance(75)) builder.setSource(address(family, losses));
  if (choices_.chance(75)) {
    builder.setDest(address(family, losses));
  } else if (choices_.chance(20)) {
    builder.setDest(std::make_unique<CTarnFWAddressAny>());
  }
  if (plain && (number == 6 || number == 17)) {
    if (choices_.chance(50)) builder.setSourcePort(ports(1));
    if (choices_.chance(50)) builder.setDestPort(ports(2));
  }
  if (family != kMac && choices_.chance(15)) builder.setInetAF(family == 6);
  if (choices_.chance(10)) {
    builder.setExtendedSource(std::make_unique<CTarnFWContainerID>(choices_.name(37)));
  }
  if (choices_.chance(10)) {
    builder.setAttributeProfile(std::make_unique<CTarnFWContainerID>(choices_.name(37)));
  }
  if (choices_.chance(25)) builder.setTag(choices_.name(31));
  builder.setAction(action(layer3, direction == FW_DIRECTION_OUT, family, losses));
  return builder.buildRule();
}
