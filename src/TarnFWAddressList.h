#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TarnFWAddress.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The members of an address set, with the set's name.
class CTarnFWAddressList : public CTarnFWAddress {
 public:
  /// Deletes what belongs to the list and leaves what is borrowed.
  struct Release {
    Release() : owned(true) {}
    explicit Release(bool isOwned) : owned(isOwned) {}
    bool owned;
    void operator()(CTarnFWAddress* address) const {
      if (owned) delete address;
    }
  };
  using Member = std::unique_ptr<CTarnFWAddress, Release>;

  /// With an empty name. The members of a borrowed list stay their caller's and must outlive it.
  explicit CTarnFWAddressList(bool borrowed);
  CTarnFWAddressList(const FWAddrSetID_t& id, bool negated, bool borrowed);

  /// 0 (any kind) at start, 1 for an IP set, 2 for a MAC set: what `addAddress` accepts goes by it.
  void setSetType(FWAddrSetType_t setType) { setType_ = setType; }
  FWAddrSetType_t getSetType() const { return setType_; }

  /// Adds an address at the end. False, with a warning logged, when the set type refuses it; it is
  /// the caller's then. A block of prefix length 0, which the kernel does not hold, is replaced by
  /// its two halves, which belong to the list: true, and the address stays the caller's.
  bool addAddress(CTarnFWAddress* address);

  /// The same for a list that owns its members. An address that is not kept is destroyed.
  bool addAddress(std::unique_ptr<CTarnFWAddress> address);

  std::span<const Member> getAddresses() const { return addresses_; }
  const FWAddrSetID_t& getSetID() const { return id_; }

  /// True when `addAddress` has taken an IPv6 address.
  bool hasIPv6() const { return hasIPv6_; }

  /// Hands the members of an owning list to the caller and leaves the list empty.
  std::vector<std::unique_ptr<CTarnFWAddress>> takeAddresses();

  int getType() const override;

  /// 144 for each member. Throws `CIntegerOverflowException` where that needs more than 32 bits.
  unsigned int getMsgSize() const override;
  static unsigned int getMsgSize(std::size_t count);

  /// "{", the name glued to the first member, the members joined by ", ", "}".
  std::string toString() const override;
  void appendTo(std::string& text) const override;

  /// Writes the members in order up to the first that fails. `written` must not be null.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  /// Throws `CInvalidAddressException` for two lists of one type: lists are not comparable.
  bool operator<(const CTarnFWAddress& other) const override;

 protected:
  /// An owning list of addresses read from `count` records. Throws `CInvalidAddressException`, with
  /// the address's text, for one that `belongs` refuses. `addAddress` is not used: no block is
  /// replaced here and `hasIPv6` stays false.
  CTarnFWAddressList(const FWAddrSetID_t& id, const FWAddress_* records, unsigned int count,
                     bool (*belongs)(int type));

 private:
  enum class Taken { no, yes, replaced };
  Taken add(CTarnFWAddress* address);
  bool accepts(int type) const;

  std::vector<Member> addresses_;
  FWAddrSetID_t id_;
  bool hasIPv6_ = false;
  FWAddrSetType_t setType_ = FW_ADDRSET_ANY;
  bool borrowed_;
};

}  // namespace TarnFirewall
