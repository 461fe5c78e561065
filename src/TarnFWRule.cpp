#include "TarnFWRule.h"

#include <netinet/in.h>

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

/// What log lines about a rule that is written name as their function.
constexpr char kToMessage[] = "toMessage";

void checkSpecs(const FWRuleParts& parts) {
  const SpecKinds kinds = parts.connection.getKinds();
  const bool directionPorts =
      ((parts.sourcePorts.getKinds() | parts.destinationPorts.getKinds()) & kPortKinds) != 0;
  checkRuleSpecs(*parts.protocol, kinds, directionPorts, kTCPKinds);
  if ((kinds & kPortKinds) != 0 && directionPorts)
    throw CUnsupportedException(
        "cannot accept both connection-level and direction-level specification for port");
}

/// Makes all checks of a rule. The result is `parts`.
FWRuleParts& checkAll(FWRuleParts& parts) {
  checkRuleParts(parts, parts.action ? parts.action->getAction() : FW_ACTION_ACCEPT);
  checkSpecs(parts);
  return parts;
}

void appendDirection(CTarnFWText& text, FWRuleDirection_t direction) {
  switch (direction) {
    case FW_DIRECTION_IN:
      text += " in";
      break;
    case FW_DIRECTION_OUT:
      text += " out";
      break;
    default:
      text += " inout";
      break;
  }
}

/// Appends a blank and the list's text, or nothing when there is no text.
void appendSpecs(CTarnFWText& text, const CTarnFWProtocolSpecList& list) {
  if (list.empty()) return;
  text += ' ';
  const std::size_t start = text.size();
  list.appendTo(text);
  if (text.size() == start) text.erase(start - 1, 1);
}

void appendAddress(CTarnFWText& text, const CTarnFWAddress* address) {
  if (address != nullptr) {
    address->appendTo(text);
  } else {
    text += "any";
  }
}

