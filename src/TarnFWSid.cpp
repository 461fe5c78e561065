#include "TarnFWSid.h"

#include <strings.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace TarnFirewall {

namespace {

constexpr std::uint8_t kRevision = 1;
constexpr std::uint64_t kMaxAuthority = 0xffffffffffff;

/// Takes the text up to the next "-" or the end off the front of `rest`, which becomes null after
/// the last field.
const char* nextField(char*& rest) {
  if (rest == nullptr) return nullptr;
  char* field = rest;
  rest = std::strchr(field, '-');
  if (rest != nullptr) *rest++ = '\0';
  return field;
}

/// A field's leading decimal number; what follows its digits is ignored, as `strtoull` does.
bool readNumber(const char* field, std::uint64_t max, std::uint64_t* number) {
  char* end = nullptr;
  errno = 0;
  *number = std::strtoull(field, &end, 10);
  return errno == 0 && end != field && *number <= max;
}

bool parse(const char* text, fwattr_sid& sid) {
  std::string copy(text);
  char* rest = copy.data();
  const char* field = nextField(rest);
  if (strcasecmp(field, "S") != 0) return false;
  field = nextField(rest);
  if (field == nullptr || std::strcmp(field, "1") != 0) return false;
  std::uint64_t number = 0;
  field = nextField(rest);
  if (field == nullptr || !readNumber(field, kMaxAuthority, &number)) return false;
  // The authority's eight bytes begin at the revision, which is set over its zeros at the end.
  storeRecord(reinterpret_cast<unsigned char*>(&sid) + offsetof(fwattr_sid, revision),
              net64(number));
  std::size_t count = 0;
  while ((field = nextField(rest)) != nullptr) {
    if (count == kSidSubAuthorities) return false;
    if (!readNumber(field, std::numeric_limits<std::uint32_t>::max(), &number)) return false;
    sid.subAuthorities[count++] = static_cast<std::uint32_t>(number);
  }
  sid.revision = kRevision;
  sid.count = static_cast<std::uint8_t>(count);
  return true;
}

}  // namespace

bool sid_str2bin(const char* text, fwattr_sid* sid) {
  if (text == nullptr || sid == nullptr) return false;
  std::memset(sid, 0, sizeof *sid);
  return parse(text, *sid);
}

bool sid_bin2str(const fwattr_sid* sid, char* buffer, std::size_t size) {
  if (sid == nullptr || buffer == nullptr) return false;
  std::memset(buffer, 0, size);
  if (sid->revision != kRevision || sid->count > kSidSubAuthorities) return false;
  const auto* bytes = reinterpret_cast<const unsigned char*>(sid);
  const std::uint64_t authority =
      loadRecord<net64>(bytes + offsetof(fwattr_sid, revision)) & kMaxAuthority;
  std::size_t used = 0;
  const auto fits = [&](int written) {
    if (written < 0 || static_cast<std::size_t>(written) >= size - used) return false;
    used += static_cast<std::size_t>(written);
    return true;
  };
  if (!fits(std::snprintf(buffer, size, "S-1-%lld", static_cast<long long>(authority)))) {
    return false;
  }
  for (std::size_t i = 0; i < sid->count; ++i) {
    const unsigned long sub = sid->subAuthorities[i];
    if (!fits(std::snprintf(buffer + used, size - used, "-%lu", sub))) return false;
  }
  return true;
}

}  // namespace TarnFirewall
