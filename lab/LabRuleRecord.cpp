// What a kernel refuses in the record of a rule.
#include "LabRuleRecord.h"

#include "LabAddressRecord.h"
#include "LabText.h"

namespace TarnLab {

namespace {

/// Head of a protocol spec.
unsigned specDirection(ConstBytes spec) { return get16(spec, 0) & 3u; }
unsigned specKind(ConstBytes spec) { return get16(spec, 0) >> 3 & 0xffu; }
bool specReserved(ConstBytes spec) { return get16(spec, 0) >> 11 != 0; }

std::string addressFault(ConstBytes rule, std::size_t offset, bool present, const char* which) {
  const ConstBytes address = part(rule, offset, AddressRecord::size);
  if (!present) {
    return isZero(address) ? "" : std::string(which) + " is there without its flag";
  }
  if (const std::string fault = AddressRecord::fault(address); !fault.empty()) {
    return std::string(which) + ": " + fault;
  }
  const unsigned type = get16(address, AddressRecord::type);
  if (type == AddressRecord::any) return std::string(which) + " is any and yet there";
  const bool layer3 = (get8(rule, RuleRecord::flags) & RuleRecord::layer3) != 0;
  if (layer3 ? AddressRecord::isMac(type) : AddressRecord::isIp(type)) {
    return std::string(which) + " does not go with the rule's layer";
  }
  return "";
}

std::string portFault(ConstBytes spec, const char* which) {
  const unsigned kind = specKind(spec);
  if (kind == 0) return isZero(spec) ? "" : std::string(which) + " has no kind";
  if (kind > 3 || specReserved(spec) || specDirection(spec) > 2) {
    return std::string(which) + format(" with head 0x%04x", get16(spec, 0));
  }
  if (kind == 2 && getNet16(spec, 2) >= getNet16(spec, 4)) {
    return std::string(which) + " has a reversed range";
  }
  static constexpr std::size_t used[] = {0, 4, 6, 36};
  if (!isZero(spec.subspan(used[kind]))) return std::string(which) + " with bytes after its value";
  return "";
}

std::string portSetFault(ConstBytes spec, const char* which) {
  if (specKind(spec) != 3) return "";
  const unsigned count = get8(spec, 2) & 15u;
  const unsigned ranges = get16(spec, 34);
  for (unsigned i = 0; i < 15; ++i) {
    const bool low = (ranges >> i & 1) != 0;
    if (low && (i + 1 >= count || (ranges >> (i + 1) & 1) != 0 ||
                getNet16(spec, 4 + 2 * i) >= getNet16(spec, 6 + 2 * i))) {
      return std::string(which) + " has a bad range";
    }
    if (i >= count && getNet16(spec, 4 + 2 * i) != 0) {
      return std::string(which) + " has more ports than it counts";
    }
  }
  return "";
}

std::string sessionFault(ConstBytes session) {
  constexpr unsigned known = 1u | 0x3fu << 5 | 1u << 11 | 1u << 12;
  if ((get16(session, 0) & ~known) != 0 || get16(session, 2) != 0) {
    return "session flags with reserved bits set";
  }
  const ConstBytes first = part(session, 4, 8);
  const unsigned kind = specKind(first);
  if (kind != 0 && kind != 4 && kind != 6) return format("session spec of kind %u", kind);
  if (kind == 0 && !isZero(first)) return "session spec without a kind";
  const bool flagsGood = (get8(first, 3) & 0xfe) == 0 && get32(first, 4) == 0;
  const unsigned present = get8(first, 2);
  const bool typeGood = (present == 1 || present == 3) && isZero(part(first, 3, 3)) &&
                        (present == 3 || get8(first, 7) == 0);
  if (specReserved(first) || (kind == 4 && !flagsGood) || (kind == 6 && !typeGood)) {
    return "session spec with reserved bits set";
  }
  const ConstBytes options = part(session, 12, 44);
  if (specKind(options) != 0 && specKind(options) != 5) return "TCP options of another kind";
  if (specKind(options) == 0 && !isZero(options)) return "TCP options without a kind";
  if (specKind(options) == 5) {
    const std::size_t length = get16(options, 2);
    if (length > 40) return "TCP options too long";
    if (!isZero(options.subspan(4 + length))) return "TCP options with bytes after them";
  }
  return "";
}

std::string containerFault(ConstBytes rule, std::size_t head, std::size_t name, bool present,
                           const char* which) {
  if (get32(rule, head) != 0) return std::string(which) + " with a head that is not zero";
  const ConstBytes field = part(rule, name, RuleRecord::containerSize);
  if (!present) return isZero(field) ? "" : std::string(which) + " is there without its flag";
  if (get8(field, 0) == 0 || get8(field, RuleRecord::containerSize - 1) != 0) {
    return std::string(which) + " without a proper name";
  }
  return "";
}

std::string actionFault(ConstBytes action) {
  const unsigned code = get8(action, ActionRecord::code);
  if (code == 0 || code > ActionRecord::pbr) return format("action %u", code);
  if ((get16(action, ActionRecord::flags) & ActionRecord::flagsUnknown) != 0) {
    return format("action flags 0x%04x", get16(action, ActionRecord::flags));
  }
  if (get8(action, 149) != 0 || get8(action, 283) != 0 || get16(action, 286) != 0 ||
      get8(action, ActionRecord::keyPolicy + ActionRecord::keyPolicySize - 1) != 0 ||
      get16(action, ActionRecord::dynamic) >> 12 != 0) {
    return "action with reserved bytes set";
  }
  const ConstBytes data = part(action, ActionRecord::data, AddressRecord::size);
  switch (code) {
    case ActionRecord::jumpto:
      if (get8(data, 0) == 0 || get8(data, ActionRecord::ruleSetNameSize - 1) != 0) {
        return "jump without a proper name";
      }
      return isZero(data.subspan(ActionRecord::ruleSetNameSize)) ? "" : "jump with bytes after it";
    case ActionRecord::snat:
    case ActionRecord::dnat:
      return AddressRecord::fault(data);
    case ActionRecord::macRewrite:
      return isZero(data.subspan(6)) ? "" : "MAC with bytes after it";
    default:
      return isZero(data) ? "" : "action with data that it does not take";
  }
}

std::string modeFault(ConstBytes rule) {
  using namespace RuleRecord;
  const unsigned mode = get32(rule, RuleRecord::mode);
  if (mode == modeNone || mode == modeExtendedSource || mode == modeProfile ||
      mode == (modeExtendedSource | modeProfile)) {
    return "";
  }
  const bool isDefault =
      (get8(rule, flags) & (hasSource | hasDestination | hasProtocol | layer3)) == layer3 &&
      actionCode(rule) == ActionRecord::accept;
  return mode == modeCopy && isDefault ? "" : format("profile mode %u", mode);
}

}  // namespace

std::string RuleRecord::fault(ConstBytes rule) {
  const unsigned bits = get8(rule, flags);
  if (get32(rule, 8) != 0 || get8(rule, 792) != 0 || get32(rule, 888) != 0 ||
      (get8(rule, flags2) & 0xfe) != 0 || (get8(rule, flags3) & ~(afDerived | internal)) != 0) {
    return "reserved bytes set";
  }
  if (direction(rule) > 2) return format("direction %u", direction(rule));
  if (addressFamily(rule) > 2) return format("address family %u", addressFamily(rule));
  if ((bits & hasProtocol) == 0 && (get16(rule, protocol) != 0 || (bits & protocolNegated) != 0)) {
    return "protocol is there without its flag";
  }
  if ((bits & layer3) != 0 && get16(rule, protocol) > 255) {
    return format("protocol %u", get16(rule, protocol));
  }
  if (get8(rule, tag + tagSize - 1) != 0) return "tag without an end";
  const unsigned profiles = get32(rule, mode);
  const ConstBytes from = part(rule, sourcePort, portSize);
  const ConstBytes to = part(rule, destinationPort, portSize);
  for (const std::string& found :
       {addressFault(rule, source, (bits & hasSource) != 0, "source"),
        addressFault(rule, destination, (bits & hasDestination) != 0, "destination"),
        portFault(from, "source port"), portSetFault(from, "source port"),
        portFault(to, "destination port"), portSetFault(to, "destination port"),
        sessionFault(part(rule, session, sessionSize)),
        containerFault(rule, extendedSourceHead, extendedSource,
                       (profiles & modeExtendedSource) != 0, "extended source"),
        containerFault(rule, profileHead, profile, (profiles & modeProfile) != 0,
                       "attribute profile"),
        actionFault(part(rule, action, ActionRecord::size)), modeFault(rule)}) {
    if (!found.empty()) return found;
  }
  return "";
}

}  // namespace TarnLab
