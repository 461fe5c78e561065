#include "TarnFWRule.h"

#include <netinet/in.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleCheck.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// Kinds that only TCP has.
constexpr SpecKinds kTCPKinds = specKind(FW_SPEC_TCP_FLAGS) | specKind(FW_SPEC_TCP_OPTIONS) |
                                specKind(FW_SPEC_STRICT) | specKind(FW_SPEC_SLOPPY);

/// Length of most rules' texts, so that the string grows once.
constexpr std::size_t kUsualText = 200;

void checkSpecs(const CTarnFWProtocol& protocol, const CTarnFWProtocolSpecList& connection,
                const CTarnFWProtocolSpecList& sourcePorts,
                const CTarnFWProtocolSpecList& destinationPorts) {
  const SpecKinds kinds = connection.getKinds();
  const bool directionPorts =
      ((sourcePorts.getKinds() | destinationPorts.getKinds()) & kPortKinds) != 0;
  checkRuleSpecs(protocol, kinds, directionPorts, kTCPKinds);
  if ((kinds & kPortKinds) != 0 && directionPorts)
    throw CUnsupportedException(
        "cannot accept both connection-level and direction-level specification for port");
}

/// All that a rule is refused for. The result is `protocol`.
const CTarnFWProtocol& checkAll(const CTarnFWProtocol& protocol, const CTarnFWRuleAction* action,
                                FWRuleDirection_t direction, const CTarnFWAddress* source,
                                const CTarnFWAddress* destination,
                                const CTarnFWProtocolSpecList& connection,
                                const CTarnFWProtocolSpecList& sourcePorts,
                                const CTarnFWProtocolSpecList& destinationPorts) {
  checkRuleParts(protocol, action != nullptr ? action->getAction() : FW_ACTION_ACCEPT, direction,
                 source, destination);
  checkSpecs(protocol, connection, sourcePorts, destinationPorts);
  return protocol;
}

const char* directionText(FWRuleDirection_t direction) {
  switch (direction) {
    case FW_DIRECTION_IN:
      return " in";
    case FW_DIRECTION_OUT:
      return " out";
    default:
      return " inout";
  }
}

/// Appends a blank and the list's text, or nothing when there is no text. The result is the text.
std::string_view appendSpecs(std::string& text, const CTarnFWProtocolSpecList& list) {
  if (list.empty()) return {};
  text += ' ';
  const std::size_t start = text.size();
  list.appendTo(text);
  if (text.size() == start) text.pop_back();
  return std::string_view(text).substr(std::min(start, text.size()));
}

void appendAddress(std::string& text, const CTarnFWAddress* address) {
  if (address != nullptr) {
    address->appendTo(text);
  } else {
    text += "any";
  }
}

/// The lines of one end of the traffic in the labelled form; `label` is "Source" or "Destination".
void appendEnd(std::string& text, const char* label, const CTarnFWAddress* address,
               const CTarnFWProtocolSpecList& ports) {
  text += label;
  text += " : ";
  appendAddress(text, address);
  const bool excluded = address != nullptr && address->isNegated();
  if (excluded) {
    // The last "not" of all lines so far goes, wherever it stands: scripts read it so.
    const std::size_t place = text.rfind("not");
    if (place != text.npos) text.erase(place, 4);
  }
  text += '\n';
  if (excluded) {
    text += label;
    text += "_Excluded : Yes\n";
  }
  if (!ports.empty()) {
    text += label;
    text += "_Port : ";
    ports.appendTo(text);
    text += '\n';
  }
}

/// Whether either address is there and of the family.
template <bool (CTarnFWAddress::*isOfFamily)() const>
bool eitherIs(const CTarnFWAddress* source, const CTarnFWAddress* destination) {
  return (source != nullptr && (source->*isOfFamily)()) ||
         (destination != nullptr && (destination->*isOfFamily)());
}

