#include "TarnFWRuleActionDNAT.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

const char* const rule_poolopt_name[kPoolOptions] = {
    "none", "bitmask", "random", "source-hash", "round-robin", "tcp-conn-balance"};

template <typename Address>
CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(Address address, FWRulePoolOpt_t pool, Ports ports,
                                             unsigned short poolValue)
    : CTarnFWRuleActionNAT(std::move(address)), ports_(ports), pool_(pool), poolValue_(poolValue) {
  if ((ports.present & kActionHasLastPort) != 0 && ports.first > ports.last)
    throw CUnsupportedException("reversed port range");
}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address,
                                             FWRulePoolOpt_t pool, unsigned short firstPort,
                                             unsigned short lastPort, unsigned short poolValue)
    : CTarnFWRuleActionDNAT(std::move(address), pool,
                            Ports{firstPort, lastPort, kActionHasPort | kActionHasLastPort},
                            poolValue) {}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address,
                                             FWRulePoolOpt_t pool, unsigned short port,
                                             unsigned short poolValue)
    : CTarnFWRuleActionDNAT(std::move(address), pool, Ports{port, 0, kActionHasPort}, poolValue) {}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address,
                                             FWRulePoolOpt_t pool, unsigned short poolValue)
    : CTarnFWRuleActionDNAT(std::move(address), pool, Ports{}, poolValue) {}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool,
                                             unsigned short firstPort, unsigned short lastPort,
                                             unsigned short poolValue)
    : CTarnFWRuleActionDNAT(record, pool,
                            Ports{firstPort, lastPort, kActionHasPort | kActionHasLastPort},
                            poolValue) {}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool,
                                             unsigned short port, unsigned short poolValue)
    : CTarnFWRuleActionDNAT(record, pool, Ports{port, 0, kActionHasPort}, poolValue) {}

CTarnFWRuleActionDNAT::CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool,
                                             unsigned short poolValue)
    : CTarnFWRuleActionDNAT(record, pool, Ports{}, poolValue) {}

void CTarnFWRuleActionDNAT::appendData(CTarnFWText& text) const {
  CTarnFWRuleActionNAT::appendData(text);
  if ((ports_.present & kActionHasPort) != 0) {
    text += " port ";
    appendDecimal(text, ports_.first);
    if ((ports_.present & kActionHasLastPort) != 0) {
      text += '-';
      appendDecimal(text, ports_.last);
    }
  }
  if (pool_ >= kPoolOptions) {
    text += " unknown";
  } else if (pool_ != FW_POOL_NONE) {
    text += " poolopt ";
    text += rule_poolopt_name[pool_];
    if (poolValue_ != 0) {
      text += ' ';
      appendDecimal(text, poolValue_);
    }
  }
}

void CTarnFWRuleActionDNAT::writeData(fw_rule_action_& record) {
  const unsigned int pool = (pool_ & kActionPoolMask) << kActionPoolShift;
  record.present = static_cast<std::uint8_t>(ports_.present | pool);
  record.poolValue = poolValue_;
  record.port = ports_.first;
  record.lastPort = ports_.last;
  CTarnFWRuleActionNAT::writeData(record);
}

}  // namespace TarnFirewall
