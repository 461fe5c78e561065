#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWRuleParts.h"

namespace TarnFirewall {

/// One firewall rule in its finished form: checked when made, printed in the configuration language
/// or with labels, written as an `FWRule_`.
///
/// What a rule writes first is what it writes from then on: later changes do not reach the wire,
/// but for `setTCPStrict`. The record of 892 bytes is only kept once a change makes it differ from
/// what the rule would write.
class CTarnFWRule : public ITarnFWObject {
 public:
  static constexpr int kType = 21;

  /// Takes all parts over when the rule is accepted; they stay the caller's when an exception is
  /// thrown. A null action means accept. The address family is not taken: `setAF` judges it. Throws
  /// CUnsupportedException for parts that don't go together, and without a protocol.
  explicit CTarnFWRule(FWRuleParts&& parts);

  /// The same of parts that `makeParts` gives, which are made where they stay. What is refused is
  /// gone then.
  template <std::invocable MakeParts>
  explicit CTarnFWRule(MakeParts makeParts) : parts_(makeParts()) {
    accept();
  }

  unsigned int getMsgSize() const override { return sizeof(FWRule_); }
  int getType() const override { return kType; }
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
  /// The same into a buffer that is zero.
  bool toFreshMessage(void* buffer, unsigned int size, unsigned int* written);

  /// The labelled form, a line for each part.
  std::string toString2() const;

  /// Throws CInvalidRuleDirectionException for a value above 2.
  void setDirection(FWRuleDirection_t direction);
  FWRuleDirection_t getDirection() const { return parts_.direction; }

  /// Throws CUnsupportedException with status 57 for a value above 2 and for a family that an
  /// address is not of.
  void setAF(FWRuleAF_t af);

  /// Keeps the first 31 characters; null is no tag.
  void setTag(const char* tag);

  /// Marks the rule as made by the system. The kernel sets this mark; it is never written.
  void setInternal() { parts_.makeExtras().internal = true; }

  /// Makes connections of the rule tracked strictly or not. The one change that reaches the wire of
  /// a rule that was written already. Switching it on again after switching it off throws
  /// CDuplicateProtocolSpecException, see CTarnFWProtocolSpecList::deleteSpec.
  void setTCPStrict(bool on);

  bool isLayer3() const { return protocol().isLayer3(); }
  bool hasAttributeProfile() const { return (profileMode_ & kProfileAttribute) != 0; }
  bool hasExtSrcProfile() const { return (profileMode_ & kProfileExtendedSource) != 0; }
  const CTarnFWContainerID* getAttributeProfile() const { return parts_.attributeProfile(); }
  const CTarnFWContainerID* getExtSrcProfile() const { return parts_.extendedSource(); }

  /// Throws CUnsupportedException when the specs don't go with the protocol or with each other.
  void validateProtocolSpec() const;

 private:
  bool written_ = false;  // here, where the alignment of what follows leaves room

 protected:
  /// kProfileNone and its like. The copy mode of a default rule stands in the record alone.
  std::uint32_t profileMode_ = kProfileNone;

 private:
  const CTarnFWProtocolMatch& protocol() const { return *parts_.protocol; }
  /// Checks the parts and makes them a rule's.
  void accept();
  void begin();
  /// Appends what stands in front of the protocol.
  void appendHead(CTarnFWText& text) const;
  /// `clear`: the buffer is not zero.
  bool write(void* buffer, unsigned int size, unsigned int* written, bool clear);
  bool encode(FWRule_& record);
  const FWRule_* kept() const { return parts_.extras ? parts_.extras->written.get() : nullptr; }
  void keepWritten();

  FWRuleParts parts_;  // always with a protocol
};

}  // namespace TarnFirewall
