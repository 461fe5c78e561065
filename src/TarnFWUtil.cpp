#include "TarnFWUtil.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <strings.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "TarnFWAddressConvert.h"
#include "TarnFWFilter.h"
#include "TarnFWLog.h"

namespace {

using namespace TarnFirewall;

/// Words of a text, in a copy of its own, since cutting writes into it.
class Words {
 public:
  Words(const char* text, const char* separators)
      : copy_(strdup(text)), separators_(separators), rest_(copy_.get()) {}

  /// False when the copy could not be made.
  explicit operator bool() const { return copy_ != nullptr; }

  /// Null after the last.
  const char* next() { return strtok_r(nullptr, separators_, &rest_); }

 private:
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };
  std::unique_ptr<char, Free> copy_;
  const char* separators_;
  char* rest_;
};

constexpr const char* kListSeparators = ", \t";
constexpr const char* kTimeoutSeparators = " \t,:";

/// White space as `isspace` has it, without a look at the locale.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// A number below a limit when taken as unsigned, so that a negative number fails.
bool str2Limited(const char* text, int base, unsigned long limit, long* value) {
  return Str2Long(text, base, value) && static_cast<unsigned long>(*value) < limit;
}

std::uint64_t host64At(const in6_addr& address, std::size_t offset) {
  return loadRecord<net64>(address.s6_addr + offset);
}

/// What the two families do differently in `parseIP`.
struct IPv4 {
  using Address = in_addr;
  static constexpr int family = AF_INET;

  static bool str2Mask(const char* text, Address* mask) {
    long prefix = 0;
    return Str2CIDR4(text, &prefix) && cidr2ipv4mask(static_cast<unsigned int>(prefix), mask);
  }
  static bool rises(const Address& first, const Address& last) {
    return ntohl(first.s_addr) < ntohl(last.s_addr);
  }
};

struct IPv6 {
  using Address = in6_addr;
  static constexpr int family = AF_INET6;

  static bool str2Mask(const char* text, Address* mask) {
    long prefix = 0;
    return Str2CIDR6(text, &prefix) && cidr2ipv6mask(static_cast<unsigned int>(prefix), mask);
  }
  static bool rises(const Address& first, const Address& last) {
    return std::memcmp(&first, &last, 8) == 0 && host64At(first, 8) < host64At(last, 8);
  }
};

template <typename Family>
bool parseIP(const char* text, typename Family::Address* address,
             typename Family::Address* maskOrEnd, int* isRange) {
  if (text == nullptr || address == nullptr || maskOrEnd == nullptr || isRange == nullptr) {
    return false;
  }
  const char* separator = std::strchr(text, '-');
  *isRange = separator != nullptr ? 1 : 0;
  if (separator == nullptr) separator = std::strchr(text, '/');

  const std::string_view left =
      separator != nullptr ? std::string_view(text, separator) : std::string_view(text);
  if (inetPton(Family::family, left, address) != 1) return false;

  if (separator == nullptr) {
    std::memset(maskOrEnd, 0xff, sizeof *maskOrEnd);
    return true;
  }
  const char* const right = separator + 1;
  const bool isAddress = tarn_inet_pton(Family::family, right, maskOrEnd) == 1;
  if (*isRange != 0) return isAddress && Family::rises(*address, *maskOrEnd);
  if (!isAddress && !Family::str2Mask(right, maskOrEnd)) return false;

  auto* const bytes = reinterpret_cast<std::uint8_t*>(address);
  const auto* const mask = reinterpret_cast<const std::uint8_t*>(maskOrEnd);
  for (std::size_t i = 0; i < sizeof *address; ++i) bytes[i] &= mask[i];
  return true;
}

/// Reads a dotted quad up to white space or the end: 1 when it is one, else 0 with nothing written.
/// It takes what the C library's `inet_pton` takes, which a test compares; addresses of large
/// configurations are read here.
int readQuad(const char* at, const char* end, std::uint8_t* address) {
  std::uint8_t octets[4];
  for (unsigned int i = 0; i < 4; ++i) {
    if (i != 0 && (at == end || *at++ != '.')) return 0;
    const char* const first = at;
    unsigned int value = 0;
    while (at != end && *at >= '0' && *at <= '9') {
      value = value * 10 + static_cast<unsigned int>(*at - '0');
      if (value > 255 || at - first == 3) return 0;
      ++at;
    }
    if (at == first || (*first == '0' && at - first > 1)) return 0;
    octets[i] = static_cast<std::uint8_t>(value);
  }
  if (at != end && !isSpace(*at)) return 0;
  std::memcpy(address, octets, sizeof octets);
  return 1;
}

}  // namespace

