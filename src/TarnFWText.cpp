#include "TarnFWText.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace TarnFirewall {

namespace {

template <typename Text>
__attribute__((format(printf, 2, 0))) void appendFormatted(Text& text, const char* format,
                                                           va_list arguments) {
  char local[256];
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(local, sizeof local, format, arguments);
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof local) {
    text += std::string_view(local, static_cast<std::size_t>(length));
  } else if (length >= 0) {
    std::string whole(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(whole.data(), whole.size() + 1, format, again);
    text += whole;
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

void appendText(CTarnFWText& text, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  appendFormatted(text, format, arguments);
  va_end(arguments);
}

void CTarnFWText::erase(std::size_t place, std::size_t length) {
  const std::size_t after = size() - place;
  const std::size_t dropped = std::min(length, after);
  std::memmove(begin_ + place, begin_ + place + dropped, after - dropped);
  end_ -= dropped;
}

void CTarnFWText::grow(std::size_t length) {
  const std::size_t used = size();
  const std::size_t room = 2 * (used + length);
  auto larger = std::make_unique_for_overwrite<char[]>(room);
  std::memcpy(larger.get(), begin_, used);
  grown_ = std::move(larger);
  begin_ = grown_.get();
  end_ = begin_ + used;
  limit_ = begin_ + room;
}

}  // namespace TarnFirewall
