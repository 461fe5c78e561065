#include "Panic.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

void Panic(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  std::abort();
}
