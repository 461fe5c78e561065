#include "ApplySubcommand.h"
#include "Check.h"
#include "ConfirmSubcommand.h"
#include "DiffSubcommand.h"
#include "SaveSubcommand.h"
#include "Subcommand.h"

namespace {

constexpr Subcommand kSubcommands[] = {
    {"check", "finds the mistakes in configuration text", kCheckUsage, runCheck},
    {"save", "prints what a filter holds as configuration text", kSaveUsage, runSave},
    {"diff", "shows in what two policies differ", kDiffUsage, runDiff},
    {"apply", "changes filters to what a text says", kApplyUsage, runApply},
    {"confirm", "keeps what apply has done for a time only", kConfirmUsage, runConfirm},
};

}  // namespace

std::span<const Subcommand> subcommands() { return kSubcommands; }

const Subcommand* findSubcommand(std::string_view name) {
  for (const Subcommand& subcommand : kSubcommands) {
    if (name == subcommand.name) return &subcommand;
  }
  return nullptr;
}
