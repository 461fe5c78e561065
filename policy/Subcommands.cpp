#include "Check.h"
#include "DiffSubcommand.h"
#include "SaveSubcommand.h"
#include "Subcommand.h"

namespace {

constexpr Subcommand kSubcommands[] = {
    {"check", "finds the mistakes in configuration text", kCheckUsage, runCheck},
    {"save", "prints what a filter holds as configuration text", kSaveUsage, runSave},
    {"diff", "shows in what two policies differ", kDiffUsage, runDiff},
    {"apply", "changes a filter to what a text says", "", nullptr},
    {"confirm", "keeps what was applied until it is confirmed", "", nullptr},
};

}  // namespace

std::span<const Subcommand> subcommands() { return kSubcommands; }

const Subcommand* findSubcommand(std::string_view name) {
  for (const Subcommand& subcommand : kSubcommands) {
    if (name == subcommand.name) return &subcommand;
  }
  return nullptr;
}
