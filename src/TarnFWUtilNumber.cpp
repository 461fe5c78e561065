#include "TarnFWUtilNumber.h"

#include <cerrno>
#include <cstdlib>

using namespace TarnFirewall;

namespace {

/// Reads a number of up to nine decimal digits and nothing else, which is what most numbers are;
/// -1 for any other text. `strtol` reads it alike, for twenty times as much.
long plainDecimal(const char* text, int base) {
  if (base != 10 && (base != 0 || *text == '0')) return -1;
  long value = 0;
  const char* at = text;
  for (; *at >= '0' && *at <= '9' && at - text < 9; ++at) value = 10 * value + (*at - '0');
  return at != text && *at == '\0' ? value : -1;
}

}  // namespace

bool Str2Long(const char* text, int base, long* value) {
  if (text == nullptr || value == nullptr) return false;
  if (const long plain = plainDecimal(text, base); plain >= 0) {
    errno = 0;
    *value = plain;
    return true;
  }
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

namespace TarnFirewall {

bool str2Limited(const char* text, int base, unsigned long limit, long* value) {
  return Str2Long(text, base, value) && static_cast<unsigned long>(*value) < limit;
}

}  // namespace TarnFirewall

bool Str2Port(const char* text, long* value) { return str2Limited(text, 10, 65536, value); }

bool Str2CIDR4(const char* text, long* value) { return str2Limited(text, 10, 33, value); }

bool Str2CIDR6(const char* text, long* value) { return str2Limited(text, 10, 129, value); }
