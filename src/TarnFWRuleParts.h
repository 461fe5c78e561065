#pragma once

/// The parts of a rule, and both directions between them and the rule's record.

#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>

#include "TarnFWAddress.h"
#include "TarnFWContainerID.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWProtocol.h"
#include "TarnFWProtocolSpecList.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleRecord.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// A rule's tag: at most 31 characters, zeros after them.
struct FWRuleTag {
  static constexpr std::size_t kLength = 31;

  FWRuleTag() = default;
  /// Keeps the first 31 characters.
  explicit FWRuleTag(std::string_view tag) { tag.copy(text, kLength); }

  bool empty() const { return text[0] == '\0'; }

  char text[kLength + 1] = {};
};

/// Parts that few rules have. They stand apart, so that the others don't pay for them.
struct FWRuleExtras final : CTarnFWLoadValue<FWRuleExtras> {
  std::unique_ptr<CTarnFWContainerID> extendedSource = nullptr;
  std::unique_ptr<CTarnFWContainerID> attributeProfile = nullptr;
  FWRuleTag tag = {};
  bool internal = false;
  std::unique_ptr<FWRule_> written = nullptr;  // of a rule that differs from what it wrote first
};

/// What a rule consists of. Who collects parts for the next rule starts again by assigning a fresh
/// one. A null address means any; the lists may be empty.
struct FWRuleParts {
  std::uint32_t id = 0;
  std::int32_t position = 0;
  FWRuleDirection_t direction = FW_DIRECTION_INOUT;
  FWRuleAF_t af = FW_AF_NONE;
  std::optional<CTarnFWProtocolMatch> protocol = std::nullopt;
  CTarnFWProtocolSpecList connection{FW_SPEC_DIR_BOTH};
  std::unique_ptr<CTarnFWAddress> source = nullptr;
  CTarnFWProtocolSpecList sourcePorts{FW_SPEC_DIR_SOURCE};
  std::unique_ptr<CTarnFWAddress> destination = nullptr;
  CTarnFWProtocolSpecList destinationPorts{FW_SPEC_DIR_DESTINATION};
  std::unique_ptr<CTarnFWRuleAction> action = nullptr;
  std::unique_ptr<FWRuleExtras> extras = nullptr;  // null where there are none

  /// The extras, made where there are none.
  FWRuleExtras& makeExtras() {
    if (!extras) extras = std::make_unique<FWRuleExtras>();
    return *extras;
  }
  const CTarnFWContainerID* extendedSource() const {
    return extras ? extras->extendedSource.get() : nullptr;
  }
  const CTarnFWContainerID* attributeProfile() const {
    return extras ? extras->attributeProfile.get() : nullptr;
  }
  /// Empty for a rule without one.
  const char* tag() const { return extras ? extras->tag.text : ""; }
  bool internal() const { return extras && extras->internal; }
  /// Changes nothing where there is neither a tag nor one before.
  void setTag(std::string_view tag) {
    if (extras || !tag.empty()) makeExtras().tag = FWRuleTag(tag);
  }
};

/// Whether either address is there and of the family.
template <bool (CTarnFWAddress::*isOfFamily)() const>
bool eitherAddressIs(const FWRuleParts& parts) {
  return (parts.source && (parts.source.get()->*isOfFamily)()) ||
         (parts.destination && (parts.destination.get()->*isOfFamily)());
}

/// The direction; throws CInvalidRuleDirectionException for a value above 2.
FWRuleDirection_t checkedDirection(FWRuleDirection_t direction);

/// Writes the parts, which have a protocol, into a cleared record; without an action they accept.
/// Not written: an address of type "any" and its negation, and the internal mark, which the kernel
/// alone sets. False when an address or the action can't be written. Throws
/// CDuplicateProtocolSpecException when two specs want the same place. Something may be written
/// then. `traced`: with the debug lines about the specs.
bool writeRuleRecord(FWRuleParts& parts, FWRule_& record, bool traced);

/// Whether `writeRuleRecord` is known to succeed. It may succeed where this is false.
bool fitsIntoRecord(const FWRuleParts& parts);

/// Reads a record into fresh parts, which are made in `memory`; null makes them objects of their
/// own. Throws what the readers of the parts throw. Tag, address family
/// and internal mark are left to the maker of the rule, who judges them. Never read back, and
/// programs that list rules depend on it: DSCP; TCP options, whose length is taken for the header
/// of a spec.
void readRuleRecord(const FWRule_& record, FWRuleParts& parts, CTarnFWLoadMemory* memory);

}  // namespace TarnFirewall
