#include "TarnFWRuleSetReadCmd.h"

#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

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
  storeAt(body, 64, host32(number_));
  if (ids_ == nullptr) {
    storeAt(body, 68, host32(from_));
    storeAt(body, 72, host16(1));
  } else {
    unsigned int written = 0;
    const std::span<std::byte> area = body.subspan(idArea);
    ids_->toMessage(area.data(), static_cast<unsigned int>(area.size()), &written);
  }
  storeAt(body, 74, static_cast<std::uint8_t>(kind_));
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
