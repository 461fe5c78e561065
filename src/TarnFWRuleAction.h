#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWRuleRecord.h"

namespace TarnFirewall {

class CTarnFWAddress;

/// Words of the actions, by their code.
extern constinit const std::string_view rule_action_name[kRuleActions];

/// Base of the actions: the flags that every action carries, and the frame of text and record.
class CTarnFWRuleAction : public ITarnFWObject {
 public:
  static constexpr int kType = 20;

  unsigned int getMsgSize() const override { return sizeof(fw_rule_action_); }
  int getType() const override { return kType; }
  /// The word, the data and the flags.
  std::string toString() const final;
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) final;

  /// Writes the wire form into a cleared record. False, with nothing written, when the action's
  /// data does not fit.
  bool writeTo(fw_rule_action_& record);
  bool fits() const { return dataFits(); }

  virtual FWRuleAction_t getAction() const = 0;

  /// Replaces an address range by a reference to the address set of this name and gives the range
  /// to the caller. Null when there is no address range, as in most actions.
  virtual std::unique_ptr<CTarnFWAddress> replaceIPRangeAddress(const char* name);

  /// The word, a newline and the flags, without the action's data: what the labelled form of a rule
  /// shows. The number means nothing.
  virtual std::string toString(int) const;

  bool enableLogPacket() { return setFlag(kActionLog, true); }
  bool disableLogPacket() { return setFlag(kActionLog, false); }
  bool enableCopyPacket() { return setFlag(kActionCopy, true); }
  bool disableCopyPacket() { return setFlag(kActionCopy, false); }
  bool enableNoFlow() { return setFlag(kActionNoFlow, true); }
  bool disableNoFlow() { return setFlag(kActionNoFlow, false); }
  bool enableRtt() { return setFlag(kActionRtt, true); }
  bool disableRtt() { return setFlag(kActionRtt, false); }
  bool enableLBRule() { return setFlag(kActionLBRule, true); }

  /// Both throw CUnsupportedException for an application that is no FWDynamicApp_t.
  void enableDynamic(unsigned int app);
  void enableDynamic(unsigned int app, bool mark);
  void disableDynamic();

  std::string flagToString() const;

  /// Sets the flag bits of a record and, with a dynamic application, its fields. All other bits
  /// stay as they are.
  void setActionFlag(fw_rule_action_* record) const;

  /// Always throws CUnsupportedException: the rule's record knows it.
  bool isExtraRule() const;

 protected:
  CTarnFWRuleAction() = default;

  /// Text between the word and the flags, with its leading blank.
  virtual void appendData(CTarnFWText& text) const;

  /// Whether the action's own data fits into a record. Where it does not, nothing is written.
  virtual bool dataFits() const { return true; }

  /// The action's own data in a cleared record.
  virtual void writeData(fw_rule_action_& record);

 private:
  void appendFlags(CTarnFWText& text) const;
  void setDynamic(unsigned int app, bool withMark, bool mark);
  bool setFlag(std::uint16_t flag, bool on) {
    flags_ = static_cast<std::uint16_t>(on ? flags_ | flag : flags_ & ~flag);
    return on;
  }

  // Each action of a load has these: they fit into what its alignment leaves free.
  std::uint8_t dynamicFlags_ = 0;  // the low 4 bits go on the wire
  std::uint16_t flags_ = 0;        // kActionLog and its like, as the record has them
  std::uint16_t dynamicApp_ = 0;   // FWDynamicApp_t
};

}  // namespace TarnFirewall
