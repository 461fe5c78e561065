#include "TarnFWRuleList.h"

#include <cstdint>
#include <limits>

#include "TarnFWException.h"

namespace TarnFirewall {

CTarnFWRuleList::~CTarnFWRuleList() {
  if (!borrowed_) return;
  for (auto& rule : rules_) static_cast<void>(rule.release());
}

bool CTarnFWRuleList::addRule(CTarnFWRule* rule) {
  rules_.emplace_back().reset(rule);
  return true;
}

bool CTarnFWRuleList::addRule(std::unique_ptr<CTarnFWRule> rule) {
  rules_.push_back(std::move(rule));
  return true;
}

unsigned int CTarnFWRuleList::getMsgSize() const {
  if (rules_.size() > std::numeric_limits<std::uint32_t>::max() / sizeof(FWRule_)) {
    // Scripts match this spelling.
    throw CIntegerOverflowException("too manu rules", static_cast<int>(rules_.size()));
  }
  return static_cast<unsigned int>(rules_.size() * sizeof(FWRule_));
}

void CTarnFWRuleList::appendTo(CTarnFWText& text) const {
  for (const auto& rule : rules_) {
    rule->appendTo(text);
    text += '\n';
  }
}

std::string CTarnFWRuleList::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

bool CTarnFWRuleList::write(void* buffer, unsigned int size, unsigned int* written, bool fresh) {
  if (size < getMsgSize()) return false;
  auto* const bytes = static_cast<std::uint8_t*>(buffer);
  unsigned int total = 0;
  bool good = true;
  for (const auto& rule : rules_) {
    unsigned int one = 0;
    good = fresh ? rule->toFreshMessage(bytes + total, size - total, &one)
                 : rule->toMessage(bytes + total, size - total, &one);
    if (!good) break;
    total += one;
  }
  if (written != nullptr) *written = total;
  return good;
}

bool CTarnFWRuleList::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  return write(buffer, size, written, false);
}

bool CTarnFWRuleList::toFreshMessage(void* buffer, unsigned int size, unsigned int* written) {
  return write(buffer, size, written, true);
}

}  // namespace TarnFirewall
