#include "LanguageText.h"

#include <arpa/inet.h>

#include <algorithm>

#include "ShownText.h"
#include "State.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// Longest text that the scanner takes.
constexpr std::size_t kMostText = 255;

std::string ipText(int family, const std::uint8_t* bytes) {
  char text[INET6_ADDRSTRLEN] = "";
  inet_ntop(family, bytes, text, sizeof text);
  return text;
}

std::string number(unsigned int value) { return std::to_string(value); }

std::string valueText(const FWAddress_& address) {
  const std::uint8_t* const value = address.value;
  switch (address.type) {
    case FW_ADDRESS_ANY:
      return "any";
    case FW_ADDRESS_IPV4:
      return ipText(AF_INET, value);
    case FW_ADDRESS_IPV6:
      return ipText(AF_INET6, value);
    case FW_ADDRESS_IPV4_RANGE:
      return ipText(AF_INET, value) + "-" + ipText(AF_INET, value + 4);
    case FW_ADDRESS_IPV6_RANGE:
      return ipText(AF_INET6, value) + "-" + ipText(AF_INET6, value + 16);
    case FW_ADDRESS_IPV4_CIDR:
      return ipText(AF_INET, value) + "/" + number(value[4]);
    case FW_ADDRESS_IPV6_CIDR:
      return ipText(AF_INET6, value) + "/" + number(value[16]);
    case FW_ADDRESS_ETHER:
      return macText(value);
    case FW_ADDRESS_ETHER_RANGE:
      return macText(value) + "-" + macText(value + 6);
    case FW_ADDRESS_ETHER_MASK:
      return macText(value) + "/" + macText(value + 6);
    case FW_ADDRESS_ADDRSET:
      return "addrset " + quoted(setNameOf(address));
    case FW_ADDRESS_ATTR_INT:
    case FW_ADDRESS_ATTR_UINT:
    case FW_ADDRESS_ATTR_STRING:
    case FW_ADDRESS_ATTR_SID:
      throw Unsayable("it is an attribute in place of an address");
    default:
      throw Unsayable(formatText("the type of address %u is unknown", unsigned{address.type}));
  }
}

/// Whether a character, or a byte that is none, may stand in a message as it is.
bool isShown(std::string_view character) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  if (character.size() == 1) return byte(0) >= 0x20 && byte(0) < 0x7f && byte(0) != '\\';
  return byte(0) != 0xc2 || byte(1) >= 0xa0;  // what a terminal may obey
}

}  // namespace

std::string macText(const std::uint8_t* octets) {
  std::string text;
  for (std::size_t i = 0; i < 6; ++i) {
    if (i > 0) text += ':';
    appendHex(text, octets[i], 2);
  }
  return text;
}

std::string quoted(std::string_view text) {
  if (text.size() > kMostText) throw Unsayable("its text is too long");
  const bool hasDouble = text.find('"') != text.npos;
  if (hasDouble && text.find('\'') != text.npos) {
    throw Unsayable("no quotes fit around " + shownName(text));
  }
  const char quote = hasDouble ? '\'' : '"';
  std::string result(1, quote);
  result += text;
  result += quote;
  return result;
}

std::string addressText(const FWAddress_& address) {
  const std::string text = valueText(address);
  return (address.flags & kAddressNegated) != 0 ? "not " + text : text;
}

std::string shownAddress(const FWAddress_& address) {
  try {
    return escapedText(addressText(address));
  } catch (const Unsayable& e) {
    return std::string("(") + e.what() + ")";
  }
}

std::string escapedText(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    const std::size_t size = std::max<std::size_t>(characterSize(text), 1);
    const std::string_view character = text.substr(0, size);
    if (isShown(character)) {
      escaped += character;
    } else {
      for (const char c : character) {
        escaped += "\\x";
        appendHex(escaped, static_cast<unsigned char>(c), 2);
      }
    }
    text.remove_prefix(size);
  }
  return escaped;
}

std::string shownName(std::string_view name) {
  std::string text = "\"";
  for (const char c : escapedText(name))
    text += c == '"' ? std::string("\\x22") : std::string(1, c);
  return text + '"';
}

std::string countedText(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}