/// An address of type "any" is left out of the record, and with it its negation: this is meant.
bool writeAddress(CTarnFWAddress* address, FWAddress_& record, unsigned int bit,
                  unsigned int& flags) {
  if (address == nullptr || address->getType() == FW_ADDRESS_ANY) return true;
  flags |= bit;
  unsigned int written = 0;
  return address->toMessage(&record, sizeof record, &written);
}

/// Into a cleared block.
template <typename Block>
void writeSpecs(CTarnFWProtocolSpecList& list, Block& block) {
  if (!list.empty()) list.toMessage(&block, sizeof block, nullptr);
}

void writeProfile(const CTarnFWContainerID* id, FWRuleProfile_& record) {
  const std::string& name = id->getContainerID();
  name.copy(record.name.text, sizeof record.name.text - 1);
}

}  // namespace

CTarnFWRule::CTarnFWRule(unsigned int id, int position, FWRuleDirection_t direction,
                         const CTarnFWProtocol& protocol, CTarnFWProtocolSpecList&& connection,
                         std::unique_ptr<CTarnFWAddress>&& source,
                         CTarnFWProtocolSpecList&& sourcePorts,
                         std::unique_ptr<CTarnFWAddress>&& destination,
                         CTarnFWProtocolSpecList&& destinationPorts,
                         std::unique_ptr<CTarnFWRuleAction>&& action,
                         std::unique_ptr<CTarnFWContainerID>&& extendedSource,
                         std::unique_ptr<CTarnFWContainerID>&& attributeProfile)
    : id_(id),
      position_(position),
      direction_(direction),
      // Before anything is moved: what is refused stays the caller's.
      protocol_(checkAll(protocol, action.get(), direction, source.get(), destination.get(),
                         connection, sourcePorts, destinationPorts)),
      action_(std::move(action)),
      source_(std::move(source)),
      destination_(std::move(destination)),
      sourcePorts_(std::move(sourcePorts)),
      destinationPorts_(std::move(destinationPorts)),
      connection_(std::move(connection)),
      attributeProfile_(std::move(attributeProfile)),
      extendedSource_(std::move(extendedSource)) {
  sourcePorts_.setPortMode(true);
  destinationPorts_.setPortMode(true);
  if (attributeProfile_ || extendedSource_) {
    profileMode_ = (attributeProfile_ ? kProfileAttribute : 0) |
                   (extendedSource_ ? kProfileExtendedSource : 0);
  }
}

void CTarnFWRule::validateProtocolSpec() const {
  checkSpecs(protocol_, connection_, sourcePorts_, destinationPorts_);
}

void CTarnFWRule::setDirection(FWRuleDirection_t direction) {
  if (direction > FW_DIRECTION_OUT)
    throw CInvalidRuleDirectionException(static_cast<int>(direction));
  keepWritten();
  direction_ = direction;
}

void CTarnFWRule::setAF(FWRuleAF_t af) {
  if (af > FW_AF_INET6)
    throw CUnsupportedException(FW_STATUS_INVALID_ADDRESS_FAMILY,
                                formatText("unsupported address family %d", static_cast<int>(af)));
  const CTarnFWAddress* const source = source_.get();
  const CTarnFWAddress* const destination = destination_.get();
  if ((af == FW_AF_INET6 && eitherIs<&CTarnFWAddress::isIPv4Address>(source, destination)) ||
      (af == FW_AF_INET && eitherIs<&CTarnFWAddress::isIPv6Address>(source, destination)) ||
      (af != FW_AF_NONE && eitherIs<&CTarnFWAddress::isMACAddress>(source, destination))) {
    throw CUnsupportedException(FW_STATUS_INVALID_ADDRESS_FAMILY, "af conflicts with rule address");
  }
  keepWritten();
  af_ = af;
}

