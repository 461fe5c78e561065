#pragma once

/// Prints one JSON object, 4 columns a level:
///
///     CTarnFWJson json(out);
///     json.number("pool_count", 2);
///     json.beginList("pools");
///     json.beginObject();
///     ...
///     json.end();  // the object in the list
///     json.end();  // the list
///     json.end();  // the whole
///
/// Texts are escaped, so that what a kernel writes into them stays inside them: quotes, control
/// characters and every byte that is not ASCII.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "TarnFWLog.h"

namespace TarnFirewall {

class CTarnFWJson {
 public:
  /// Begins the object. The printer must outlive it.
  explicit CTarnFWJson(const PrettyPrinting& out);

  void number(const char* key, std::uint64_t value);
  void text(const char* key, std::string_view value);

  /// Bytes as hexadecimal digits.
  void bytes(const char* key, std::span<const std::byte> value);

  /// Begins a list under a key, or an object in a list.
  void beginList(const char* key);
  void beginObject();

  /// Ends what was begun last, at the end the whole.
  void end();

 private:
  static constexpr int kMostLevels = 8;
  static constexpr int kColumns = 4;

  int width() const { return kColumns * level_; }
  void item();
  void quoted(const char* key, const std::string& value);
  void begin(char closing);

  const PrettyPrinting& out_;
  int level_ = 0;
  struct Level {
    char closing = '}';
    bool hasItems = false;
  } levels_[kMostLevels];
};

}  // namespace TarnFirewall
