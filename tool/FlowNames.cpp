#include "FlowNames.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

namespace {

constexpr std::size_t kServiceName = 31;
constexpr std::size_t kProtocolName = 15;

/// The services of the host by port and protocol. Of two with one port the first counts, as it does
/// for `getservbyport`.
class Services {
 public:
  Services() {
    setservent(0);
    while (const servent* const entry = getservent()) add(*entry);
    endservent();
  }

  const char* find(const char* protocol, std::uint16_t port) const {
    const auto place = names_.find(key(protocol, port));
    return place != names_.end() ? place->second.c_str() : "Unknown";
  }

 private:
  static std::uint32_t key(const char* protocol, std::uint16_t port) {
    return (protocol[0] == 'u' ? 0x10000u : 0u) | port;
  }

  void add(const servent& entry) {
    if (std::strcmp(entry.s_proto, "tcp") != 0 && std::strcmp(entry.s_proto, "udp") != 0) return;
    const std::uint16_t port = ntohs(static_cast<std::uint16_t>(entry.s_port));
    names_.try_emplace(key(entry.s_proto, port), entry.s_name,
                       std::min(std::strlen(entry.s_name), kServiceName));
  }

  std::unordered_map<std::uint32_t, std::string> names_;
};

}  // namespace

const char* PortStr(const char* protocolName, std::uint16_t port, std::span<char> buffer) {
  static const Services services;
  const char* const name = services.find(protocolName, port);
  const std::size_t length = std::min(std::strlen(name), buffer.size() - 1);
  std::memcpy(buffer.data(), name, length);
  buffer[length] = '\0';
  return buffer.data();
}

const char* hostProtocolName(std::uint8_t number) {
  struct Known {
    bool asked = false;
    std::optional<std::string> name;
  };
  static std::array<Known, 256> names;
  Known& known = names[number];
  if (!known.asked) {
    if (const protoent* const entry = getprotobynumber(number)) known.name = entry->p_name;
    known.asked = true;
  }
  return known.name ? known.name->c_str() : nullptr;
}

const char* protocolName(std::uint8_t number) {
  static std::array<char[kProtocolName + 1], 256> names{};
  char(&name)[kProtocolName + 1] = names[number];
  if (name[0] == '\0') {
    if (const char* const known = hostProtocolName(number)) {
      std::snprintf(name, sizeof name, "%s", known);
    } else {
      std::snprintf(name, sizeof name, "other(%d)", static_cast<int>(number));
    }
  }
  return name;
}
