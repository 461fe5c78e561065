#include "TarnFWUtilText.h"

bool Strncpy(char* destination, const char* source, std::size_t size) {
  if (destination == nullptr || source == nullptr || size == 0) return false;
  const std::size_t length = strnlen(source, size - 1);
  std::memcpy(destination, source, length);
  std::memset(destination + length, 0, size - length);
  return true;
}
