#include "TarnFWRuleActionNAT.h"

#include "TarnFWAddrSetID.h"
#include "TarnFWAddressFactory.h"

namespace TarnFirewall {

CTarnFWRuleActionNAT::CTarnFWRuleActionNAT(const FWAddress_* record)
    : address_(CTarnFWAddressFactory::newFromMsgBuf(record)) {}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleActionNAT::replaceIPRangeAddress(const char* name) {
  auto set = std::make_unique<CTarnFWAddrSetID>(name, false);  // refuses a name that is too long
  const int type = address_->getType();
  if (type != FW_ADDRESS_IPV4_RANGE && type != FW_ADDRESS_IPV6_RANGE) return nullptr;
  std::unique_ptr<CTarnFWAddress> range = std::move(address_);
  address_ = std::move(set);
  return range;
}

void CTarnFWRuleActionNAT::appendData(CTarnFWText& text) const {
  text += ' ';
  address_->appendTo(text);
}

bool CTarnFWRuleActionNAT::dataFits() const {
  return address_->getMsgSize() <= sizeof fw_rule_action_::data;
}

void CTarnFWRuleActionNAT::writeData(fw_rule_action_& record) {
  unsigned int written = 0;
  address_->toMessage(record.data, sizeof record.data, &written);
}

}  // namespace TarnFirewall
