#include "TarnFWRuleSetReadCmd.h"

#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// Where the fields of a selection stand in the body.
constexpr std::size_t kSelection = 64;

struct FWRuleSelection_ {
  host32 number;      // +0, of rules that are asked for, or of ids
  host32 from;        // +4, index of the first, without ids
  host16 byIndex;     // +8, 1 without ids
  std::uint8_t kind;  // +10
};
static_assert(sizeof(FWRuleSelection_) == 11 && alignof(FWRuleSelection_) == 1);

std::unique_ptr<CTarnFWIDList> listOf(unsigned int count, const unsigned int* ids) {
  auto list = std::make_unique<CTarnFWIDList>();
  for (unsigned int i = 0; i < count; ++i) list->addID(ids[i]);
  return list;
}

}  // namespace

CTarnFWRuleSelection::CTarnFWRuleSelection(unsigned int max, unsigned int from, unsigned int kind)
    : number_(max), from_(from), kind_(checkRuleKind(kind)) {}

CTarnFWRuleSelection::CTarnFWRuleSelection(std::unique_ptr<CTarnFWIDList> ids, unsigned int kind)
    : ids_(std::move(ids)),
      number_(static_cast<unsigned int>(ids_->getMsgSize() / sizeof(std::uint32_t))),
      kind_(checkRuleKind(kind)) {}

CTarnFWRuleSelection::CTarnFWRuleSelection(unsigned int count, const unsigned int* ids,
                                           unsigned int kind)
    : CTarnFWRuleSelection(listOf(count, ids), kind) {}

void CTarnFWRuleSelection::store(std::span<std::byte> body, std::size_t idArea) const {
  const bool byIndex = ids_ == nullptr;
  storeAt(body, kSelection,
          FWRuleSelection_{number_, from_, byIndex, static_cast<std::uint8_t>(kind_)});
  if (byIndex) return;
  unsigned int written = 0;
  const std::span<std::byte> area = body.subspan(idArea);
  ids_->toMessage(area.data(), static_cast<unsigned int>(area.size()), &written);
}

std::string CTarnFWRuleSelection::statement(const char* what, const std::string& name,
                                            const std::string& selector) const {
  std::string text = std::string("describe ") + ruleKindWord(kind_) + what + " of ruleset " + name;
  if (from_ != 0) appendText(text, " from %u", from_);
  text += selector;
  if (ids_ != nullptr) text += " with " + ids_->toString();
  return text;
}

}  // namespace TarnFirewall
