#include "TarnFWUtilNumber.h"

#include <cerrno>
#include <cstdlib>

using namespace TarnFirewall;

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

namespace TarnFirewall {

bool str2Limited(const char* text, int base, unsigned long limit, long* value) {
  return Str2Long(text, base, value) && static_cast<unsigned long>(*value) < limit;
}

}  // namespace TarnFirewall

bool Str2Port(const char* text, long* value) { return str2Limited(text, 10, 65536, value); }

bool Str2CIDR4(const char* text, long* value) { return str2Limited(text, 10, 33, value); }

bool Str2CIDR6(const char* text, long* value) { return str2Limited(text, 10, 129, value); }
