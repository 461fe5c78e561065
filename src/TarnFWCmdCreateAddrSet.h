#pragma once

#include <memory>

#include "TarnFWAddressList.h"
#include "TarnFWCreateCmd.h"

namespace TarnFirewall {

/// Creates an address set, or replaces its members.
///
/// Command 13  request   +0  86 bytes   `FWAddrSetHead_`        reply  +58  flags
///                      +86  144 bytes  each address                   +62  16 bytes  transaction
///                      id
class CTarnFWCmdCreateAddrSet final : public CTarnFWCreateCmd {
 public:
  /// The type serves the text only: the addresses carry their own. A list takes the place of an
  /// empty one. A name of more than 37 characters throws `CIDTooLongException`.
  CTarnFWCmdCreateAddrSet(const dvs_port_* port, const FWAddrSetID_t& id, FWAddrSetType_t type);
  CTarnFWCmdCreateAddrSet(const dvs_port_* port, const FWAddrSetID_t& id, FWAddrSetType_t type,
                          std::unique_ptr<CTarnFWAddressList> list);
  CTarnFWCmdCreateAddrSet(const dvs_port_* port, const char* name, FWAddrSetType_t type);
  CTarnFWCmdCreateAddrSet(const dvs_port_* port, const char* name, FWAddrSetType_t type,
                          std::unique_ptr<CTarnFWAddressList> list);

  /// Adds `count` addresses. Always true; throws what the address factory throws.
  bool addAddress(const FWAddress_* addresses, unsigned int count);

  /// "create addrset NAME" ("attrset" for a set of attributes), the selector, " with " and the list
  /// unless it is empty.
  std::string toString() const override;

 private:
  unsigned int entriesSize() const override { return list_->getMsgSize(); }
  bool writeEntries(void* buffer, unsigned int room, unsigned int* written) override;
  bool writeFreshEntries(void* buffer, unsigned int room, unsigned int* written) override;
  void fillHead(std::span<std::byte> head) const override;

  FWAddrSetID_t id_;
  FWAddrSetType_t type_;
  std::unique_ptr<CTarnFWAddressList> list_;
};

}  // namespace TarnFirewall
