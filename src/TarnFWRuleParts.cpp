#include "TarnFWRuleParts.h"

#include "TarnFWAddressFactory.h"
#include "TarnFWException.h"
#include "TarnFWProtocolSpecFactory.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWRuleActionFactory.h"

namespace TarnFirewall {

namespace {

// ---- writing

/// An address of type "any" is left out, since the kernel has no record for it.
bool writeAddress(CTarnFWAddress* address, FWAddress_& record, unsigned int bit,
                  unsigned int& flags) {
  if (address == nullptr || address->getType() == FW_ADDRESS_ANY) return true;
  flags |= bit;
  unsigned int written = 0;
  return address->toMessage(&record, sizeof record, &written);
}

bool writeAction(CTarnFWRuleAction* action, fw_rule_action_& record) {
  if (action != nullptr) return action->writeTo(record);
  record.action = FW_ACTION_ACCEPT;
  return true;
}

bool addressFits(const CTarnFWAddress* address) {
  return address == nullptr || address->getMsgSize() <= sizeof(FWAddress_);
}

/// The mode bit of a container reference that is there, and its name in the record.
unsigned int writeProfile(const CTarnFWContainerID* id, FWRuleProfile_& record, unsigned int bit) {
  if (id == nullptr) return 0;
  id->getContainerID().copy(record.name.text, sizeof record.name.text - 1);
  return bit;
}

/// Whether the record is that of a rule that accepts everything of layer 3.
bool isDefaultRule(const FWRule_& record) {
  const unsigned int parts = kRuleHasSource | kRuleHasDestination | kRuleHasProtocol;
  return (record.flags & (parts | kRuleLayer3)) == kRuleLayer3 &&
         record.profileMode == kProfileNone && record.action.action == FW_ACTION_ACCEPT;
}

// ---- reading

/// Whether a spec's header stands here. Most places have none.
bool holdsSpec(const void* place) {
  return loadRecord<FWSpecHeader_>(place).kind() != FW_SPEC_NONE;
}

/// The spec whose header stands here, with `size` bytes for both.
std::unique_ptr<CTarnFWProtocolSpec> readSpec(const void* place, std::size_t size,
                                              CTarnFWLoadMemory* memory) {
  return CTarnFWProtocolSpecFactory::newFromMsgBuf(place, static_cast<unsigned int>(size), memory);
}

void readPorts(const FWPortBlock_& block, CTarnFWProtocolSpecList& list,
               CTarnFWLoadMemory* memory) {
  if (holdsSpec(&block)) list.setSpec(readSpec(&block, sizeof block, memory));
}

void readSession(const FWRule_& record, CTarnFWProtocolSpecList& list, CTarnFWLoadMemory* memory) {
  const unsigned int bits = record.session.flags;
  if ((bits & kSessionStateless) != 0) list.addSpec(makeIn<CTarnFWProtocolSpecStateless>(memory));
  if ((bits & kSessionSloppy) != 0) list.addSpec(makeIn<CTarnFWProtocolSpecSloppy>(memory));
  if ((bits & kSessionStrict) != 0) list.addSpec(makeIn<CTarnFWProtocolSpecStrict>(memory));
  const auto* const session =
      reinterpret_cast<const std::uint8_t*>(&record) + offsetof(FWRule_, session);
  const auto* const flags = session + offsetof(FWSessionBlock_, flagsHeader);
  const auto* const options = session + offsetof(FWSessionBlock_, options);
  if (holdsSpec(flags)) {
    constexpr std::size_t size = sizeof record.session - offsetof(FWSessionBlock_, flagsHeader);
    list.addSpec(readSpec(flags, size, memory));
  }
  // The writer puts the header of TCP options in front of their field; here the length word with
  // which the field begins is taken for the header, and the body reaches into the tag. Programs
  // that list rules depend on what the rules of the kernel have been read as from the start.
  if (holdsSpec(options)) {
    constexpr std::size_t size = sizeof(FWSpecHeader_) + sizeof record.session.options;
    list.addSpec(readSpec(options, size, memory));
  }
}

/// Container ids of a record are taken as they stand.
std::unique_ptr<CTarnFWContainerID> readProfile(const FWRuleProfile_& record) {
  return std::make_unique<CTarnFWContainerID>(record.name);
}

}  // namespace

FWRuleDirection_t checkedDirection(FWRuleDirection_t direction) {
  if (direction > FW_DIRECTION_OUT)
    throw CInvalidRuleDirectionException(static_cast<int>(direction));
  return direction;
}

bool writeRuleRecord(FWRuleParts& parts, FWRule_& record, bool traced) {
  record.id = parts.id;
  record.position = parts.position;
  if (parts.extras) std::memcpy(record.tag, parts.extras->tag.text, sizeof record.tag);

  unsigned int flags = (parts.direction & kRuleDirectionMask) << kRuleDirectionShift;
  const CTarnFWProtocolMatch& protocol = *parts.protocol;
  if (protocol.isLayer3()) flags |= kRuleLayer3;
  if (protocol.isDefined()) {
    flags |= kRuleHasProtocol;
    record.protocol = ruleProtocolNumber(protocol.getNumber(), protocol.isLayer3());
    if (protocol.isNegated()) flags |= kRuleProtocolNegated;
  }
  parts.connection.writeSession(record.session, traced);
  if (!writeAction(parts.action.get(), record.action) ||
      !writeAddress(parts.source.get(), record.source, kRuleHasSource, flags) ||
      !writeAddress(parts.destination.get(), record.destination, kRuleHasDestination, flags)) {
    return false;
  }

  unsigned int af = parts.af;
  if (af == FW_AF_NONE) {
    if (eitherAddressIs<&CTarnFWAddress::isIPv4Address>(parts)) af = FW_AF_INET;
    if (eitherAddressIs<&CTarnFWAddress::isIPv6Address>(parts)) af = FW_AF_INET6;
    if (af != FW_AF_NONE) record.origin = kRuleAFDerived;
  }
  record.flags = static_cast<std::uint8_t>(flags | (af & 1) << kRuleAFLowShift);
  record.moreFlags = static_cast<std::uint8_t>((af >> 1) & kRuleAFHigh);

  parts.sourcePorts.writePorts(record.sourcePorts, traced);
  parts.destinationPorts.writePorts(record.destinationPorts, traced);
  const unsigned int mode =
      writeProfile(parts.extendedSource(), record.extendedSource, kProfileExtendedSource) |
      writeProfile(parts.attributeProfile(), record.attributeProfile, kProfileAttribute);
  record.profileMode = mode != 0 ? mode : kProfileNone;
  if (isDefaultRule(record)) record.profileMode = kProfileCopy;
  return true;
}

bool fitsIntoRecord(const FWRuleParts& parts) {
  return addressFits(parts.source.get()) && addressFits(parts.destination.get()) &&
         (!parts.action || parts.action->fits()) && parts.connection.hasAPlaceForEach() &&
         parts.sourcePorts.hasAPlaceForEach() && parts.destinationPorts.hasAPlaceForEach();
}

void readRuleRecord(const FWRule_& record, FWRuleParts& parts, CTarnFWLoadMemory* memory) {
  const unsigned int flags = record.flags;
  parts.direction = checkedDirection(
      static_cast<FWRuleDirection_t>(flags >> kRuleDirectionShift & kRuleDirectionMask));
  parts.position = record.position;
  parts.id = record.id;
  const bool layer3 = (flags & kRuleLayer3) != 0;
  parts.protocol.emplace(protocolLayer(layer3));
  if ((flags & kRuleHasProtocol) != 0) {
    parts.protocol->setProtocol(ruleProtocolNumber(record.protocol, layer3),
                                (flags & kRuleProtocolNegated) != 0);
  }
  if ((flags & kRuleHasSource) != 0)
    parts.source = CTarnFWAddressFactory::newFromMsgBuf(&record.source, memory);
  if ((flags & kRuleHasDestination) != 0)
    parts.destination = CTarnFWAddressFactory::newFromMsgBuf(&record.destination, memory);
  readPorts(record.sourcePorts, parts.sourcePorts, memory);
  readPorts(record.destinationPorts, parts.destinationPorts, memory);
  readSession(record, parts.connection, memory);
  parts.action = CTarnFWRuleActionFactory::newFromMsgBuf(&record.action, memory);
  const unsigned int mode = record.profileMode;
  if ((mode & kProfileExtendedSource) != 0)
    parts.makeExtras().extendedSource = readProfile(record.extendedSource);
  if ((mode & kProfileAttribute) != 0)
    parts.makeExtras().attributeProfile = readProfile(record.attributeProfile);
}

}  // namespace TarnFirewall
