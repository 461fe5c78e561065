// The text of a stored rule.
#include <netdb.h>

#include "LabAddressRecord.h"
#include "LabRuleRecord.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr const char* actionWords[] = {"unknown", "accept",  "drop",  "reject", "jumpto",
                                       "punt",    "divert",  "snat",  "dnat",   "macrewrite",
                                       "copy",    "encrypt", "clear", "lb",     "pbr"};
constexpr const char* poolWords[] = {"none",        "bitmask",     "random",
                                     "source-hash", "round-robin", "tcp-conn-balance"};
constexpr const char* applicationWords[] = {"", " as ftp", " as oracle", " as sunrpc",
                                            " as dcerpc"};
constexpr std::string_view passThrough = "ffffffff-ffff-ffff-ffff-ffffffffffff";

std::string protocolText(ConstBytes rule) {
  const unsigned bits = get8(rule, RuleRecord::flags);
  const bool layer3 = (bits & RuleRecord::layer3) != 0;
  std::string text = (bits & RuleRecord::protocolNegated) != 0 ? "not " : "";
  text += layer3 ? "protocol" : "ethertype";
  if ((bits & RuleRecord::hasProtocol) == 0) return text + " any";
  if (!layer3) return text + format(" 0x%04x", getNet16(rule, RuleRecord::protocol));
  const unsigned number = get16(rule, RuleRecord::protocol);
  const protoent* known = ::getprotobynumber(static_cast<int>(number));
  return text + " " + (known != nullptr ? std::string(known->p_name) : format("%u", number));
}

std::string negation(ConstBytes spec) { return (get16(spec, 0) & 4) != 0 ? "not " : ""; }

/// The ranges by their high end, then the single ports: the order that the sender gave them.
std::string portSetText(ConstBytes spec) {
  const unsigned count = get8(spec, 2) & 15u;
  const unsigned ranges = get16(spec, 34);
  std::string text;
  for (unsigned i = 0; i < count; ++i) {
    text += text.empty() ? "" : ", ";
    text += format("%u", getNet16(spec, 4 + 2 * i));
    if ((ranges >> i & 1) != 0) {
      ++i;
      text += format("-%u", getNet16(spec, 4 + 2 * i));
    }
  }
  return text.empty() ? "" : negation(spec) + "port {" + text + "}";
}

std::string portText(ConstBytes spec) {
  switch (get16(spec, 0) >> 3 & 0xff) {
    case 1:
      return negation(spec) + format("port %u", getNet16(spec, 2));
    case 2:
      return negation(spec) + format("port %u-%u", getNet16(spec, 2), getNet16(spec, 4));
    case 3:
      return portSetText(spec);
    default:
      return "";
  }
}

std::string sessionText(ConstBytes session) {
  std::vector<std::string> specs;
  const unsigned bits = get16(session, 0);
  if ((bits & 1) != 0) specs.emplace_back("stateless");
  if ((bits & 1u << 12) != 0) specs.emplace_back("sloppy");
  if ((bits & 1u << 11) != 0) specs.emplace_back("strict");
  const ConstBytes spec = part(session, 4, 8);
  const unsigned kind = get16(spec, 0) >> 3 & 0xff;
  if (kind == 4) {
    specs.push_back(negation(spec) +
                    format("flag 0x%04x", get8(spec, 2) | (get8(spec, 3) & 1u) << 8));
  } else if (kind == 6 && (get8(spec, 2) & 2) != 0) {
    specs.push_back(negation(spec) + format("typecode %u:%u", get8(spec, 6), get8(spec, 7)));
  } else if (kind == 6) {
    specs.push_back(negation(spec) + format("icmptype %u", get8(spec, 6)));
  }
  if (specs.size() < 2) return specs.empty() ? "" : specs[0];
  std::string text = "with {";
  for (std::size_t i = 0; i < specs.size(); ++i) text += (i == 0 ? "" : ", ") + specs[i];
  return text + "}";
}

std::string actionFlags(ConstBytes action) {
  const unsigned flags = get16(action, ActionRecord::flags);
  constexpr unsigned shown = ActionRecord::flagLog | ActionRecord::flagCopy |
                             ActionRecord::flagNoFlow | ActionRecord::flagRtt |
                             ActionRecord::flagLbRule;
  std::string text;
  if ((flags & shown) != 0) {
    const auto names = {
        std::pair{ActionRecord::flagLog, "log"}, std::pair{ActionRecord::flagCopy, "copy"},
        std::pair{ActionRecord::flagNoFlow, "noflow"}, std::pair{ActionRecord::flagRtt, "rtt"},
        std::pair{ActionRecord::flagLbRule, "lbrule"}};
    unsigned count = 0;
    for (const auto& [bit, word] : names) {
      if ((flags & bit) == 0) continue;
      text += (count++ == 0 ? "" : ",") + std::string(word);
    }
    text = count > 1 ? " with {" + text + "}" : " with " + text;
  }
  const unsigned application = get16(action, ActionRecord::dynamic) >> 4 & 0xff;
  if ((flags & ActionRecord::flagDynamic) != 0 && application < 5) {
    text += applicationWords[application];
  }
  return text;
}

