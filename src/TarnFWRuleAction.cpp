#include "TarnFWRuleAction.h"

#include "TarnFWAddress.h"
#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

/// Flags that are set or cleared in a record; `kActionDynamic` is only set.
constexpr unsigned int kAssignedFlags =
    kActionLog | kActionCopy | kActionNoFlow | kActionRtt | kActionLBRule;

}  // namespace

constinit const std::string_view rule_action_name[kRuleActions] = {
    "unknown", "accept",     "drop", "reject",  "jumpto", "punt", "divert", "snat",
    "dnat",    "macrewrite", "copy", "encrypt", "clear",  "lb",   "pbr"};

void CTarnFWRuleAction::setDynamic(unsigned int app, bool withMark, bool mark) {
  switch (app) {
    case FW_DYNAMIC_FTP:
      dynamicFlags_ = 3;
      break;
    case FW_DYNAMIC_ORACLE:
      dynamicFlags_ = 1;
      break;
    case FW_DYNAMIC_SUNRPC:
    case FW_DYNAMIC_DCERPC:
      dynamicFlags_ = withMark ? (mark ? 1 : 4) : 5;
      break;
    default:
      throw CUnsupportedException("unknown dynamic application");
  }
  setFlag(kActionDynamic, true);
  dynamicApp_ = static_cast<std::uint16_t>(app);
}

void CTarnFWRuleAction::enableDynamic(unsigned int app) { setDynamic(app, false, false); }

void CTarnFWRuleAction::enableDynamic(unsigned int app, bool mark) { setDynamic(app, true, mark); }

void CTarnFWRuleAction::disableDynamic() {
  setFlag(kActionDynamic, false);
  dynamicApp_ = 0;
  dynamicFlags_ = 0;
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleAction::replaceIPRangeAddress(const char*) {
  return nullptr;
}

void CTarnFWRuleAction::appendFlags(CTarnFWText& text) const {
  static constexpr struct {
    std::uint16_t flag;
    const char* word;
  } kWords[] = {{kActionLog, "log"},
                {kActionCopy, "copy"},
                {kActionNoFlow, "noflow"},
                {kActionRtt, "rtt"},
                {kActionLBRule, "lbrule"}};
  const unsigned int flags = flags_ & kAssignedFlags;
  if (flags != 0) {
    const bool several = (flags & (flags - 1)) != 0;
    text += several ? " with {" : " with ";
    const char* separator = "";
    for (const auto& flag : kWords) {
      if ((flags & flag.flag) == 0) continue;
      text += separator;
      text += flag.word;
      separator = ",";
    }
    if (several) text += '}';
  }
  if ((flags_ & kActionDynamic) == 0) return;
  static constexpr const char* applications[] = {"", " as ftp", " as oracle", " as sunrpc",
                                                 " as dcerpc"};
  text += applications[dynamicApp_];
}

std::string CTarnFWRuleAction::flagToString() const {
  CTarnFWText text;
  appendFlags(text);
  return text.str();
}

void CTarnFWRuleAction::appendData(CTarnFWText&) const {}

void CTarnFWRuleAction::appendTo(CTarnFWText& text) const {
  text += rule_action_name[getAction()];
  appendData(text);
  appendFlags(text);
}

std::string CTarnFWRuleAction::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

std::string CTarnFWRuleAction::toString(int) const {
  CTarnFWText text;
  text += rule_action_name[getAction()];
  text += '\n';
  appendFlags(text);
  return text.str();
}

void CTarnFWRuleAction::writeData(fw_rule_action_&) {}

void CTarnFWRuleAction::setActionFlag(fw_rule_action_* record) const {
  const unsigned int flags = (record->flags & ~kAssignedFlags) | flags_;
  if ((flags_ & kActionDynamic) != 0) {
    const unsigned int kept = record->dynamicApp & 0xf000u;
    record->dynamicApp =
        static_cast<std::uint16_t>(kept | (dynamicFlags_ & 0xfu) | ((dynamicApp_ & 0xffu) << 4));
  }
  record->flags = static_cast<std::uint16_t>(flags);
}

bool CTarnFWRuleAction::writeTo(fw_rule_action_& record) {
  if (!dataFits()) return false;
  record.action = static_cast<std::uint8_t>(getAction());
  writeData(record);
  setActionFlag(&record);
  return true;
}

bool CTarnFWRuleAction::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (size < sizeof(fw_rule_action_) || !dataFits()) return false;
  writeTo(clearRecord<fw_rule_action_>(buffer));
  if (written != nullptr) *written = sizeof(fw_rule_action_);
  return true;
}

bool CTarnFWRuleAction::isExtraRule() const {
  throw CUnsupportedException(
      "this function should not be called. use FWRule_t.is_internal flag instead");
}

}  // namespace TarnFirewall
