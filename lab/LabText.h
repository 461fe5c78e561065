// printf into a string.
#ifndef TARNLAB_TEXT_H
#define TARNLAB_TEXT_H

#include <optional>
#include <string>
#include <string_view>

namespace TarnLab {

[[gnu::format(printf, 1, 2)]] std::string format(const char* text, ...);

/// The text with control bytes, quotes and bytes above 126 written as \xNN, for the log and errors.
std::string printable(std::string_view text);

/// A whole unsigned number in base 10 or, with 0x in front, in base 16; nothing for anything else
/// or above `limit`.
std::optional<unsigned long long> parseNumber(std::string_view text, unsigned long long limit);

bool equalIgnoringCase(std::string_view left, std::string_view right);

}  // namespace TarnLab

#endif
