#include "JsonText.h"

#include <string>

#include "ShownText.h"

JsonText& JsonText::key(std::string_view name) {
  place();
  writeString(name);
  std::fputs(": ", stream_);
  afterKey_ = true;
  return *this;
}

void JsonText::value(std::string_view text) {
  place();
  writeString(text);
}

void JsonText::value(bool yes) {
  place();
  std::fputs(yes ? "true" : "false", stream_);
}

JsonText& JsonText::begin(char bracket) {
  place();
  std::fputc(bracket, stream_);
  filled_.push_back(false);
  return *this;
}

JsonText& JsonText::end(char bracket) {
  const bool filled = filled_.back();
  filled_.pop_back();
  if (filled) newLine();
  std::fputc(bracket, stream_);
  return *this;
}

/// What stands before a key or a value.
void JsonText::place() {
  if (afterKey_ || filled_.empty()) {
    afterKey_ = false;
    return;
  }
  if (filled_.back()) std::fputc(',', stream_);
  filled_.back() = true;
  newLine();
}

void JsonText::newLine() {
  std::fprintf(stream_, "\n%*s", static_cast<int>(2 * filled_.size()), "");
}

void JsonText::writeString(std::string_view text) {
  std::string escaped = "\"";
  while (!text.empty()) {
    const std::size_t size = characterSize(text);
    const auto first = static_cast<unsigned char>(text[0]);
    if (size == 0) {
      escaped += "\xef\xbf\xbd";
    } else if (text[0] == '"' || text[0] == '\\') {
      escaped += {'\\', text[0]};
    } else if (first < 0x20 || first == 0x7f) {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned int>(first));
      escaped += code;
    } else {
      escaped += text.substr(0, size);
    }
    text.remove_prefix(size == 0 ? 1 : size);
  }
  escaped += '"';
  std::fwrite(escaped.data(), 1, escaped.size(), stream_);
}
