#pragma once

/// Where the scanner reads from: a stream, or a text once more.
///
/// Whether a comment or a long quoted text is one shows at its close only. Until then it is held,
/// and when the input ends first, what follows its first character is read again as other words. Of
/// a text that is longer than the limit only the beginning is held: a comment may have any length.

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace TarnFirewall {

class CTarnFWScannerInput {
 public:
  /// Longest text in bytes that is held.
  static constexpr std::size_t kHeldLimit = std::size_t{1} << 22;

  /// Holds a new text, which has been scanned up to `line`. This and `add` throw `std::bad_alloc`.
  void hold(std::string_view text, int line);

  /// Adds to the text that is held. False above the limit: then the text is lost but for its
  /// beginning.
  bool add(std::string_view text);

  bool isLost() const { return lost_; }
  const std::string& held() const { return held_; }

  /// Line on which the held text begins.
  int line() const { return line_; }

  /// Makes what is held the input, without its first character; nothing when it is lost. The input
  /// ends where the text ends.
  void readAgain();

  /// Size of the text that is being read again: the last bytes of the whole input. 0 while none is.
  std::size_t againSize() const { return readsAgain_ ? again_.size() : 0; }

  /// Reads up to `room` bytes, to the end of a line only when `interactive`; 0 at the end. Throws
  /// `CTarnFWException` with status 12 when the stream can't be read.
  std::size_t read(std::FILE* stream, bool interactive, char* buffer, std::size_t room);

 private:
  std::string held_;
  std::string again_;
  std::size_t place_ = 0;  // in `again_`
  int line_ = 0;
  bool lost_ = false;
  bool readsAgain_ = false;
};

}  // namespace TarnFirewall
