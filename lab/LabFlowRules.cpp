// Which rule a flow names.
#include "LabFlowFile.h"
#include "LabRuleRecord.h"
#include "LabSelector.h"
#include "LabSetFile.h"

namespace TarnLab {

namespace {

// Flows name some of the rules of a large set; looking at all would make each page slow.
constexpr std::uint32_t rulesOfSet = 64, rulesOfFilter = 256;

constexpr unsigned actionDrop = 2, actionReject = 3;

std::size_t sortOf(bool drops, bool onLayer2) { return (drops ? 2u : 0u) + (onLayer2 ? 1u : 0u); }

}  // namespace

FlowRules::FlowRules(const Store& store, const std::string& folder) {
  const std::string sets = folder + "/rulesets";
  std::uint32_t taken = 0;
  for (const std::string& file : store.list(sets)) {
    const auto set = SetFile::open(store, sets + "/" + file);
    // The root only leads to other sets.
    if (!set || Selector::nameOfFile(file).empty()) continue;
    const std::uint32_t count = std::min(set->head().counts[0], rulesOfSet);
    for (std::uint32_t i = 0; i < count && taken < rulesOfFilter; ++i, ++taken) {
      const ConstBytes rule =
          part(set->entries(), std::size_t{i} * RuleRecord::size, RuleRecord::size);
      const unsigned action = RuleRecord::actionCode(rule);
      if (action == ActionRecord::jumpto) continue;
      const bool onLayer2 = (get8(rule, RuleRecord::flags) & RuleRecord::layer3) == 0;
      ids_[sortOf(action == actionDrop || action == actionReject, onLayer2)].push_back(
          get32(rule, RuleRecord::id));
    }
  }
}

std::uint32_t FlowRules::ruleOf(ConstBytes flow) const {
  const unsigned kind = FlowRecord::kind.get(flow);
  const bool onLayer2 = kind == FlowRecord::layer2Pass || kind == FlowRecord::layer2Drop;
  const auto& ids = ids_[sortOf(groupOfKind(kind) == dropGroup, onLayer2)];
  if (ids.empty()) return otherwise;
  return ids[FlowNumber::ofId(FlowRecord::id.get(flow)) % ids.size()];
}

}  // namespace TarnLab
