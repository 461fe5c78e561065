#pragma once

/// Writes JSON to a stream, indented, in the order of the calls. Text that is no UTF-8 gets the
/// replacement character in its place.

#include <concepts>
#include <cstdio>
#include <string_view>
#include <vector>

/// One document. The caller keeps objects and arrays paired.
class JsonText {
 public:
  explicit JsonText(std::FILE* stream) : stream_(stream) {}

  JsonText& beginObject() { return begin('{'); }
  JsonText& endObject() { return end('}'); }
  JsonText& beginArray() { return begin('['); }
  JsonText& endArray() { return end(']'); }

  /// The key of the member whose value comes next.
  JsonText& key(std::string_view name);

  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void value(bool yes);
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) void value(Number number) {
    place();
    if constexpr (std::is_signed_v<Number>) {
      std::fprintf(stream_, "%lld", static_cast<long long>(number));
    } else {
      std::fprintf(stream_, "%llu", static_cast<unsigned long long>(number));
    }
  }

  template <typename Value>
  void member(std::string_view name, const Value& what) {
    key(name).value(what);
  }

  /// Ends the last line.
  void finish() { std::fputc('\n', stream_); }

 private:
  JsonText& begin(char bracket);
  JsonText& end(char bracket);
  void place();
  void newLine();
  void writeString(std::string_view text);

  std::FILE* stream_;
  std::vector<bool> filled_;  // for each level that is open: whether it has an entry
  bool afterKey_ = false;
};
