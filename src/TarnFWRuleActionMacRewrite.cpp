#include "TarnFWRuleActionMacRewrite.h"

#include <cstring>

#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWRuleActionMacRewrite::CTarnFWRuleActionMacRewrite(const unsigned char* mac) {
  std::memcpy(mac_, mac, sizeof mac_);
}

void CTarnFWRuleActionMacRewrite::appendData(CTarnFWText& text) const {
  char separator = ' ';
  for (const std::uint8_t byte : mac_) {
    text += separator;
    appendHex(text, byte);  // without padding, unlike the addresses: scripts read it so
    separator = ':';
  }
}

void CTarnFWRuleActionMacRewrite::writeData(fw_rule_action_& record) {
  std::memcpy(record.data, mac_, sizeof mac_);
}

}  // namespace TarnFirewall
