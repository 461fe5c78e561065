#pragma once

/// What all actions of the grammar share: the arguments of the parse, the ownership of values, and
/// the way an action fails.
///
/// An action takes over the owned values of its right side at once, with `own`, since the parser
/// does not destroy them when the action fails. It fails by throwing.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "TarnFWException.h"
#include "TarnFWParserValues.h"
#include "TarnFWScanner.h"

namespace TarnFirewall {

class CTarnFWCmdConfig;
class CTarnFWCmdList;

/// The arguments of the parse in progress.
struct FWParse {
  FWStatus_t* status;
  void* scanner;
  const char* filename;
  CTarnFWCmdList** cmdList;
  CTarnFWCmdConfig** cmdConfig;
  fw_lex_extra_* record = yyget_extra(scanner);

  fw_lex_extra_& extra() const { return *record; }
  CTarnFWParserArena& arena() const { return extra().arena; }

  /// Begins the list of commands, and the memory of the load. Throws `std::bad_alloc`.
  void begin() const;

  /// A rule, a part of one or an address, in the memory of the load.
  template <typename Object, typename... Arguments>
  std::unique_ptr<Object> make(Arguments&&... arguments) const {
    return extra().memory->make<Object>(std::forward<Arguments>(arguments)...);
  }

  /// A plain value in the arena. Throws `std::bad_alloc`.
  template <typename Value>
  Value* keep(const Value& value) const;
};

/// A failure with its message and status; 16 where the language names none.
class CParseFailure final : public CTarnFWException {
 public:
  explicit CParseFailure(std::string message, FWStatus_t status = FW_STATUS_PARSING_ERROR)
      : CTarnFWException(std::move(message), static_cast<int>(status)) {}
};

/// A failure that ends the parse without a message and without a status: callers see status 0 and
/// no result, which they test for.
struct SilentParseFailure {};

/// Takes over a value of the right side. What else stands among the arguments of the same call must
/// not throw: the compiler chooses the order, and a value that nobody took over yet would be lost.
template <typename Value>
std::unique_ptr<Value> own(Value* value) {
  return std::unique_ptr<Value>(value);
}

/// Reports the exception that is being handled: its status and text, "internal error" for one that
/// is not the library's, nothing for a silent failure. No result is left.
void reportParseFailure(const FWParse& parse);

/// Deletes both results and clears them.
void dropParseResults(const FWParse& parse);

/// The number as a `Value` of at most `limit`; throws `CParseFailure` with status 17 and the
/// message for any other.
template <typename Value>
Value numberUpTo(std::int64_t number, Value limit, const char* message) {
  if (number < 0 || number > limit) throw CParseFailure(message, FW_STATUS_INTEGER_TOO_LARGE);
  return static_cast<Value>(number);
}

/// The number in 32 bits, as `numberUpTo`.
std::uint32_t number32(std::int64_t number, const char* message);

/// A port, or `CParseFailure` with status 38.
std::uint16_t portNumber(std::int64_t number);

inline std::string asString(const FWParserText& text) { return {text.data, text.length}; }

/// A copy of a name with its NUL in a field that is longer than it.
template <typename Name>
Name nameField(const FWParserText& text) {
  Name name = {};
  std::memcpy(name.text, text.data, text.length);
  return name;
}

template <typename Value>
Value* FWParse::keep(const Value& value) const {
  static_assert(std::is_trivially_copyable_v<Value>);
  void* room = arena().allocateFor<Value>();
  if (room == nullptr) throw std::bad_alloc();
  std::memcpy(room, &value, sizeof value);
  return static_cast<Value*>(room);
}

}  // namespace TarnFirewall
