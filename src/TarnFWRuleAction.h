#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

class CTarnFWAddress;

/// What a rule does with a packet that matches.
enum FWRuleAction_t : std::uint32_t {
  FW_ACTION_UNKNOWN = 0,
  FW_ACTION_ACCEPT = 1,
  FW_ACTION_DROP = 2,
  FW_ACTION_REJECT = 3,
  FW_ACTION_JUMPTO = 4,
  FW_ACTION_PUNT = 5,
  FW_ACTION_DIVERT = 6,
  FW_ACTION_SNAT = 7,
  FW_ACTION_DNAT = 8,
  FW_ACTION_MACREWRITE = 9,
  FW_ACTION_COPY = 10,
  FW_ACTION_ENCRYPT = 11,
  FW_ACTION_CLEAR = 12,
  FW_ACTION_LB = 13,
  FW_ACTION_PBR = 14,
};
inline constexpr unsigned int kRuleActions = 15;

/// Words of the actions, by their code.
extern const char* const rule_action_name[kRuleActions];

/// Application whose helper follows the connections of a rule.
enum FWDynamicApp_t : std::uint32_t {
  FW_DYNAMIC_FTP = 1,
  FW_DYNAMIC_ORACLE = 2,
  FW_DYNAMIC_SUNRPC = 3,
  FW_DYNAMIC_DCERPC = 4,
};

/// Record of an action, as the kernel lays it out. What an action does not use is zero.
struct fw_rule_action_ {
  std::uint8_t data[144];  //   +0  FWAddress_ (snat, dnat), rule set id (jumpto), MAC (macrewrite)
  net16 port;              // +144  DNAT port or first port
  net16 lastPort;          // +146  DNAT last port
  std::uint8_t lbType;     // +148  load-balancer type
  std::uint8_t reserved149;  // +149  zero
  host16 lbIdleTimeout;      // +150
  host16 lbCloseTimeout;     // +152
  char lbOptions[128];       // +154  NUL-terminated
  std::uint8_t present;      // +282  bit 0 port, bit 1 last port, 2 to 5 pool option, 6 LB options
  std::uint8_t reserved283;  // +283  zero
  host16 poolValue;          // +284
  std::uint8_t reserved286[2];  // +286  zero
  host16 dynamicApp;            // +288  bits 0 to 3 flags, 4 to 11 application
  std::uint8_t action;          // +290  code
  host16 flags;                 // +291  kActionLog and its like
  char keyPolicy[37];           // +293  NUL-terminated, the last byte always zero
};
static_assert(sizeof(fw_rule_action_) == 330 && alignof(fw_rule_action_) == 1);
static_assert(
    offsetof(fw_rule_action_, port) == 144 && offsetof(fw_rule_action_, lastPort) == 146 &&
    offsetof(fw_rule_action_, lbType) == 148 && offsetof(fw_rule_action_, reserved149) == 149 &&
    offsetof(fw_rule_action_, lbIdleTimeout) == 150 &&
    offsetof(fw_rule_action_, lbCloseTimeout) == 152 &&
    offsetof(fw_rule_action_, lbOptions) == 154 && offsetof(fw_rule_action_, present) == 282 &&
    offsetof(fw_rule_action_, reserved283) == 283 && offsetof(fw_rule_action_, poolValue) == 284 &&
    offsetof(fw_rule_action_, reserved286) == 286 && offsetof(fw_rule_action_, dynamicApp) == 288 &&
    offsetof(fw_rule_action_, action) == 290 && offsetof(fw_rule_action_, flags) == 291 &&
    offsetof(fw_rule_action_, keyPolicy) == 293);

/// Bits of fw_rule_action_::flags.
inline constexpr std::uint16_t kActionLog = 0x0001;
inline constexpr std::uint16_t kActionCopy = 0x0002;
inline constexpr std::uint16_t kActionDynamic = 0x0004;
inline constexpr std::uint16_t kActionNoFlow = 0x0008;
inline constexpr std::uint16_t kActionRtt = 0x0010;
inline constexpr std::uint16_t kActionLBRule = 0x0100;
inline constexpr std::uint16_t kActionUnknownFlags = 0xfee0;

/// Bits of fw_rule_action_::present.
inline constexpr unsigned int kActionHasPort = 0x01;
inline constexpr unsigned int kActionHasLastPort = 0x02;
inline constexpr unsigned int kActionPoolShift = 2;
inline constexpr unsigned int kActionPoolMask = 0x0f;
inline constexpr unsigned int kActionHasLBOptions = 0x40;

/// Base of the actions: the flags that every action carries, and the frame of text and record.
class CTarnFWRuleAction : public ITarnFWObject {
 public:
  static constexpr int kType = 20;

  unsigned int getMsgSize() const override { return sizeof(fw_rule_action_); }
  int getType() const override { return kType; }
  /// The word, the data and the flags.
  std::string toString() const final;
  void appendTo(std::string& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) final;

  virtual FWRuleAction_t getAction() const = 0;

  /// Replaces an address range by a reference to the address set of this name and gives the range
  /// to the caller. Null when there is no address range, as in most actions.
  virtual std::unique_ptr<CTarnFWAddress> replaceIPRangeAddress(const char* name);

  /// The word, a newline and the flags, without the action's data: what the labelled form of a rule
  /// shows. The number means nothing.
  virtual std::string toString(int) const;

  bool enableLogPacket() { return log_ = true; }
  bool disableLogPacket() { return log_ = false; }
  bool enableCopyPacket() { return copy_ = true; }
  bool disableCopyPacket() { return copy_ = false; }
  bool enableNoFlow() { return noFlow_ = true; }
  bool disableNoFlow() { return noFlow_ = false; }
  bool enableRtt() { return rtt_ = true; }
  bool disableRtt() { return rtt_ = false; }
  bool enableLBRule() { return lbRule_ = true; }

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
  virtual void appendData(std::string& text) const;

  /// Whether the action's own data fits into a record. Where it does not, nothing is written.
  virtual bool dataFits() const { return true; }

  /// The action's own data in a cleared record.
  virtual void writeData(fw_rule_action_& record);

 private:
  void appendFlags(std::string& text) const;
  void setDynamic(unsigned int app, bool withMark, bool mark);

  bool log_ = false;
  bool copy_ = false;
  bool noFlow_ = false;
  bool rtt_ = false;
  bool dynamic_ = false;
  bool lbRule_ = false;
  std::uint8_t dynamicFlags_ = 0;  // the low 4 bits go on the wire
  std::uint32_t dynamicApp_ = 0;
};

}  // namespace TarnFirewall
