// Names of the kernel's commands.
#ifndef TARNLAB_COMMAND_NAMES_H
#define TARNLAB_COMMAND_NAMES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TarnLab {

/// The command's name, or "command N" for a number without one.
std::string commandName(std::uint32_t number);

/// The number of a command by its name, without regard to case, or as a number.
std::optional<std::uint16_t> commandNumber(std::string_view name);

}  // namespace TarnLab

#endif
