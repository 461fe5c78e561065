#pragma once

#include "TarnFWAddressRecord.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Reference to an address set by its name: text "addrset " and the name, code 11.
class CTarnFWAddrSetID final : public CTarnFWAddressRecord {
 public:
  /// Throws `CIDTooLongException` for a name of more than 37 characters.
  CTarnFWAddrSetID(const char* name, bool negated);

  /// A name that fills its field without a NUL ends at the field's end.
  CTarnFWAddrSetID(const FWAddrSetID_t& name, bool negated);

  /// Throws `CInvalidAddressException` when the record's type is not 11.
  explicit CTarnFWAddrSetID(const FWAddress_* record);

  int getType() const override;
  bool isContainer() const override;
  std::string getName() const override;

  /// Copies the name out. The result is the negated flag.
  bool getAddress(FWAddrSetID_t* name) const;

 private:
  void appendValue(CTarnFWText& text) const override;
  void storeValue(ValueArea value) const override;

  /// By all 38 bytes of the names.
  bool valueLess(const CTarnFWAddress& other) const override;

  FWAddrSetID_t name_;
};

}  // namespace TarnFirewall
