#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWUtilList.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <strings.h>

#include "TarnFWLog.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWUtilText.h"

using namespace TarnFirewall;

namespace {

constexpr const char* kSeparators = ", \t";

}  // namespace

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
  TextWords words(text, kSeparators);
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
  TextWords words(text, kSeparators);
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