// --- Numbers

bool Str2Long(const char* text, int base, long* value) {
  if (text == nullptr || value == nullptr) return false;
  char* end = const_cast<char*>(text);
  errno = 0;
  *value = std::strtol(text, &end, base);
  return errno == 0 && end != text && *end == '\0';
}

bool Str2ULong(const char* text, int base, unsigned long* value) {
  if (text == nullptr || value == nullptr) return false;
  char* end = const_cast<char*>(text);
  errno = 0;
  *value = std::strtoul(text, &end, base);
  return errno == 0 && end != text && *end == '\0';
}

bool Str2Uint(const char* text, int base, unsigned int* value) {
  if (value == nullptr) return false;
  long number = 0;
  if (!Str2Long(text, base, &number)) return false;
  *value = static_cast<unsigned int>(number);
  return true;
}

bool Str2Port(const char* text, long* value) { return str2Limited(text, 10, 65536, value); }

bool Str2CIDR4(const char* text, long* value) { return str2Limited(text, 10, 33, value); }

bool Str2CIDR6(const char* text, long* value) { return str2Limited(text, 10, 129, value); }

bool Strncpy(char* destination, const char* source, std::size_t size) {
  if (destination == nullptr || source == nullptr || size == 0) return false;
  const std::size_t length = strnlen(source, size - 1);
  std::memcpy(destination, source, length);
  std::memset(destination + length, 0, size - length);
  return true;
}

// --- Ports

bool Str2PortOrRange(const char* text, long* low, long* high) {
  if (text == nullptr || low == nullptr || high == nullptr) return false;
  const char* separator = std::strchr(text, '-');
  if (separator == nullptr) separator = std::strchr(text, ':');
  if (separator == nullptr) return false;
  if (separator[1] < '0' || separator[1] > '9') return false;
  return Str2Port(std::string(text, separator).c_str(), low) && Str2Port(separator + 1, high) &&
         *low <= *high;
}

bool Str2PortRange(const char* text, long* low, long* high) {
  return Str2PortOrRange(text, low, high) && *low < *high;
}

bool ParsePortString(const char* text, std::uint16_t* low, std::uint16_t* high) {
  if (text == nullptr || low == nullptr || high == nullptr) return false;
  *low = 0;
  *high = 0;
  long first = 0;
  if (std::strpbrk(text, "-:") == nullptr) {
    if (!Str2Port(text, &first)) return false;
    *low = htons(static_cast<std::uint16_t>(first));
    return true;
  }
  long last = 0;
  if (!Str2PortRange(text, &first, &last)) return false;
  *low = htons(static_cast<std::uint16_t>(first));
  *high = htons(static_cast<std::uint16_t>(last));
  return true;
}

// --- Lists and names

bool ParseCompString(const char* text, unsigned int* component, const char* const* names,
                     unsigned int count) {
  if (text == nullptr || component == nullptr || names == nullptr) return false;
  if (*text >= '0' && *text <= '9') {
    return Str2Uint(text, 0, component) &&
           (*component == FW_COMPONENT_ALL || *component < kComponentRows);
  }
  if (strcasecmp(text, "all") == 0) {
    *component = FW_COMPONENT_ALL;
    return true;
  }
  for (unsigned int i = 0; i < count; ++i) {
    if (strcasecmp(text, names[i]) == 0) {
      *component = i;
      return true;
    }
  }
  return false;
}

bool ParseEtherTypeString(const char* text, std::uint16_t* types, unsigned int maximum,
                          unsigned int* count) {
  if (text == nullptr || types == nullptr || count == nullptr) return false;
  Words words(text, kListSeparators);
  if (!words) {
    TARNFW_WARNING("invalid ethertype: %s\n", text);
    return false;
  }
  unsigned int found = 0;
  while (found < maximum) {
    const char* const word = words.next();
    if (word == nullptr) break;
    long type = 0;
    if (!str2Limited(word, 0, 65536, &type)) return false;
    types[found++] = htons(static_cast<std::uint16_t>(type));
  }
  *count = found;
  return true;
}

