#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWUtilList.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <strings.h>

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "TarnFWLog.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWUtilText.h"

using namespace TarnFirewall;

namespace {

constexpr Separators kSeparators(", \t");

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

/// The IP protocols of the host by name. A list of definitions has a thousand of them, and
/// `getprotobyname` reads the file from its start at every call, so it is read once. Of two lines
/// with one name the first counts, as it does there.
class Protocols {
 public:
  Protocols() {
    setprotoent(0);
    while (const protoent* const entry = getprotoent()) {
      add(entry->p_name, entry->p_proto);
      for (char** alias = entry->p_aliases; *alias != nullptr; ++alias) add(*alias, entry->p_proto);
    }
    endprotoent();
  }

  /// Null for a name that the host does not have.
  const int* find(std::string_view name) const {
    const auto place = numbers_.find(name);
    return place != numbers_.end() ? &place->second : nullptr;
  }

 private:
  /// Names are short, and there are few.
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const {
      std::size_t hash = 0;
      for (const char c : name) hash = 31 * hash + static_cast<unsigned char>(c);
      return hash;
    }
  };

  void add(const char* name, int number) { numbers_.try_emplace(name, number); }

  std::unordered_map<std::string, int, Hash, std::equal_to<>> numbers_;
};

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
  static const Protocols known;
  return readWords(words, protocols, maximum, count, [](const char* word, std::uint8_t* protocol) {
    long number = 0;
    if (const int* const named = known.find(word)) {
      number = *named;
    } else if (!str2Limited(word, 10, 256, &number)) {
      return false;
    }
    *protocol = static_cast<std::uint8_t>(number);
    return true;
  });
}