void CTarnFWRule::setTag(const char* tag) {
  keepWritten();
  const std::size_t length =
      tag != nullptr ? std::min(std::strlen(tag), sizeof tag_ - 1) : std::size_t{0};
  std::memset(tag_, 0, sizeof tag_);
  if (length != 0) std::memcpy(tag_, tag, length);
}

void CTarnFWRule::setTCPStrict(bool on) {
  const bool tcp = protocol_.getIPProtocol() == IPPROTO_TCP;
  const bool strict = connection_.getSpecCount(FW_SPEC_STRICT) != 0;
  const bool changes = tcp && on != strict;
  if (changes) keepWritten();
  if (kept_) {
    const unsigned int flags = kept_->flags;
    if ((flags & (kRuleProtocolNegated | kRuleLayer3)) == kRuleLayer3 &&
        kept_->protocol == IPPROTO_TCP) {
      const unsigned int session = kept_->session.flags & ~unsigned{kSessionStrict};
      kept_->session.flags = static_cast<std::uint16_t>(session | (on ? kSessionStrict : 0u));
    }
  }
  if (!changes) return;
  if (on) {
    connection_.addSpec(std::make_unique<CTarnFWProtocolSpecStrict>());
  } else {
    connection_.deleteSpec(FW_SPEC_STRICT);
  }
}

void CTarnFWRule::appendTo(std::string& text) const {
  if (internal_) text += "# internal # ";
  text += "rule ";
  appendDecimal(text, static_cast<std::int32_t>(id_));  // signed: scripts read it so
  if (position_ != -1) {
    text += " at ";
    appendDecimal(text, position_);
  }
  text += directionText(direction_);
  if (af_ == FW_AF_INET) text += " inet";
  if (af_ == FW_AF_INET6) text += " inet6";
  text += ' ';
  protocol_.appendTo(text);
  appendSpecs(text, connection_);
  text += " from ";
  appendAddress(text, source_.get());
  appendSpecs(text, sourcePorts_);
  text += " to ";
  appendAddress(text, destination_.get());
  const bool toPort69 = appendSpecs(text, destinationPorts_) == "port 69";
  if ((profileMode_ & kProfileCopy) != 0) text += " with attribute ANY ";
  if (hasExtSrcProfile() && extendedSource_) {
    text += " with extended src ";
    text += extendedSource_->getContainerID();
  }
  if (hasAttributeProfile() && attributeProfile_) {
    text += " with attribute profile ";
    text += attributeProfile_->getContainerID();
  }
  if ((profileMode_ & kProfileCopy) != 0) text += " with L7 copy ";
  text += ' ';
  if (action_) {
    action_->appendTo(text);
  } else {
    text += "accept";
  }
  if (protocol_.getNumber() == IPPROTO_UDP && toPort69) text += " as tftp";
  if (tag_[0] != '\0') {
    text += " tag '";
    text += tag_;
    text += '\'';
  }
  text += ';';
}

std::string CTarnFWRule::toString() const {
  std::string text;
  text.reserve(kUsualText);
  appendTo(text);
  return text;
}

std::string CTarnFWRule::toString2() const {
  std::string text;
  text.reserve(2 * kUsualText);
  text += "Rule : ";
  appendDecimal(text, id_);
  text += "\nPosition : ";
  appendDecimal(text, position_);
  text += "\nDirection :";
  text += directionText(direction_);
  text += '\n';
  if (af_ == FW_AF_INET) text += "Af : inet\n";
  if (af_ == FW_AF_INET6) text += "Af : inet6\n";
  text += protocol_.toString2();
  text += "\nConn_Spec :";
  appendSpecs(text, connection_);
  text += '\n';
  appendEnd(text, "Source", source_.get(), sourcePorts_);
  appendEnd(text, "Destination", destination_.get(), destinationPorts_);
  text += "Action : ";
  text += action_ ? action_->toString(0) : CTarnFWRuleActionAccept().toString();
  text += '\n';
  if (internal_) text.insert(0, "# internal # ");
  return text;
}