bool ParseProtocolString(const char* text, std::uint8_t* protocols, unsigned int maximum,
                         unsigned int* count) {
  if (text == nullptr || protocols == nullptr || count == nullptr) return false;
  Words words(text, kListSeparators);
  if (!words) {
    TARNFW_WARNING("invalid protocol: %s\n", text);
    return false;
  }
  unsigned int found = 0;
  while (found < maximum) {
    const char* const word = words.next();
    if (word == nullptr) break;
    long protocol = 0;
    if (const protoent* const entry = getprotobyname(word)) {
      protocol = entry->p_proto;
    } else if (!str2Limited(word, 10, 256, &protocol)) {
      return false;
    }
    protocols[found++] = static_cast<std::uint8_t>(protocol);
  }
  *count = found;
  return true;
}

const char* const g_tarnfw_timeout_name[kTimeouts] = {
    "dfw.tcp.first_packet",  "dfw.tcp.opening",      "dfw.tcp.established",
    "dfw.tcp.closing",       "dfw.tcp.fin_wait",     "dfw.tcp.closed",
    "dfw.udp.first_packet",  "dfw.udp.single",       "dfw.udp.multiple",
    "dfw.icmp.first_packet", "dfw.icmp.error_reply", "dfw.other.first_packet",
    "dfw.other.single",      "dfw.other.multiple",   "dfw.ip.frag",
    "dfw.interval",          "dfw.adaptive_start",   "dfw.adaptive_end",
    "dfw.src_node",          "dfw.ts_diff",          "dfw.invalid_state",
    "dfw.invalid_l7",
};

unsigned int TimeoutName2ID(const char* name) {
  if (name == nullptr) return kTimeoutNotFound;
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    if (strcasecmp(name, g_tarnfw_timeout_name[i]) == 0) return i;
  }
  return kTimeoutNotFound;
}

bool ParseTimeoutList(const char* text, std::uint32_t* values, unsigned int count) {
  if (text == nullptr || values == nullptr) return false;
  Words words(text, kTimeoutSeparators);
  // The empty line behind each of these lines is part of what readers of the log match.
  if (!words) {
    TARNFW_WARNING("out of memory\n\n");
    return false;
  }
  for (unsigned int i = 0; i < count; ++i) {
    const char* const word = words.next();
    if (word == nullptr) {
      TARNFW_WARNING("missing %d timeout values\n\n", static_cast<int>(count - i));
      return false;
    }
    long value = 0;
    if (!Str2Long(word, 10, &value) || value < 0) {
      TARNFW_WARNING("bad timeout value: %s\n\n", word);
      return false;
    }
    values[i] = static_cast<std::uint32_t>(value);
  }
  if (words.next() != nullptr) {
    TARNFW_WARNING("too many timeout values\n\n");
    return false;
  }
  return true;
}

// --- Addresses

bool ParseMACString(const char* text, std::uint8_t* address, std::uint8_t* mask) {
  if (text == nullptr || address == nullptr || mask == nullptr) return false;
  std::uint8_t* const a = address;
  std::uint8_t* const m = mask;
  if (std::strchr(text, '/') != nullptr) {
    if (std::sscanf(text, "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx/%hhx:%hhx:%hhx:%hhx:%hhx:%hhx", &a[0],
                    &a[1], &a[2], &a[3], &a[4], &a[5], &m[0], &m[1], &m[2], &m[3], &m[4],
                    &m[5]) != 12 &&
        std::sscanf(text, "%hhx-%hhx-%hhx-%hhx-%hhx-%hhx/%hhx-%hhx-%hhx-%hhx-%hhx-%hhx", &a[0],
                    &a[1], &a[2], &a[3], &a[4], &a[5], &m[0], &m[1], &m[2], &m[3], &m[4],
                    &m[5]) != 12) {
      return false;
    }
  } else {
    if (std::sscanf(text, "%hhx:%hhx:%hhx:%hhx:%hhx:%hhx", &a[0], &a[1], &a[2], &a[3], &a[4],
                    &a[5]) != 6 &&
        std::sscanf(text, "%hhx-%hhx-%hhx-%hhx-%hhx-%hhx", &a[0], &a[1], &a[2], &a[3], &a[4],
                    &a[5]) != 6) {
      return false;
    }
    std::memset(mask, 0xff, 6);
  }
  for (std::size_t i = 0; i < 6; ++i) address[i] &= mask[i];
  return true;
}

