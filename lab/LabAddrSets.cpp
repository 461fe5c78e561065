#include "LabCommand.h"

namespace TarnLab {

std::span<const CommandKind> addrSetCommands() { return {}; }

}  // namespace TarnLab
