#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TarnFWAddress.h"
#include "TarnFWAddressBlocks.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The members of an address set, with the set's name.
class CTarnFWAddressList : public CTarnFWAddress {
 public:
  using Member = std::unique_ptr<CTarnFWAddress>;

  /// With an empty name. The members of a borrowed list stay their caller's and must outlive it.
  explicit CTarnFWAddressList(bool borrowed);
  CTarnFWAddressList(const FWAddrSetID_t& id, bool negated, bool borrowed);

  /// An owning list with an empty name, of addresses in the memory of a load.
  explicit CTarnFWAddressList(CTarnFWLoadMemory& memory);

  ~CTarnFWAddressList() override;
  CTarnFWAddressList(const CTarnFWAddressList&) = delete;
  CTarnFWAddressList& operator=(const CTarnFWAddressList&) = delete;

  /// Makes an address where those of the list lie: in the memory of its load, if it has one.
  template <typename Address, typename... Arguments>
  std::unique_ptr<Address> make(Arguments&&... arguments) const {
    return memory_ != nullptr ? memory_->make<Address>(std::forward<Arguments>(arguments)...)
                              : std::make_unique<Address>(std::forward<Arguments>(arguments)...);
  }

  /// 0 (any kind) at start, 1 for an IP set, 2 for a MAC set: what `addAddress` accepts goes by it.
  void setSetType(FWAddrSetType_t setType) { setType_ = setType; }
  FWAddrSetType_t getSetType() const { return setType_; }

  /// Adds an address at the end. False, with a warning logged, when the set type refuses it; it is
  /// the caller's then. A block of prefix length 0, which the kernel does not hold, is replaced by
  /// its two halves, which belong to the list: true, and the address stays the caller's.
  bool addAddress(CTarnFWAddress* address);

  /// The same for a list that owns its members. An address that is not kept is destroyed.
  bool addAddress(std::unique_ptr<CTarnFWAddress> address);

  /// Adds the blocks of a range at the end, as one member. The set is not one of MAC addresses.
  void addBlocks(std::unique_ptr<CTarnFWAddressBlocks> blocks);

  /// True when a message holds no more addresses than the list has. What is added then is judged
  /// and counted and not kept, so that it costs no memory; `getMsgSize` throws for its sake.
  bool isFull() const { return count_ >= kMostAddresses; }

  /// What `addAddress` does with an address of an IP set when the list is full.
  void count() { ++count_; }

  /// The members; one of them may be the blocks of a range.
  std::span<const Member> getAddresses() const { return addresses_; }
  /// The addresses, each block of a range and each that was only counted included.
  std::size_t getAddressCount() const { return count_; }
  const FWAddrSetID_t& getSetID() const { return id_; }

  /// True when `addAddress` has taken an IPv6 address.
  bool hasIPv6() const { return hasIPv6_; }

  /// Hands the addresses of an owning list to the caller and leaves the list empty. Throws
  /// `CIntegerOverflowException` where some were not kept.
  std::vector<std::unique_ptr<CTarnFWAddress>> takeAddresses();

  int getType() const override;

  /// 144 for each address. Throws `CIntegerOverflowException` where that needs more than 32 bits.
  unsigned int getMsgSize() const override;
  static unsigned int getMsgSize(std::size_t count);

  /// "{", the name glued to the first member, the members joined by ", ", "}".
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;

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
  static constexpr std::size_t kMostAddresses = 0xffffffff / sizeof(FWAddress_);

  enum class Taken { no, yes, replaced, counted };
  /// What becomes of an address. Where it is replaced, that has been done.
  Taken add(const CTarnFWAddress* address);
  void keep(std::unique_ptr<CTarnFWAddress> address);
  bool accepts(int type) const;

  std::vector<Member> addresses_;
  std::vector<const CTarnFWAddress*> owned_;  // the members of a borrowed list that are its own
  std::size_t count_ = 0;                     // addresses, kept or not
  CTarnFWLoadMemory* memory_ = nullptr;
  FWAddrSetID_t id_;
  bool hasIPv6_ = false;
  FWAddrSetType_t setType_ = FW_ADDRSET_ANY;
  bool borrowed_;
};

}  // namespace TarnFirewall
