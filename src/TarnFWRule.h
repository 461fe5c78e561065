#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWAddress.h"
#include "TarnFWContainerID.h"
#include "TarnFWObject.h"
#include "TarnFWProtocol.h"
#include "TarnFWProtocolSpecList.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleRecord.h"
#include "TarnFWTypes.h"

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

  /// Takes all objects over when the rule is accepted; they stay the caller's when an exception is
  /// thrown. A null address means any, a null action accept; a list may be empty. Throws
  /// CUnsupportedException for parts that don't go together.
  CTarnFWRule(unsigned int id, int position, FWRuleDirection_t direction,
              const CTarnFWProtocol& protocol, CTarnFWProtocolSpecList&& connection,
              std::unique_ptr<CTarnFWAddress>&& source, CTarnFWProtocolSpecList&& sourcePorts,
              std::unique_ptr<CTarnFWAddress>&& destination,
              CTarnFWProtocolSpecList&& destinationPorts,
              std::unique_ptr<CTarnFWRuleAction>&& action,
              std::unique_ptr<CTarnFWContainerID>&& extendedSource,
              std::unique_ptr<CTarnFWContainerID>&& attributeProfile);

  unsigned int getMsgSize() const override { return sizeof(FWRule_); }
  int getType() const override { return kType; }
  std::string toString() const override;
  void appendTo(std::string& text) const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  /// The labelled form, a line for each part.
  std::string toString2() const;

  /// Throws CInvalidRuleDirectionException for a value above 2.
  void setDirection(FWRuleDirection_t direction);
  FWRuleDirection_t getDirection() const { return direction_; }

  /// Throws CUnsupportedException with status 57 for a value above 2 and for a family that an
  /// address is not of.
  void setAF(FWRuleAF_t af);

  /// Keeps the first 31 characters.
  void setTag(const char* tag);

  /// Marks the rule as made by the system. The kernel sets this mark; it is never written.
  void setInternal() { internal_ = true; }

  /// Makes connections of the rule tracked strictly or not. The one change that reaches the wire of
  /// a rule that was written already. Switching it on again after switching it off throws
  /// CDuplicateProtocolSpecException, see CTarnFWProtocolSpecList::deleteSpec.
  void setTCPStrict(bool on);

  bool isLayer3() const { return protocol_.isLayer3(); }
  bool hasAttributeProfile() const { return (profileMode_ & kProfileAttribute) != 0; }
  bool hasExtSrcProfile() const { return (profileMode_ & kProfileExtendedSource) != 0; }
  const CTarnFWContainerID* getAttributeProfile() const { return attributeProfile_.get(); }
  const CTarnFWContainerID* getExtSrcProfile() const { return extendedSource_.get(); }

  /// Throws CUnsupportedException when the specs don't go with the protocol or with each other.
  void validateProtocolSpec() const;

 protected:
  /// kProfileNone and its like. The copy mode of a default rule stands in the record alone.
  std::uint32_t profileMode_ = kProfileNone;

 private:
  bool encode(FWRule_& record);
  bool isDefaultRule(const FWRule_& record) const;
  void keepWritten();

  std::uint32_t id_;
  std::int32_t position_;
  FWRuleAF_t af_ = FW_AF_NONE;
  FWRuleDirection_t direction_;
  CTarnFWProtocol protocol_;
  std::unique_ptr<CTarnFWRuleAction> action_;
  std::unique_ptr<CTarnFWAddress> source_;
  std::unique_ptr<CTarnFWAddress> destination_;
  CTarnFWProtocolSpecList sourcePorts_;
  CTarnFWProtocolSpecList destinationPorts_;
  CTarnFWProtocolSpecList connection_;
  std::unique_ptr<CTarnFWContainerID> attributeProfile_;
  std::unique_ptr<CTarnFWContainerID> extendedSource_;
  std::unique_ptr<FWRule_> kept_;  // what was written, once the rule differs from it
  char tag_[32] = {};
  bool internal_ = false;
  bool written_ = false;
};

}  // namespace TarnFirewall
