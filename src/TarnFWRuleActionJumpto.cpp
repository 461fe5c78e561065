#include "TarnFWRuleActionJumpto.h"

#include <string_view>

#include "TarnFWException.h"

namespace TarnFirewall {

CTarnFWRuleActionJumpto::CTarnFWRuleActionJumpto(const char* name) {
  const std::string_view text = name != nullptr ? name : "";
  if (text.size() >= sizeof id_.text) throw CIDTooLongException(text);
  text.copy(id_.text, text.size());
}

CTarnFWRuleActionJumpto::CTarnFWRuleActionJumpto(const FWRuleSetID_t* id) : id_(*id) {
  const std::size_t length = fieldLength(id_.text, sizeof id_.text);
  if (length == sizeof id_.text) throw CIDTooLongException(std::string_view(id_.text, length));
}

void CTarnFWRuleActionJumpto::appendData(CTarnFWText& text) const {
  text += ' ';
  text += id_.text;
}

void CTarnFWRuleActionJumpto::writeData(fw_rule_action_& record) { storeRecord(record.data, id_); }

}  // namespace TarnFirewall
