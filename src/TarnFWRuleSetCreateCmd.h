#pragma once

#include <memory>

#include "TarnFWCreateCmd.h"
#include "TarnFWRuleList.h"

namespace TarnFirewall {

/// Head of a message that creates a rule set or sets a filter's root. Integers in host order.
struct FWRuleSetHead_ {
  std::uint8_t reserved[64];     //   +0  zero
  FWRuleSetID_t name;            //  +64  empty for a root
  host64 sequence;               // +128  0
  host32 count;                  // +136  rules
  std::uint8_t flags;            // +140  low two bits in every request
  std::uint8_t reserved141[3];   // +141
  std::uint8_t transaction[16];  // +144  filled in by the reply
  std::uint8_t reserved160[8];   // +160
};
static_assert(sizeof(FWRuleSetHead_) == 168 && alignof(FWRuleSetHead_) == 1);
static_assert(offsetof(FWRuleSetHead_, name) == 64 && offsetof(FWRuleSetHead_, sequence) == 128 &&
              offsetof(FWRuleSetHead_, count) == 136 && offsetof(FWRuleSetHead_, flags) == 140 &&
              offsetof(FWRuleSetHead_, reserved141) == 141 &&
              offsetof(FWRuleSetHead_, transaction) == 144 &&
              offsetof(FWRuleSetHead_, reserved160) == 160);

/// Command 3   request    +0  168 bytes  `FWRuleSetHead_`       reply  +140  flags
///                      +168  892 bytes  each rule                    +144  16 bytes transaction id
class CTarnFWRuleSetCreateCmd : public CTarnFWCreateCmd {
 public:
  const CTarnFWRuleList& rules() const { return *list_; }

 protected:
  /// The list is never null.
  CTarnFWRuleSetCreateCmd(const dvs_port_* port, const FWRuleSetID_t& name,
                          std::unique_ptr<CTarnFWRuleList> list);

  const FWRuleSetID_t& name() const { return name_; }
  CTarnFWRuleList& ownRules() { return *list_; }

 private:
  unsigned int entriesSize() const override { return list_->getMsgSize(); }
  bool writeEntries(void* buffer, unsigned int room, unsigned int* written) override;
  bool writeFreshEntries(void* buffer, unsigned int room, unsigned int* written) override;
  void fillHead(std::span<std::byte> head) const override;

  FWRuleSetID_t name_;
  std::unique_ptr<CTarnFWRuleList> list_;
};

}  // namespace TarnFirewall
