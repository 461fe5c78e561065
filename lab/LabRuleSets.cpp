#include "LabCommand.h"

namespace TarnLab {

std::span<const CommandKind> ruleSetCommands() { return {}; }

}  // namespace TarnLab