bool ParseUUIDString(const char* text, std::uint8_t* uuid, int* index, int* isVnic) {
  if (text == nullptr || uuid == nullptr || index == nullptr || isVnic == nullptr) return false;
  *index = 0;
  *isVnic = 0;
  int number = 0;
  if (vnicstr2uuid(uuid, &number, text)) {
    *index = number;
    *isVnic = 1;
    return true;
  }
  return gfystr2uuid(uuid, text) || normalstr2uuid(uuid, text);
}

int tarn_inet_pton(int family, const char* text, void* buffer) {
  if (text == nullptr) return 0;
  return inetPton(family, text, buffer);
}

namespace TarnFirewall {

int inetPton(int family, std::string_view text, void* buffer) {
  if (buffer == nullptr) return 0;
  const char* begin = text.data();
  const char* const end = begin + text.size();
  while (begin != end && isSpace(*begin)) ++begin;
  if (family == AF_INET) return readQuad(begin, end, static_cast<std::uint8_t*>(buffer));
  const char* wordEnd = begin;
  while (wordEnd != end && !isSpace(*wordEnd)) ++wordEnd;

  char word[INET6_ADDRSTRLEN];
  const auto length = static_cast<std::size_t>(wordEnd - begin);
  if (length == 0 || length >= sizeof word) return 0;
  std::memcpy(word, begin, length);
  word[length] = '\0';
  return inet_pton(family, word, buffer);
}

}  // namespace TarnFirewall

bool ParseIPv4String(const char* text, in_addr* address, in_addr* maskOrEnd, int* isRange) {
  return parseIP<IPv4>(text, address, maskOrEnd, isRange);
}

bool ParseIPv6String(const char* text, in6_addr* address, in6_addr* maskOrEnd, int* isRange) {
  return parseIP<IPv6>(text, address, maskOrEnd, isRange);
}

bool ParseIPString(const char* text, in_addr* ipv4, in6_addr* ipv6, int* isRange, int* isV6) {
  if (text == nullptr || ipv4 == nullptr || ipv6 == nullptr || isV6 == nullptr) return false;
  *isV6 = std::strchr(text, ':') != nullptr ? 1 : 0;
  return *isV6 != 0 ? ParseIPv6String(text, &ipv6[0], &ipv6[1], isRange)
                    : ParseIPv4String(text, &ipv4[0], &ipv4[1], isRange);
}

// --- Filters

TarnFirewall::FilterRecords GetFilterDetailList(int fd, const char* agent, std::uint32_t* count) {
  using namespace TarnFirewall;

  FWFilterList_ list{};
  if (agent != nullptr) Strncpy(list.name, agent, sizeof list.name - 1);
  FWIoctlFrame frame{};
  frame.bodyLength = sizeof list;
  frame.body = reinterpret_cast<std::uintptr_t>(&list);
  *count = 0;

  frame.command = FW_REQUEST_FILTER_COUNT;
  if (ioctl(fd, FW_REQUEST_FILTER_COUNT, &frame) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (frame.status != 0) {
    TARNFW_ERROR("ioctl failed to get filter count: %d\n\n", static_cast<int>(frame.status));
    return nullptr;
  }

  const std::uint32_t known = list.count;
  if (known == 0) {
    TARNFW_ERROR("there is no filter for agent %s\n\n", agent != nullptr ? agent : "");
    return nullptr;
  }
  if (!itemsFit(known, sizeof(FWFilterRecord_), UINT32_MAX)) {
    TARNFW_ERROR("invalid filter count: %d\n\n", static_cast<int>(known));
    return nullptr;
  }
  FilterRecords records(static_cast<FWFilterRecord_*>(std::calloc(known, sizeof(FWFilterRecord_))));
  if (records == nullptr) {
    TARNFW_ERROR("no memory for getting filters: %d\n\n", static_cast<int>(known));
    return nullptr;
  }

  frame.command = FW_REQUEST_FILTER_LIST;
  list.bufferLength = static_cast<std::uint32_t>(known * sizeof(FWFilterRecord_));
  list.buffer = reinterpret_cast<std::uintptr_t>(records.get());
  if (ioctl(fd, FW_REQUEST_FILTER_LIST, &frame) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (frame.status != 0) {
    TARNFW_ERROR("ioctl failed to get filters: %d\n\n", static_cast<int>(frame.status));
    return nullptr;
  }
  if (list.count > known) {
    TARNFW_WARNING("%u filters returned for room of %u\n", static_cast<unsigned int>(list.count),
                   known);
    list.count = known;
  }
  *count = list.count;
  return records;
}
