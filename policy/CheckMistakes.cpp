#include "CheckMistakes.h"

#include <algorithm>
#include <array>

#include "ShownText.h"
#include "tarnfw_parser.h"

namespace {

/// A message of the library, by a part of it.
struct Known {
  const char* part;
  std::array<int, 4> words;  // the word to blame is the last of these, or the one after it
  bool after;
  const char* help;
};

constexpr char kPortRange[] = "invalid port range";

constexpr Known kKnown[] = {
    {"rule id value overflows", {TK_RULE}, true, "ids go from 0 to 4294967295"},
    {"rule position value overflows", {TK_AT}, true, "positions go from 0 to 4294967295"},
    {kPortRange, {}, false, "the low end of a range of ports stands first"},
    {"TCP/UDP port number", {}, false, "ports go from 0 to 65535"},
    {"too many TCP/UDP port", {TK_PORT}, false, "a list holds 15 ports, and a range counts 2"},
    {"unknown protocol",
     {TK_PROTOCOL},
     true,
     "names of protocols are those in /etc/protocols; any protocol can be given by its number"},
    {"ip protocol value overflows", {TK_PROTOCOL}, true, "IP protocols go from 0 to 255"},
    {"ether type value overflows", {TK_ETHERTYPE}, true, "Ethernet types go from 0 to 65535"},
    {"icmp type overflows", {TK_ICMPTYPE, TK_TYPECODE}, true, "ICMP types go from 0 to 255"},
    {"icmp code overflows", {TK_TYPECODE}, true, "ICMP codes go from 0 to 255"},
    {"icmp type while", {TK_ICMPTYPE, TK_TYPECODE}, false, "ICMP types go with `protocol icmp`"},
    {"tcp/udp port while", {TK_PORT}, false, "ports go with `protocol tcp` or `protocol udp`"},
    {"tcp flags/options while",
     {TK_FLAG, TK_OPTION, TK_STRICT, TK_SLOPPY},
     false,
     "TCP flags and options go with `protocol tcp`"},
    {"SNAT rule direction", {TK_SNAT}, false, "source translation is for `out` rules"},
    {"layer2 NAT", {TK_SNAT, TK_DNAT, TK_LB}, false, "translation is for `protocol` rules"},
    {"src address is MAC", {TK_FROM}, true, "rules with `protocol` have IP addresses"},
    {"dst address is MAC", {TK_TO}, true, "rules with `protocol` have IP addresses"},
    {"src address is IP", {TK_FROM}, true, "rules with `ethertype` have Ethernet addresses"},
    {"dst address is IP", {TK_TO}, true, "rules with `ethertype` have Ethernet addresses"},
    {"different version of IP", {TK_TO}, true, "both addresses are IPv4, or both IPv6"},
    {"af conflicts",
     {TK_INET, TK_INET6},
     false,
     "`inet` goes with IPv4 addresses, `inet6` with IPv6 addresses"},
    {"bad dscp markings", {TK_DSCP}, true, "DSCP is a number, or two hexadecimal digits in quotes"},
    {"root ruleset name",
     {},
     false,
     "a root has at most 60 bytes, to leave room for _L2; or name both: \"a\" and \"b\""},
    {"ruleset name", {}, false, "names of rule sets have at most 63 bytes"},
    {"addrset name", {}, false, "names of sets have at most 37 bytes"},
    {"filter name is too long", {}, false, "names of filters have at most 63 bytes"},
    {"invalid vif uuid",
     {},
     false,
     "an identifier looks like 8d0c7a10-55f4-4c1e-9b02-0000632a0000"},
    {"bad uuid", {}, false, "an identifier looks like 8d0c7a10-55f4-4c1e-9b02-0000632a0000"},
    {"invalid uuid", {}, false, "an identifier looks like 8d0c7a10-55f4-4c1e-9b02-0000632a0000"},
    {"expecting keyword tcp", {}, false, "the only protocol here is tcp"},
    {"debug level value overflows", {}, false, "levels go from 0 to 15"},
    {"unrecognized timeout", {}, false, "`describe timeout` prints the names"},
    {"invalid TCP flags", {}, false, "flags are SYN, FIN, RST, PSH, ACK, URG, ECE, CWR and NS"},
};

/// What is wrong with a literal, where messages of its class do not say it in words.
const char* literalHelp(int code) {
  switch (code) {
    case TK_IPV4:
      return "each of the four numbers goes from 0 to 255";
    case TK_IPV4_CIDR:
      return "a prefix goes from 0 to 32, and each number before it from 0 to 255";
    case TK_IPV4_MASK:
      return "a mask has its ones first, as 255.255.255.0, and numbers go from 0 to 255";
    case TK_IPV6_CIDR:
      return "a prefix goes from 0 to 128, and a mask has its ones first, as ffff:ffff::";
    case TK_IPV4_RANGE:
    case TK_IPV6_RANGE:
      return "the lower address of a range stands first";
    case TK_ETHER_RANGE:
      return "the lower address of a range stands first";
    default:
      return "";
  }
}

bool isLiteral(int code) { return code >= TK_IPV4_CIDR && code <= TK_NUMBER_RANGE; }

std::string_view unquoted(std::string_view text) {
  if (text.size() >= 2 && (text[0] == '"' || text[0] == '\'')) {
    return text.substr(1, text.size() - 2);
  }
  return text;
}

/// The last word of a kind, or the one after it.
const Token* wordOf(const Known& known, std::span<const Token> words) {
  for (std::size_t i = words.size(); i-- > 0;) {
    const int code = words[i].code;
    if (code == 0 || std::find(known.words.begin(), known.words.end(), code) == known.words.end()) {
      continue;
    }
    if (!known.after) return &words[i];
    // Blame the word itself rather than what merely says its kind.
    std::size_t next = i + 1;
    while (next + 1 < words.size() && (words[next].code == TK_NOT || words[next].code == TK_IP ||
                                       words[next].code == TK_MAC)) {
      ++next;
    }
    return next < words.size() ? &words[next] : &words[i];
  }
  return nullptr;
}

/// The literal that the message names.
const Token* namedWord(const SourceText& source, std::string_view message,
                       std::span<const Token> words) {
  for (const Token& word : words) {
    if (!isLiteral(word.code)) continue;
    const std::string text(unquoted(source.text(word.begin, word.end)));
    if (text.empty()) continue;
    if (message.ends_with(" " + text) || message.find("(" + text + ")") != message.npos) {
      return &word;
    }
  }
  return nullptr;
}

/// The range that was meant most likely.
std::string portRangeHelp(std::string_view range) {
  const std::size_t dash = std::min(range.find('-'), range.size() - 1);
  const std::string first(range.substr(0, dash)), second(range.substr(dash + 1));
  if (first == second) return "a range has more than one port; this one is: " + first;
  return "the low end of a range of ports stands first: " + second + "-" + first;
}

const Token& lastLiteral(std::span<const Token> words) {
  for (std::size_t i = words.size(); i-- > 0;) {
    if (isLiteral(words[i].code)) return words[i];
  }
  return words.back();
}

}  // namespace

