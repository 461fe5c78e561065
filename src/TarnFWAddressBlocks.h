#pragma once

#include <memory>
#include <vector>

#include "TarnFWAddress.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWAddressIPv6CIDR.h"

namespace TarnFirewall {

/// The blocks that cover a range of addresses, as one member of a set. A range of 24 characters has
/// up to 62 of them, so that only the range is kept: a block is made when it is written or printed.
class CTarnFWAddressBlocks : public CTarnFWAddress {
 public:
  unsigned int getCount() const { return count_; }
  virtual bool areIPv6() const = 0;
  /// Each block as an address of its own, in ascending order.
  virtual std::vector<std::unique_ptr<CTarnFWAddress>> makeAddresses() const = 0;

  unsigned int getMsgSize() const final;
  int getType() const final;
  /// The text of each block, joined by ", ".
  std::string toString() const final;
  void appendTo(CTarnFWText& text) const final;
  /// Writes a record for each block, as the addresses do.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) final;
  /// Not comparable with another list of addresses: throws `CInvalidAddressException`.
  bool operator<(const CTarnFWAddress& other) const final;

 protected:
  explicit CTarnFWAddressBlocks(unsigned int count) : count_(count) {}

  /// Called with each block, which is gone afterwards.
  using Visit = void (*)(void* context, CTarnFWAddress& block);
  virtual void visitBlocks(Visit visit, void* context) const = 0;

 private:
  std::uint32_t count_;
};

/// Those of one family; `Single` is a block of one address, `CIDR` any other.
template <typename Family, typename Single, typename CIDR>
class CTarnFWAddressBlocksOf final : public CTarnFWAddressBlocks {
 public:
  using Address = typename Family::Address;

  /// `count` is what `countOf` gives.
  CTarnFWAddressBlocksOf(const Address& first, const Address& last, unsigned int count)
      : CTarnFWAddressBlocks(count), first_(first), last_(last) {}

  /// How many blocks cover the range. False when none do.
  static bool countOf(const Address& first, const Address& last, unsigned int* count);

  bool areIPv6() const override { return Family::family == AF_INET6; }
  std::vector<std::unique_ptr<CTarnFWAddress>> makeAddresses() const override;

 private:
  void visitBlocks(Visit visit, void* context) const override;

  Address first_;
  Address last_;
};

using CTarnFWAddressIPv4Blocks =
    CTarnFWAddressBlocksOf<IPv4Family, CTarnFWAddressIPv4, CTarnFWAddressIPv4CIDR>;
using CTarnFWAddressIPv6Blocks =
    CTarnFWAddressBlocksOf<IPv6Family, CTarnFWAddressIPv6, CTarnFWAddressIPv6CIDR>;
extern template class CTarnFWAddressBlocksOf<IPv4Family, CTarnFWAddressIPv4,
                                             CTarnFWAddressIPv4CIDR>;
extern template class CTarnFWAddressBlocksOf<IPv6Family, CTarnFWAddressIPv6,
                                             CTarnFWAddressIPv6CIDR>;

}  // namespace TarnFirewall
