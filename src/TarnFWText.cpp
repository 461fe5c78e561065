#include "TarnFWText.h"

#include <cstdarg>
#include <cstdio>

namespace TarnFirewall {

namespace {

__attribute__((format(printf, 2, 0))) void appendFormatted(std::string& text, const char* format,
                                                           va_list arguments) {
  char local[256];
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(local, sizeof local, format, arguments);
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof local) {
    text.append(local, static_cast<std::size_t>(length));
  } else if (length >= 0) {
    const std::size_t start = text.size();
    text.resize(start + static_cast<std::size_t>(length) + 1);
    std::vsnprintf(text.data() + start, static_cast<std::size_t>(length) + 1, format, again);
    text.resize(start + static_cast<std::size_t>(length));
  }
  va_end(again);
}

}  // namespace

std::string formatText(const char* format, ...) {
  std::string text;
  va_list arguments;
  va_start(arguments, format);
  appendFormatted(text, format, arguments);
  va_end(arguments);
  return text;
}

void appendText(std::string& text, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  appendFormatted(text, format, arguments);
  va_end(arguments);
}

}  // namespace TarnFirewall
