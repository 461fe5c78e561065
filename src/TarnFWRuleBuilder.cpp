#include "TarnFWRuleBuilder.h"

#include <cstring>

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionClear.h"
#include "TarnFWRuleActionCopy.h"
#include "TarnFWRuleActionDivert.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionEncrypt.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionPbr.h"
#include "TarnFWRuleActionPunt.h"
#include "TarnFWRuleActionReject.h"
#include "TarnFWRuleCheck.h"

namespace TarnFirewall {

namespace {

/// Kinds that only TCP has, as far as the builder looks: strict and sloppy are left to the rule.
constexpr SpecKinds kTCPKinds = specKind(FW_SPEC_TCP_FLAGS) | specKind(FW_SPEC_TCP_OPTIONS);

/// The port set of an end, made where there is nothing.
CTarnFWProtocolSpecL4PortSet& requireSet(CTarnFWProtocolSpecList& port) {
  if (port.empty())
    port.setSpec(std::make_unique<CTarnFWProtocolSpecL4PortSet>(port.getDir(), false));
  if (port.first()->getSpecType() != FW_SPEC_L4_PORT_SET)
    throw CUnsupportedException("cannot add a port to what is no port set");
  return static_cast<CTarnFWProtocolSpecL4PortSet&>(*port.first());
}

void negatePort(const CTarnFWProtocolSpecList& port) {
  if (port.empty()) throw CUnsupportedException("no port is defined");
  port.first()->setNegated(true);
}

void setTag(FWRuleParts& parts, const std::string& tag) {
  if (tag.size() > FWRuleTag::kLength) {
    TARNFW_WARNING("rule tag is longer than %d chars: %s\n\n", static_cast<int>(FWRuleTag::kLength),
                   tag.c_str());
  }
  parts.setTag(tag);
}

void readParts(const FWRule_& record, FWRuleParts& parts, CTarnFWLoadMemory* memory) {
  readRuleRecord(record, parts, memory);
  if (record.tag[0] != '\0')
    setTag(parts, std::string(record.tag, fieldLength(record.tag, sizeof record.tag)));
}

/// Whether an end has a spec that is no port. Without one the rule's own checks find all that these
/// here do, in the same order.
bool hasOtherSpec(const CTarnFWProtocolSpecList& ports) {
  return (ports.getKinds() & ~kPortKinds) != 0;
}

CTarnFWRuleAction& requireActionOf(const FWRuleParts& parts) {
  if (!parts.action) throw CUnsupportedException("no action is defined");
  return *parts.action;
}

void checkSpecs(const FWRuleParts& parts) {
  checkRuleSpecs(requireProtocol(parts), parts.connection.getKinds(),
                 !parts.sourcePorts.empty() || !parts.destinationPorts.empty(), kTCPKinds);
}

/// Not left to the rule alone, which makes other checks: here any spec at an end counts as a port,
/// there strict and sloppy are for TCP only.
void check(const FWRuleParts& parts) {
  requireProtocol(parts);
  checkRuleParts(parts, requireActionOf(parts).getAction());
  checkSpecs(parts);
}

}  // namespace

void CTarnFWRuleBuilder::setDirection(FWRuleDirection_t direction) {
  parts_.direction = checkedDirection(direction);
}

void CTarnFWRuleBuilder::setTag(const std::string& tag) { TarnFirewall::setTag(parts_, tag); }

void CTarnFWRuleBuilder::setTag(const char* tag) { setTag(std::string(tag != nullptr ? tag : "")); }

void CTarnFWRuleBuilder::setType(bool layer3) {
  setProtocol(CTarnFWProtocol(protocolLayer(layer3)));
}

void CTarnFWRuleBuilder::setProtocol(unsigned short number, bool negated) {
  requireProtocol(parts_);
  parts_.protocol->setProtocol(number, negated);
}

CTarnFWRuleAction& CTarnFWRuleBuilder::requireAction() const { return requireActionOf(parts_); }

void CTarnFWRuleBuilder::setAction(FWRuleAction_t action, std::string keyPolicy) {
  switch (action) {
    case FW_ACTION_ACCEPT:
      parts_.action = std::make_unique<CTarnFWRuleActionAccept>();
      break;
    case FW_ACTION_DROP:
      parts_.action = std::make_unique<CTarnFWRuleActionDrop>();
      break;
    case FW_ACTION_REJECT:
      parts_.action = std::make_unique<CTarnFWRuleActionReject>();
      break;
    case FW_ACTION_PUNT:
      parts_.action = std::make_unique<CTarnFWRuleActionPunt>();
      break;
    case FW_ACTION_DIVERT:
      parts_.action = std::make_unique<CTarnFWRuleActionDivert>();
      break;
    case FW_ACTION_COPY:
      parts_.action = std::make_unique<CTarnFWRuleActionCopy>();
      break;
    case FW_ACTION_CLEAR:
      parts_.action = std::make_unique<CTarnFWRuleActionClear>();
      break;
    case FW_ACTION_ENCRYPT:
    case FW_ACTION_PBR:
      if (keyPolicy.empty()) TARNFW_WARNING("Adding Empty Key Policy \n\n");
      if (action == FW_ACTION_ENCRYPT) {
        parts_.action = std::make_unique<CTarnFWRuleActionEncrypt>(std::move(keyPolicy));
      } else {
        parts_.action = std::make_unique<CTarnFWRuleActionPbr>(std::move(keyPolicy));
      }
      break;
    default:
      break;
  }
}

void CTarnFWRuleBuilder::setAction(unsigned short type, unsigned short idleTimeout,
                                   unsigned short closeTimeout, const char* options) {
  if (options != nullptr && *options != '\0') {
    parts_.action = std::make_unique<CTarnFWRuleActionLB>(type, idleTimeout, closeTimeout, options);
  } else {
    parts_.action = std::make_unique<CTarnFWRuleActionLB>(type, idleTimeout, closeTimeout);
  }
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(
    std::unique_ptr<CTarnFWAddress> address) {
  return address;
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(const char* setName) {
  return std::make_unique<CTarnFWAddrSetID>(setName, false);
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(unsigned int ip,
                                                                unsigned char prefix) {
  const in_addr address{ip};
  if (prefix == 32) return std::make_unique<CTarnFWAddressIPv4>(address, false);
  return std::make_unique<CTarnFWAddressIPv4CIDR>(address, prefix, false);
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(const unsigned int* ip6,
                                                                unsigned char prefix) {
  in6_addr address;
  std::memcpy(&address, ip6, sizeof address);
  if (prefix == 128) return std::make_unique<CTarnFWAddressIPv6>(address, false);
  return std::make_unique<CTarnFWAddressIPv6CIDR>(address, prefix, false);
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(unsigned long mac) {
  unsigned char bytes[sizeof mac];
  std::memcpy(bytes, &mac, sizeof mac);
  return makeAddress(bytes);
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleBuilder::makeAddress(const unsigned char* mac) {
  return std::make_unique<CTarnFWAddressEther>(loadRecord<fw_ether_>(mac), false);
}

void CTarnFWRuleBuilder::negate(std::unique_ptr<CTarnFWAddress>& address) {
  if (address) address->setNegated(true);
}

void CTarnFWRuleBuilder::setSourcePort(unsigned short low, unsigned short high, bool negated) {
  setSourcePort(
      std::make_unique<CTarnFWProtocolSpecL4PortRange>(FW_SPEC_DIR_SOURCE, low, high, negated));
}

void CTarnFWRuleBuilder::setSourcePort(unsigned short port, bool negated) {
  setSourcePort(std::make_unique<CTarnFWProtocolSpecL4Port>(FW_SPEC_DIR_SOURCE, port, negated));
}

void CTarnFWRuleBuilder::setDestPort(unsigned short low, unsigned short high, bool negated) {
  setDestPort(std::make_unique<CTarnFWProtocolSpecL4PortRange>(FW_SPEC_DIR_DESTINATION, low, high,
                                                               negated));
}

void CTarnFWRuleBuilder::setDestPort(unsigned short port, bool negated) {
  setDestPort(std::make_unique<CTarnFWProtocolSpecL4Port>(FW_SPEC_DIR_DESTINATION, port, negated));
}

void CTarnFWRuleBuilder::addSourcePort(unsigned short low, unsigned short high) {
  requireSet(parts_.sourcePorts).addPortRange(low, high);
}

void CTarnFWRuleBuilder::addSourcePort(unsigned short port) {
  requireSet(parts_.sourcePorts).addPort(port);
}

void CTarnFWRuleBuilder::addDestPort(unsigned short low, unsigned short high) {
  requireSet(parts_.destinationPorts).addPortRange(low, high);
}

void CTarnFWRuleBuilder::addDestPort(unsigned short port) {
  requireSet(parts_.destinationPorts).addPort(port);
}

void CTarnFWRuleBuilder::negateSourcePort() { negatePort(parts_.sourcePorts); }

void CTarnFWRuleBuilder::negateDestPort() { negatePort(parts_.destinationPorts); }

void CTarnFWRuleBuilder::addProtocolSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  parts_.connection.addSpec(std::move(spec));
}

void CTarnFWRuleBuilder::setStateless() {
  addProtocolSpec(std::make_unique<CTarnFWProtocolSpecStateless>());
}

void CTarnFWRuleBuilder::setSloppy() {
  addProtocolSpec(std::make_unique<CTarnFWProtocolSpecSloppy>());
}

void CTarnFWRuleBuilder::setStrict() {
  addProtocolSpec(std::make_unique<CTarnFWProtocolSpecStrict>());
}

void CTarnFWRuleBuilder::addICMPType(unsigned char type, bool negated) {
  addProtocolSpec(std::make_unique<CTarnFWProtocolSpecICMPType>(FW_SPEC_DIR_BOTH, type, negated));
}

void CTarnFWRuleBuilder::addICMPTypeCode(unsigned char type, unsigned char code, bool negated) {
  addProtocolSpec(
      std::make_unique<CTarnFWProtocolSpecICMPType>(FW_SPEC_DIR_BOTH, type, code, negated));
}

void CTarnFWRuleBuilder::addTCPFlags(unsigned char flags, bool negated) {
  addProtocolSpec(std::make_unique<CTarnFWProtocolSpecTCPFlags>(FW_SPEC_DIR_BOTH, flags, negated));
}

void CTarnFWRuleBuilder::validateRule() const { check(parts_); }

void CTarnFWRuleBuilder::validateProtocolSpec() const { checkSpecs(parts_); }

std::unique_ptr<CTarnFWRule> CTarnFWRuleBuilder::buildRule() {
  try {
    validateRule();
    const FWRuleAF_t af = parts_.af;
    FWRuleParts next = freshParts();
    auto rule = std::make_unique<CTarnFWRule>(std::move(parts_));
    parts_ = std::move(next);
    rule->setAF(af);
    return rule;
  } catch (const CTarnFWException& e) {
    TARNFW_ERROR("buildRule error %d: %s\n", e.retcode(), e.what());
    return nullptr;
  }
}

std::unique_ptr<CTarnFWRule> CTarnFWRuleBuilder::buildRule(const FWRule_& record,
                                                           CTarnFWLoadMemory* memory) {
  bool read = false;
  try {
    return makeIn<CTarnFWRule>(memory, [&] {
      FWRuleParts parts;
      readParts(record, parts, memory);
      read = true;
      if (hasOtherSpec(parts.sourcePorts) || hasOtherSpec(parts.destinationPorts)) check(parts);
      return parts;
    });
  } catch (const CTarnFWException& e) {
    if (!read) throw;
    TARNFW_ERROR("buildRule error %d: %s\n", e.retcode(), e.what());
    return nullptr;
  }
}

FWRuleParts CTarnFWRuleBuilder::freshParts() const {
  FWRuleParts fresh;
  if (parts_.extras && !parts_.extras->tag.empty()) fresh.makeExtras().tag = parts_.extras->tag;
  return fresh;
}

void CTarnFWRuleBuilder::init() { parts_ = freshParts(); }

void CTarnFWRuleBuilder::init(const FWRule_* record) {
  init();
  read(*record);
}

void CTarnFWRuleBuilder::read(const FWRule_& record) { readParts(record, parts_, nullptr); }

}  // namespace TarnFirewall