bool CTarnFWRule::encode(FWRule_& record) {
  record.id = id_;
  record.position = position_;
  std::memcpy(record.tag, tag_, sizeof record.tag);

  unsigned int flags = (direction_ & kRuleDirectionMask) << kRuleDirectionShift;
  const bool layer3 = isLayer3();
  if (layer3) flags |= kRuleLayer3;
  if (protocol_.isDefined()) {
    flags |= kRuleHasProtocol;
    record.protocol = ruleProtocolNumber(protocol_.getNumber(), layer3);
    if (protocol_.isNegated()) flags |= kRuleProtocolNegated;
  }

  writeSpecs(connection_, record.session);
  const bool acted =
      action_ ? action_->toMessage(&record.action, sizeof record.action, nullptr)
              : CTarnFWRuleActionAccept().toMessage(&record.action, sizeof record.action, nullptr);
  if (!acted || !writeAddress(source_.get(), record.source, kRuleHasSource, flags) ||
      !writeAddress(destination_.get(), record.destination, kRuleHasDestination, flags)) {
    return false;
  }

  unsigned int af = af_;
  if (af == FW_AF_NONE) {
    if (!written_) TARNFW_TRACE(FW_COMPONENT_RULE, 0, "    fixing af\n");
    if (eitherIs<&CTarnFWAddress::isIPv4Address>(source_.get(), destination_.get()))
      af = FW_AF_INET;
    if (eitherIs<&CTarnFWAddress::isIPv6Address>(source_.get(), destination_.get()))
      af = FW_AF_INET6;
    if (af != FW_AF_NONE) record.origin = kRuleAFDerived;
  }
  record.flags = static_cast<std::uint8_t>(flags | (af & 1) << kRuleAFLowShift);
  record.moreFlags = static_cast<std::uint8_t>((af >> 1) & kRuleAFHigh);

  writeSpecs(sourcePorts_, record.sourcePorts);
  writeSpecs(destinationPorts_, record.destinationPorts);

  unsigned int mode = 0;
  if (extendedSource_) {
    mode |= kProfileExtendedSource;
    writeProfile(extendedSource_.get(), record.extendedSource);
  }
  if (attributeProfile_) {
    mode |= kProfileAttribute;
    writeProfile(attributeProfile_.get(), record.attributeProfile);
  }
  if (mode == 0) mode = kProfileNone;
  record.profileMode = mode;
  if (isDefaultRule(record)) {
    if (!written_)
      TARNFW_TRACE(FW_COMPONENT_RULE, 0, "     rule qualifies as default rule, set copy mode\n\n");
    record.profileMode = kProfileCopy;
  }
  return true;
}

bool CTarnFWRule::isDefaultRule(const FWRule_& record) const {
  const unsigned int parts = kRuleHasSource | kRuleHasDestination | kRuleHasProtocol;
  return (record.flags & (parts | kRuleLayer3)) == kRuleLayer3 &&
         record.profileMode == kProfileNone && record.action.action == FW_ACTION_ACCEPT;
}

void CTarnFWRule::keepWritten() {
  if (!written_ || kept_) return;
  auto record = std::make_unique<FWRule_>();
  encode(*record);
  kept_ = std::move(record);
}

bool CTarnFWRule::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (size < sizeof(FWRule_)) return false;
  if (kept_) {
    storeRecord(buffer, *kept_);
  } else {
    FWRule_ record{};
    if (!encode(record)) return false;
    storeRecord(buffer, record);
  }
  if (written_) {
    TARNFW_TRACE(FW_COMPONENT_RULE, 0, "    copy cached rule: %d.\n", static_cast<int>(id_));
  } else {
    TARNFW_TRACE(FW_COMPONENT_RULE, 0, "    wrote rule: %d.\n", static_cast<int>(id_));
  }
  written_ = true;
  if (written != nullptr) *written = sizeof(FWRule_);
  return true;
}

}  // namespace TarnFirewall
