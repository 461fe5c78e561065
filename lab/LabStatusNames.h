// Words for the statuses with which the kernel answers commands.
#ifndef TARNLAB_STATUS_NAMES_H
#define TARNLAB_STATUS_NAMES_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace TarnLab {

/// How many statuses have a word: all below this number.
inline constexpr std::uint32_t statusCount = 71;

/// The word of a status below `statusCount`: the text that programs print for it, in small letters
/// and with a dash for whatever is no letter and no digit.
std::string_view statusName(std::uint32_t status);

/// The status by its word, without regard to case, or as a number.
std::optional<std::uint32_t> statusNumber(std::string_view name);

}  // namespace TarnLab

#endif