Refusal explainRefusal(const SourceText& source, std::string message,
                       std::span<const Token> words) {
  const Known* known = nullptr;
  for (const Known& row : kKnown) {
    if (message.find(row.part) == message.npos) continue;
    known = &row;
    break;
  }
  const Token* word = known != nullptr ? wordOf(*known, words) : nullptr;
  if (word == nullptr) word = namedWord(source, message, words);
  if (word == nullptr) word = &lastLiteral(words);
  std::string help = known != nullptr ? known->help : literalHelp(word->code);
  if (known != nullptr && word->code == TK_NUMBER_RANGE && known->part == kPortRange) {
    help = portRangeHelp(source.text(word->begin, word->end));
  }
  while (message.ends_with('\n')) message.pop_back();
  message = printableText(message);
  // Some classes say nothing but the value.
  if (message.find(' ') == message.npos) message = "invalid value " + quotedWord(message);
  return {std::move(message), *word, std::move(help)};
}

Refusal explainSilence(std::span<const Token> words) {
  const Token& first = words.front();
  if (first.code == TK_CREATE) {
    return {"the members of an attribute set cannot be given in text", lastLiteral(words),
            "only an empty set can be written; an attribute profile holds attributes"};
  }
  if (first.code == TK_SET) {
    return {"this connection cannot be set", first,
            "name two addresses of one family with tcp, udp or icmp, or a state id"};
  }
  return {"this statement is refused", first, ""};
}