std::string dnatText(ConstBytes action) {
  std::string text = "dnat " + AddressRecord::text(part(action, 0, AddressRecord::size));
  const unsigned bits = get8(action, ActionRecord::bits);
  if ((bits & 1) != 0) {
    text += format(" port %u", getNet16(action, ActionRecord::port));
    if ((bits & 2) != 0) text += format("-%u", getNet16(action, ActionRecord::lastPort));
  }
  const unsigned pool = bits >> 2 & 15;
  const unsigned poolValue = get16(action, ActionRecord::poolValue);
  if (pool >= 6) {
    text += " unknown";
  } else if (pool != 0) {
    text += std::string(" poolopt ") + poolWords[pool];
    if (poolValue != 0) text += format(" %u", poolValue);
  }
  return text;
}

/// A balancer read from a record always counts as having options.
std::string lbText(ConstBytes action) {
  std::string text = "lb ";
  text += get8(action, ActionRecord::lbType) == 0 ? " lbtype L4" : " lbtype L7";
  if (const unsigned idle = get16(action, ActionRecord::lbIdle); idle != 0) {
    text += format(" lbidletimeout %u", idle);
  }
  if (const unsigned close = get16(action, ActionRecord::lbClose); close != 0) {
    text += format(" lbclosetimeout %u", close);
  }
  return text + " lboptions " +
         std::string(getText(action, ActionRecord::lbOptions, ActionRecord::lbOptionsSize));
}

std::string actionText(ConstBytes action) {
  const unsigned code = get8(action, ActionRecord::code);
  if (code >= sizeof actionWords / sizeof actionWords[0]) return format("action %u", code);
  const std::string word = actionWords[code];
  const std::string flags = actionFlags(action);
  const std::string policy(getText(action, ActionRecord::keyPolicy, ActionRecord::keyPolicySize));
  switch (code) {
    case ActionRecord::jumpto:
      return word + " " + std::string(getText(action, 0, ActionRecord::ruleSetNameSize)) + flags;
    case ActionRecord::snat:
      return word + " " + AddressRecord::text(part(action, 0, AddressRecord::size)) + flags;
    case ActionRecord::dnat:
      return dnatText(action) + flags;
    case ActionRecord::macRewrite:
      return word +
             format(" %x:%x:%x:%x:%x:%x", get8(action, 0), get8(action, 1), get8(action, 2),
                    get8(action, 3), get8(action, 4), get8(action, 5)) +
             flags;
    case ActionRecord::lb:
      return lbText(action) + flags;
    case ActionRecord::encrypt:
      return word + flags + (policy.empty() ? "" : " keypolicy " + policy);
    case ActionRecord::pbr:
      if (policy == passThrough) return word + flags + " pass-through";
      return word + flags + (policy.empty() ? "" : " keypolicy " + policy);
    default:
      return word + flags;
  }
}

std::string withBlank(const std::string& text) { return text.empty() ? "" : " " + text; }

}  // namespace

std::string RuleRecord::text(ConstBytes rule) {
  static constexpr const char* directions[] = {" inout", " in", " out", ""};
  static constexpr const char* families[] = {"", " inet", " inet6", ""};
  const unsigned bits = get8(rule, flags);
  const unsigned more = get8(rule, flags3);
  std::string result = (more & internal) != 0 ? "# internal # " : "";
  result += format("rule %d", static_cast<int>(get32(rule, id)));
  if (const int at = static_cast<int>(get32(rule, position)); at != -1)
    result += format(" at %d", at);
  result += directions[direction(rule)];
  if ((more & afDerived) == 0) result += families[addressFamily(rule)];
  result += " " + protocolText(rule);
  result += withBlank(sessionText(part(rule, session, sessionSize)));

  const auto address = [&](unsigned present, std::size_t offset) {
    return (bits & present) != 0 ? AddressRecord::text(part(rule, offset, AddressRecord::size))
                                 : std::string("any");
  };
  const std::string to = portText(part(rule, destinationPort, portSize));
  result += " from " + address(hasSource, source);
  result += withBlank(portText(part(rule, sourcePort, portSize)));
  result += " to " + address(hasDestination, destination) + withBlank(to);

  const unsigned profiles = get32(rule, mode);
  if ((profiles & modeExtendedSource) != 0) {
    result += " with extended src " + std::string(getText(rule, extendedSource, containerSize));
  }
  if ((profiles & modeProfile) != 0) {
    result += " with attribute profile " + std::string(getText(rule, profile, containerSize));
  }
  result += " " + actionText(part(rule, action, ActionRecord::size));
  const bool udp =
      (bits & (hasProtocol | layer3)) == (hasProtocol | layer3) && get16(rule, protocol) == 17;
  if (udp && to == "port 69") result += " as tftp";
  const std::string_view name = getText(rule, tag, tagSize);
  if (!name.empty()) result += " tag '" + std::string(name) + "'";
  return result + ";";
}

}  // namespace TarnLab
