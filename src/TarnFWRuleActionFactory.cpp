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
                                            const FWAddress_& address, CTarnFWLoadMemory* memory) {
  const auto pool =
      static_cast<FWRulePoolOpt_t>((record.present >> kActionPoolShift) & kActionPoolMask);
  if ((record.present & kActionHasPort) == 0)
    return makeIn<CTarnFWRuleActionDNAT>(memory, &address, pool, record.poolValue);
  if ((record.present & kActionHasLastPort) == 0)
    return makeIn<CTarnFWRuleActionDNAT>(memory, &address, pool, record.port, record.poolValue);
  return makeIn<CTarnFWRuleActionDNAT>(memory, &address, pool, record.port, record.lastPort,
                                       record.poolValue);
}

template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  return {field, fieldLength(field, N)};
}

std::unique_ptr<CTarnFWRuleAction> readAction(const fw_rule_action_& record,
                                              CTarnFWLoadMemory* memory) {
  switch (record.action) {
    case FW_ACTION_ACCEPT:
      return makeIn<CTarnFWRuleActionAccept>(memory);
    case FW_ACTION_DROP:
      return makeIn<CTarnFWRuleActionDrop>(memory);
    case FW_ACTION_REJECT:
      return makeIn<CTarnFWRuleActionReject>(memory);
    case FW_ACTION_JUMPTO: {
      const auto id = loadRecord<FWRuleSetID_t>(record.data);
      return makeIn<CTarnFWRuleActionJumpto>(memory, &id);
    }
    case FW_ACTION_PUNT:
      return makeIn<CTarnFWRuleActionPunt>(memory);
    case FW_ACTION_DIVERT:
      return makeIn<CTarnFWRuleActionDivert>(memory);
    case FW_ACTION_SNAT: {
      const auto address = loadRecord<FWAddress_>(record.data);
      return makeIn<CTarnFWRuleActionSNAT>(memory, &address);
    }
    case FW_ACTION_DNAT:
      return readDNAT(record, loadRecord<FWAddress_>(record.data), memory);
    case FW_ACTION_MACREWRITE:
      return makeIn<CTarnFWRuleActionMacRewrite>(memory, record.data);
    case FW_ACTION_COPY:
      return makeIn<CTarnFWRuleActionCopy>(memory);
    case FW_ACTION_ENCRYPT:
      return makeIn<CTarnFWRuleActionEncrypt>(memory, fieldText(record.keyPolicy));
    case FW_ACTION_CLEAR:
      return makeIn<CTarnFWRuleActionClear>(memory);
    case FW_ACTION_LB:
      // The text is always passed, so that an LB read from a record has options even when the
      // field is empty: scripts that read rules expect the word.
      return makeIn<CTarnFWRuleActionLB>(memory, record.lbType, record.lbIdleTimeout,
                                         record.lbCloseTimeout,
                                         fieldText(record.lbOptions).c_str());
    case FW_ACTION_PBR:
      return makeIn<CTarnFWRuleActionPbr>(memory, fieldText(record.keyPolicy));
    default:
      throw CInvalidRuleActionException(record.action);
  }
}

}  // namespace

std::unique_ptr<CTarnFWRuleAction> CTarnFWRuleActionFactory::newFromMsgBuf(
    const fw_rule_action_* record, CTarnFWLoadMemory* memory) {
  const unsigned int flags = record->flags;
  if ((flags & kActionUnknownFlags) != 0) throw CInvalidRuleActionException(record->action);
  std::unique_ptr<CTarnFWRuleAction> action = readAction(*record, memory);
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
