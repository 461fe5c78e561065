#include "TarnFWRuleActionFactory.h"

#include "TarnFWException.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionClear.h"
#include "TarnFWRuleActionCopy.h"
#include "TarnFWRuleActionDNAT.h"
#include "TarnFWRuleActionDivert.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionEncrypt.h"
#include "TarnFWRuleActionJumpto.h"
#include "TarnFWRuleActionLB.h"
#include "TarnFWRuleActionMacRewrite.h"
#include "TarnFWRuleActionPbr.h"
#include "TarnFWRuleActionPunt.h"
#include "TarnFWRuleActionReject.h"
#include "TarnFWRuleActionSNAT.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

namespace {

std::unique_ptr<CTarnFWRuleAction> readDNAT(const fw_rule_action_& record,
                                            const FWAddress_& address) {
  const auto pool =
      static_cast<FWRulePoolOpt_t>((record.present >> kActionPoolShift) & kActionPoolMask);
  if ((record.present & kActionHasPort) == 0)
    return std::make_unique<CTarnFWRuleActionDNAT>(&address, pool, record.poolValue);
  if ((record.present & kActionHasLastPort) == 0)
    return std::make_unique<CTarnFWRuleActionDNAT>(&address, pool, record.port, record.poolValue);
  return std::make_unique<CTarnFWRuleActionDNAT>(&address, pool, record.port, record.lastPort,
                                                 record.poolValue);
}

template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  return {field, fieldLength(field, N)};
}

std::unique_ptr<CTarnFWRuleAction> readAction(const fw_rule_action_& record) {
  switch (record.action) {
    case FW_ACTION_ACCEPT:
      return std::make_unique<CTarnFWRuleActionAccept>();
    case FW_ACTION_DROP:
      return std::make_unique<CTarnFWRuleActionDrop>();
    case FW_ACTION_REJECT:
      return std::make_unique<CTarnFWRuleActionReject>();
    case FW_ACTION_JUMPTO: {
      const auto id = loadRecord<FWRuleSetID_t>(record.data);
      return std::make_unique<CTarnFWRuleActionJumpto>(&id);
    }
    case FW_ACTION_PUNT:
      return std::make_unique<CTarnFWRuleActionPunt>();
    case FW_ACTION_DIVERT:
      return std::make_unique<CTarnFWRuleActionDivert>();
    case FW_ACTION_SNAT: {
      const auto address = loadRecord<FWAddress_>(record.data);
      return std::make_unique<CTarnFWRuleActionSNAT>(&address);
    }
    case FW_ACTION_DNAT:
      return readDNAT(record, loadRecord<FWAddress_>(record.data));
    case FW_ACTION_MACREWRITE:
      return std::make_unique<CTarnFWRuleActionMacRewrite>(record.data);
    case FW_ACTION_COPY:
      return std::make_unique<CTarnFWRuleActionCopy>();
    case FW_ACTION_ENCRYPT:
      return std::make_unique<CTarnFWRuleActionEncrypt>(fieldText(record.keyPolicy));
    case FW_ACTION_CLEAR:
      return std::make_unique<CTarnFWRuleActionClear>();
    case FW_ACTION_LB:
      // The text is always passed, so that an LB read from a record has options even when the
      // field is empty: scripts that read rules expect the word.
      return std::make_unique<CTarnFWRuleActionLB>(record.lbType, record.lbIdleTimeout,
                                                   record.lbCloseTimeout,
                                                   fieldText(record.lbOptions).c_str());
    case FW_ACTION_PBR:
      return std::make_unique<CTarnFWRuleActionPbr>(fieldText(record.keyPolicy));
    default:
      throw CInvalidRuleActionException(record.action);
  }
}

}  // namespace

std::unique_ptr<CTarnFWRuleAction> CTarnFWRuleActionFactory::newFromMsgBuf(
    const fw_rule_action_* record) {
  const unsigned int flags = record->flags;
  if ((flags & kActionUnknownFlags) != 0) throw CInvalidRuleActionException(record->action);
  std::unique_ptr<CTarnFWRuleAction> action = readAction(*record);
  if ((flags & kActionLog) != 0) action->enableLogPacket();
  if ((flags & kActionCopy) != 0) action->enableCopyPacket();
  if ((flags & kActionNoFlow) != 0) action->enableNoFlow();
  if ((flags & kActionRtt) != 0) action->enableRtt();
  // The application's flags come from the table of applications and not from the record, so that
  // scripts see one text for an application, whoever wrote the record.
  if ((flags & kActionDynamic) != 0) action->enableDynamic((record->dynamicApp >> 4) & 0xffu);
  if ((flags & kActionLBRule) != 0) action->enableLBRule();
  return action;
}

std::unique_ptr<CTarnFWRuleAction> CTarnFWRuleActionFactory::newFromMsgBuf(const void* buffer,
                                                                           unsigned int size,
                                                                           unsigned int* used) {
  *used = 0;
  if (size < sizeof(fw_rule_action_)) return nullptr;
  *used = sizeof(fw_rule_action_);
  const auto record = loadRecord<fw_rule_action_>(buffer);
  return newFromMsgBuf(&record);
}

}  // namespace TarnFirewall
