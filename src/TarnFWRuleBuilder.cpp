#include "TarnFWRuleBuilder.h"

#include <cstring>

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWProtocolSpecFactory.h"
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
#include "TarnFWRuleActionFactory.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionPbr.h"
#include "TarnFWRuleActionPunt.h"
#include "TarnFWRuleActionReject.h"
#include "TarnFWRuleCheck.h"

namespace TarnFirewall {

namespace {

constexpr std::size_t kTagLength = 31;

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

/// Container ids of a record are taken as they stand.
std::unique_ptr<CTarnFWContainerID> readProfile(const FWRuleProfile_& record) {
  return std::make_unique<CTarnFWContainerID>(record.name);
}

}  // namespace

void CTarnFWRuleBuilder::setDirection(FWRuleDirection_t direction) {
  if (direction > FW_DIRECTION_OUT)
    throw CInvalidRuleDirectionException(static_cast<int>(direction));
  direction_ = direction;
}

void CTarnFWRuleBuilder::setTag(const std::string& tag) {
  if (tag.size() > kTagLength) {
    TARNFW_WARNING("rule tag is longer than %d chars: %s\n\n", static_cast<int>(kTagLength),
                   tag.c_str());
  }
  tag_.assign(tag, 0, kTagLength);
}

void CTarnFWRuleBuilder::setTag(const char* tag) { setTag(std::string(tag != nullptr ? tag : "")); }

void CTarnFWRuleBuilder::setType(bool layer3) { setProtocol(CTarnFWProtocol(layer3)); }

void CTarnFWRuleBuilder::setProtocol(unsigned short number, bool negated) {
  requireProtocol();
  protocol_.setProtocol(number, negated);
}

const CTarnFWProtocol& CTarnFWRuleBuilder::requireProtocol() const {
  if (!hasProtocol_) throw CUnsupportedException("no protocol is defined");
  return protocol_;
}

CTarnFWRuleAction& CTarnFWRuleBuilder::requireAction() const {
  if (!action_) throw CUnsupportedException("no action is defined");
  return *action_;
}

void CTarnFWRuleBuilder::setAction(FWRuleAction_t action, std::string keyPolicy) {
  switch (action) {
    case FW_ACTION_ACCEPT:
      action_ = std::make_unique<CTarnFWRuleActionAccept>();
      break;
    case FW_ACTION_DROP:
      action_ = std::make_unique<CTarnFWRuleActionDrop>();
      break;
    case FW_ACTION_REJECT:
      action_ = std::make_unique<CTarnFWRuleActionReject>();
      break;
    case FW_ACTION_PUNT:
      action_ = std::make_unique<CTarnFWRuleActionPunt>();
      break;
    case FW_ACTION_DIVERT:
      action_ = std::make_unique<CTarnFWRuleActionDivert>();
      break;
    case FW_ACTION_COPY:
      action_ = std::make_unique<CTarnFWRuleActionCopy>();
      break;
    case FW_ACTION_CLEAR:
      action_ = std::make_unique<CTarnFWRuleActionClear>();
      break;
    case FW_ACTION_ENCRYPT:
    case FW_ACTION_PBR:
      if (keyPolicy.empty()) TARNFW_WARNING("Adding Empty Key Policy \n\n");
      if (action == FW_ACTION_ENCRYPT) {
        action_ = std::make_unique<CTarnFWRuleActionEncrypt>(std::move(keyPolicy));
      } else {
        action_ = std::make_unique<CTarnFWRuleActionPbr>(std::move(keyPolicy));
      }
      break;
    default:
      break;
  }
}

void CTarnFWRuleBuilder::setAction(unsigned short type, unsigned short idleTimeout,
                                   unsigned short closeTimeout, const char* options) {
  if (options != nullptr && *options != '\0') {
    action_ = std::make_unique<CTarnFWRuleActionLB>(type, idleTimeout, closeTimeout, options);
  } else {
    action_ = std::make_unique<CTarnFWRuleActionLB>(type, idleTimeout, closeTimeout);
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
  requireSet(sourcePort_).addPortRange(low, high);
}

void CTarnFWRuleBuilder::addSourcePort(unsigned short port) {
  requireSet(sourcePort_).addPort(port);
}

void CTarnFWRuleBuilder::addDestPort(unsigned short low, unsigned short high) {
  requireSet(destPort_).addPortRange(low, high);
}

void CTarnFWRuleBuilder::addDestPort(unsigned short port) { requireSet(destPort_).addPort(port); }

void CTarnFWRuleBuilder::negateSourcePort() { negatePort(sourcePort_); }

void CTarnFWRuleBuilder::negateDestPort() { negatePort(destPort_); }

void CTarnFWRuleBuilder::addProtocolSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  connection_.addSpec(std::move(spec));
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

void CTarnFWRuleBuilder::validateRule() const {
  const CTarnFWProtocol& protocol = requireProtocol();
  const FWRuleAction_t action = requireAction().getAction();
  checkRuleParts(protocol, action, direction_, source_.get(), destination_.get());
  validateProtocolSpec();
}

void CTarnFWRuleBuilder::validateProtocolSpec() const {
  checkRuleSpecs(requireProtocol(), connection_.getKinds(),
                 !sourcePort_.empty() || !destPort_.empty(), kTCPKinds);
}

std::unique_ptr<CTarnFWRule> CTarnFWRuleBuilder::buildRule() {
  try {
    // The rest of validateRule is left to the rule, which makes the same checks in the same order,
    // with the same words and more of them, before it takes anything.
    const CTarnFWProtocol& protocol = requireProtocol();
    requireAction();
    auto rule = std::make_unique<CTarnFWRule>(
        id_, position_, direction_, protocol, std::move(connection_), std::move(source_),
        std::move(sourcePort_), std::move(destination_), std::move(destPort_), std::move(action_),
        std::move(extendedSource_), std::move(attributeProfile_));
    hasProtocol_ = false;
    if (af_ != FW_AF_NONE) rule->setAF(af_);
    if (!tag_.empty()) rule->setTag(tag_.c_str());
    if (internal_) rule->setInternal();
    initHead();
    return rule;
  } catch (const CTarnFWException& e) {
    TARNFW_ERROR("buildRule error %d: %s\n", e.retcode(), e.what());
    return nullptr;
  }
}

void CTarnFWRuleBuilder::initHead() {
  id_ = 0;
  internal_ = false;
  position_ = 0;
  direction_ = FW_DIRECTION_INOUT;
  af_ = FW_AF_NONE;
}

void CTarnFWRuleBuilder::init() {
  initHead();
  hasProtocol_ = false;
  action_.reset();
  source_.reset();
  destination_.reset();
  sourcePort_.clear();
  destPort_.clear();
  connection_.clear();
  extendedSource_.reset();
  attributeProfile_.reset();
}

void CTarnFWRuleBuilder::init(const FWRule_* record) {
  init();
  const unsigned int flags = record->flags;
  setDirection(static_cast<FWRuleDirection_t>((flags >> kRuleDirectionShift) & kRuleDirectionMask));
  setPosition(record->position);
  setId(record->id);
  const bool layer3 = (flags & kRuleLayer3) != 0;
  setType(layer3);
  if ((flags & kRuleHasProtocol) != 0) {
    setProtocol(ruleProtocolNumber(record->protocol, layer3), (flags & kRuleProtocolNegated) != 0);
  }
  if ((flags & kRuleHasSource) != 0)
    setSource(CTarnFWAddressFactory::newFromMsgBuf(&record->source));
  if ((flags & kRuleHasDestination) != 0)
    setDest(CTarnFWAddressFactory::newFromMsgBuf(&record->destination));

  // Places of specs are given by their offsets, since the last one reaches over its fields.
  const auto specAt = [record](std::size_t offset, unsigned int size) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(record);
    return CTarnFWProtocolSpecFactory::newFromMsgBuf(bytes + offset, size);
  };
  if (auto port = specAt(offsetof(FWRule_, sourcePorts), sizeof record->sourcePorts))
    setSourcePort(std::move(port));
  if (auto port = specAt(offsetof(FWRule_, destinationPorts), sizeof record->destinationPorts))
    setDestPort(std::move(port));
  const unsigned int session = record->session.flags;
  if ((session & kSessionStateless) != 0) setStateless();
  if ((session & kSessionSloppy) != 0) setSloppy();
  if ((session & kSessionStrict) != 0) setStrict();
  if (auto spec = specAt(800, 52)) addProtocolSpec(std::move(spec));
  // The writer puts the header of TCP options at 808; here their length word is taken for it. Rules
  // that the kernel holds have been read so from the start: this is meant.
  if (auto spec = specAt(810, 44)) addProtocolSpec(std::move(spec));

  setAction(CTarnFWRuleActionFactory::newFromMsgBuf(&record->action));
  if (record->tag[0] != '\0')
    setTag(std::string(record->tag, fieldLength(record->tag, sizeof record->tag)));
  const unsigned int mode = record->profileMode;
  if ((mode & kProfileExtendedSource) != 0) setExtendedSource(readProfile(record->extendedSource));
  if ((mode & kProfileAttribute) != 0) setAttributeProfile(readProfile(record->attributeProfile));
}

}  // namespace TarnFirewall
