#include "TarnFWRuleActionJumpto.h"

#include <string_view>

#include "TarnFWException.h"

namespace TarnFirewall {

CTarnFWRuleActionJumpto::CTarnFWRuleActionJumpto(const char* name) {
  const std::string_view text = name != nullptr ? name : "";
  if (text.size() >= sizeof id_.text) throw CIDTooLongException(text);
  text.copy(id_.text, text.size());
}

void CTarnFWRuleActionJumpto::appendData(std::string& text) const {
  text += ' ';
  text.append(id_.text, fieldLength(id_.text, sizeof id_.text));
}

void CTarnFWRuleActionJumpto::writeData(fw_rule_action_& record) { storeRecord(record.data, id_); }

}  // namespace TarnFirewall
