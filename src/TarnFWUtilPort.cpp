#include "TarnFWUtilPort.h"

#include <arpa/inet.h>

#include <cstring>
#include <string>

#include "TarnFWUtilNumber.h"

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
