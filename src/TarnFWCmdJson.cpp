#include "TarnFWCmdJson.h"

#include <cassert>

#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

std::string escaped(std::string_view text) {
  std::string result;
  for (const char each : text) {
    const auto code = static_cast<unsigned char>(each);
    if (each == '"' || each == '\\') {
      result += '\\';
      result += each;
    } else if (code < 0x20 || code >= 0x7f) {
      result += "\\u";
      appendHex(result, static_cast<unsigned int>(code), 4);
    } else {
      result += each;
    }
  }
  return result;
}

}  // namespace

CTarnFWJson::CTarnFWJson(const PrettyPrinting& out) : out_(out) {
  out_.print(out_.context, "%*s{\n", 0, "");
  begin('}');
}

void CTarnFWJson::begin(char closing) {
  assert(level_ < kMostLevels);
  levels_[level_++] = {closing, false};
}

/// Ends the line of the item before, if there is one: a level is ended by its own.
void CTarnFWJson::item() {
  if (levels_[level_ - 1].hasItems) out_.print(out_.context, "%s%s", ",", "\n");
  levels_[level_ - 1].hasItems = true;
}

void CTarnFWJson::number(const char* key, std::uint64_t value) {
  item();
  out_.print(out_.context, "%*s\"%s\": %llu", width(), "", key,
             static_cast<unsigned long long>(value));
}

void CTarnFWJson::quoted(const char* key, const std::string& value) {
  item();
  out_.print(out_.context, "%*s\"%s\": \"%s\"", width(), "", key, value.c_str());
}

void CTarnFWJson::text(const char* key, std::string_view value) { quoted(key, escaped(value)); }

void CTarnFWJson::bytes(const char* key, std::span<const std::byte> value) {
  std::string digits;
  for (const std::byte each : value) appendHex(digits, std::to_integer<unsigned int>(each), 2);
  quoted(key, digits);
}

void CTarnFWJson::beginList(const char* key) {
  item();
  out_.print(out_.context, "%*s\"%s\": [\n", width(), "", key);
  begin(']');
}

void CTarnFWJson::beginObject() {
  item();
  out_.print(out_.context, "%*s{\n", width(), "");
  begin('}');
}

// An object ends a line also when it has no items, as the report of a clearing does.
void CTarnFWJson::end() {
  const Level ended = levels_[--level_];
  const bool isObject = ended.closing == '}';
  if (ended.hasItems || isObject) out_.print(out_.context, "%s%s", "", "\n");
  out_.print(out_.context, isObject ? "%*s}" : "%*s]", width(), "");
  if (level_ == 0) out_.print(out_.context, "%s%s", "", "\n");
}

}  // namespace TarnFirewall