/// The lines of one end of the traffic in the labelled form; `label` is "Source" or "Destination".
void appendEnd(CTarnFWText& text, const char* label, const CTarnFWAddress* address,
               const CTarnFWProtocolSpecList& ports) {
  text += label;
  text += " : ";
  appendAddress(text, address);
  const bool excluded = address != nullptr && address->isNegated();
  if (excluded) {
    // The last "not" of all lines so far goes, wherever it stands: scripts read such lines.
    const std::size_t place = text.view().rfind("not");
    if (place != std::string_view::npos) text.erase(place, 4);
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

}  // namespace

CTarnFWRule::CTarnFWRule(FWRuleParts&& parts)
    // Checked before anything is moved: what is refused stays the caller's.
    : parts_(std::move(checkAll(parts))) {
  begin();
}

void CTarnFWRule::accept() {
  checkAll(parts_);
  begin();
}

void CTarnFWRule::begin() {
  parts_.af = FW_AF_NONE;
  parts_.sourcePorts.setPortMode(true);
  parts_.destinationPorts.setPortMode(true);
  const unsigned int attribute = parts_.attributeProfile() != nullptr ? kProfileAttribute : 0;
  const unsigned int source = parts_.extendedSource() != nullptr ? kProfileExtendedSource : 0;
  if ((attribute | source) != 0) profileMode_ = attribute | source;
}

void CTarnFWRule::validateProtocolSpec() const { checkSpecs(parts_); }

void CTarnFWRule::setDirection(FWRuleDirection_t direction) {
  checkedDirection(direction);
  keepWritten();
  parts_.direction = direction;
}

void CTarnFWRule::setAF(FWRuleAF_t af) {
  if (af > FW_AF_INET6)
    throw CUnsupportedException(FW_STATUS_INVALID_ADDRESS_FAMILY,
                                formatText("unsupported address family %d", static_cast<int>(af)));
  if ((af == FW_AF_INET6 && eitherAddressIs<&CTarnFWAddress::isIPv4Address>(parts_)) ||
      (af == FW_AF_INET && eitherAddressIs<&CTarnFWAddress::isIPv6Address>(parts_)) ||
      (af != FW_AF_NONE && eitherAddressIs<&CTarnFWAddress::isMACAddress>(parts_))) {
    throw CUnsupportedException(FW_STATUS_INVALID_ADDRESS_FAMILY, "af conflicts with rule address");
  }
  keepWritten();
  parts_.af = af;
}

void CTarnFWRule::setTag(const char* tag) {
  keepWritten();
  parts_.setTag(tag != nullptr ? tag : "");
}

void CTarnFWRule::setTCPStrict(bool on) {
  const bool tcp = protocol().getIPProtocol() == IPPROTO_TCP;
  const bool strict = parts_.connection.getSpecCount(FW_SPEC_STRICT) != 0;
  const bool changes = tcp && on != strict;
  if (changes) keepWritten();
  if (kept() != nullptr) {
    FWRule_& record = *parts_.extras->written;
    const unsigned int flags = record.flags;
    if ((flags & (kRuleProtocolNegated | kRuleLayer3)) == kRuleLayer3 &&
        record.protocol == IPPROTO_TCP) {
      const unsigned int session = record.session.flags & ~unsigned{kSessionStrict};
      record.session.flags = static_cast<std::uint16_t>(session | (on ? kSessionStrict : 0u));
    }
  }
  if (!changes) return;
  if (on) {
    parts_.connection.addSpec(std::make_unique<CTarnFWProtocolSpecStrict>());
  } else {
    parts_.connection.deleteSpec(FW_SPEC_STRICT);
  }
}

void CTarnFWRule::appendHead(CTarnFWText& text) const {
  if (parts_.internal()) text += "# internal # ";
  text += "rule ";
  text.appendDecimal(static_cast<std::int32_t>(parts_.id));  // signed: scripts expect that
  if (parts_.position != -1) {
    text += " at ";
    text.appendDecimal(parts_.position);
  }
  appendDirection(text, parts_.direction);
  if (parts_.af == FW_AF_INET) text += " inet";
  if (parts_.af == FW_AF_INET6) text += " inet6";
  text += ' ';
}

void CTarnFWRule::appendTo(CTarnFWText& text) const {
  appendHead(text);
  protocol().appendTo(text);
  appendSpecs(text, parts_.connection);
  text += " from ";
  appendAddress(text, parts_.source.get());
  appendSpecs(text, parts_.sourcePorts);
  text += " to ";
  appendAddress(text, parts_.destination.get());
  const std::size_t portsBegin = text.size();
  appendSpecs(text, parts_.destinationPorts);
  const std::size_t portsEnd = text.size();
  if ((profileMode_ & kProfileCopy) != 0) text += " with attribute ANY ";
  if (hasExtSrcProfile() && parts_.extendedSource() != nullptr) {
    text += " with extended src ";
    text += parts_.extendedSource()->getContainerID();
  }
  if (hasAttributeProfile() && parts_.attributeProfile() != nullptr) {
    text += " with attribute profile ";
    text += parts_.attributeProfile()->getContainerID();
  }
  if ((profileMode_ & kProfileCopy) != 0) text += " with L7 copy ";
  text += ' ';
  if (parts_.action) {
    parts_.action->appendTo(text);
  } else {
    text += "accept";
  }
  if (protocol().getNumber() == IPPROTO_UDP &&
      text.view().substr(portsBegin, portsEnd - portsBegin) == " port 69") {
    text += " as tftp";
  }
  if (const char* const tag = parts_.tag(); *tag != '\0') {
    text += " tag '";
    text += tag;
    text += '\'';
  }
  text += ';';
}

std::string CTarnFWRule::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

std::string CTarnFWRule::toString2() const {
  CTarnFWText text;
  if (parts_.internal()) text += "# internal # ";
  text += "Rule : ";
  appendDecimal(text, parts_.id);
  text += "\nPosition : ";
  appendDecimal(text, parts_.position);
  text += "\nDirection :";
  appendDirection(text, parts_.direction);
  text += '\n';
  if (parts_.af == FW_AF_INET) text += "Af : inet\n";
  if (parts_.af == FW_AF_INET6) text += "Af : inet6\n";
  text += protocol().toString2();
  text += "\nConn_Spec :";
  appendSpecs(text, parts_.connection);
  text += '\n';
  appendEnd(text, "Source", parts_.source.get(), parts_.sourcePorts);
  appendEnd(text, "Destination", parts_.destination.get(), parts_.destinationPorts);
  text += "Action : ";
  text += parts_.action ? parts_.action->toString(0) : CTarnFWRuleActionAccept().toString();
  text += '\n';
  return text.str();
}

bool CTarnFWRule::encode(FWRule_& record) {
  if (!writeRuleRecord(parts_, record, !written_)) return false;
  if (written_) return true;
  if (parts_.af == FW_AF_NONE)
    TARNFW_TRACE_IN(kToMessage, LOG_DEBUG, FW_COMPONENT_RULE, 0, "    fixing af\n");
  if (record.profileMode == kProfileCopy)
    TARNFW_TRACE_IN(kToMessage, LOG_DEBUG, FW_COMPONENT_RULE, 0,
                    "     rule qualifies as default rule, set copy mode\n\n");
  return true;
}

void CTarnFWRule::keepWritten() {
  if (!written_ || kept() != nullptr) return;
  auto record = std::make_unique<FWRule_>();
  encode(*record);
  parts_.makeExtras().written = std::move(record);
}

bool CTarnFWRule::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  return write(buffer, size, written, true);
}

bool CTarnFWRule::toFreshMessage(void* buffer, unsigned int size, unsigned int* written) {
  return write(buffer, size, written, false);
}

bool CTarnFWRule::write(void* buffer, unsigned int size, unsigned int* written, bool clear) {
  if (size < sizeof(FWRule_)) return false;
  if (kept() != nullptr) {
    storeRecord(buffer, *kept());
  } else if (written_ || fitsIntoRecord(parts_)) {
    // In place: nothing can fail any more.
    if (clear) clearBytes(buffer, sizeof(FWRule_));
    if (!encode(recordAt<FWRule_>(buffer))) return false;
  } else {
    // Beside it, since nothing may be written where one part can't be.
    FWRule_ record{};
    if (!encode(record)) return false;
    storeRecord(buffer, record);
  }
  if (written_) {
    TARNFW_TRACE_IN(kToMessage, LOG_DEBUG, FW_COMPONENT_RULE, 0, "    copy cached rule: %d.\n",
                    static_cast<int>(parts_.id));
  } else {
    TARNFW_TRACE_IN(kToMessage, LOG_DEBUG, FW_COMPONENT_RULE, 0, "    wrote rule: %d.\n",
                    static_cast<int>(parts_.id));
  }
  written_ = true;
  if (written != nullptr) *written = sizeof(FWRule_);
  return true;
}

}  // namespace TarnFirewall
