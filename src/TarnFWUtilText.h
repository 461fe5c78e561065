#pragma once

/// Bounded copies and words of a text.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

/// `strncpy` that always ends the text: the last byte of the destination is cleared. True, unless
/// there is no byte to clear.
bool Strncpy(char* destination, const char* source, std::size_t size);

namespace TarnFirewall {

/// Words of a text, in a copy of its own, since cutting writes into it.
class TextWords {
 public:
  TextWords(const char* text, const char* separators)
      : copy_(strdup(text)), separators_(separators), rest_(copy_.get()) {}

  /// False when the copy could not be made.
  explicit operator bool() const { return copy_ != nullptr; }

  /// Null after the last.
  const char* next() { return strtok_r(nullptr, separators_, &rest_); }

 private:
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };
  std::unique_ptr<char, Free> copy_;
  const char* separators_;
  char* rest_;
};

}  // namespace TarnFirewall
