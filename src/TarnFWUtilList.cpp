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

/// Reads up to `maximum` words, each with `read(word, value)`. False when one was refused; `*count`
/// is left alone then.
template <typename Value, typename Read>
bool readWords(TextWords& words, Value* values, unsigned int maximum, unsigned int* count,
               const Read& read) {
  unsigned int found = 0;
  while (found < maximum) {
    const char* const word = words.next();
    if (word == nullptr) break;
    if (!read(word, values + found)) return false;
    ++found;
  }
  *count = found;
  return true;
}

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
  return readWords(words, types, maximum, count, [](const char* word, std::uint16_t* type) {
    long number = 0;
    if (!str2Limited(word, 0, 65536, &number)) return false;
    *type = htons(static_cast<std::uint16_t>(number));
    return true;
  });
}

bool ParseProtocolString(const char* text, std::uint8_t* protocols, unsigned int maximum,
                         unsigned int* count) {
  if (text == nullptr || protocols == nullptr || count == nullptr) return false;
  TextWords words(text, kSeparators);
  if (!words) {
    TARNFW_WARNING("invalid protocol: %s\n", text);
    return false;
  }
  return readWords(words, protocols, maximum, count, [](const char* word, std::uint8_t* protocol) {
    long number = 0;
    if (const protoent* const entry = getprotobyname(word)) {
      number = entry->p_proto;
    } else if (!str2Limited(word, 10, 256, &number)) {
      return false;
    }
    *protocol = static_cast<std::uint8_t>(number);
    return true;
  });
}
