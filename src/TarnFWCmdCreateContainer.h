#pragma once

#include <memory>
#include <string>

#include "TarnFWContainer.h"
#include "TarnFWCreateCmd.h"

namespace TarnFirewall {

/// Creates a container or an attribute profile, or replaces its elements.
///
/// Command 75  request   +0  86 bytes  `FWAddrSetHead_`         reply  +58  flags
///                      +86  the container's chain                     +62  16 bytes  transaction
///                      id
class CTarnFWCmdCreateContainer final : public CTarnFWCreateCmd {
 public:
  /// Type 2 makes an attribute profile, any other a plain container. Throws
  /// `CInvalidContainerNameException` for a name of more than 37 characters.
  CTarnFWCmdCreateContainer(const dvs_port_* port, const std::string& name, FWContainerType type);

  /// Gives the element to the container; false when it is dropped.
  bool addElement(std::unique_ptr<CTarnFWContainerElement> element);

  const CTarnFWContainer& container() const { return *container_; }

  /// "create container NAME" or "create attrprofile NAME", the selector, " with " and the elements.
  std::string toString() const override;

 private:
  unsigned int entriesSize() const override { return container_->getMsgSize(); }
  bool writeEntries(void* buffer, unsigned int room, unsigned int* written) override;
  void fillHead(std::span<std::byte> head) const override;
  void refused(unsigned int room) const override;

  std::unique_ptr<CTarnFWContainer> container_;
};

}  // namespace TarnFirewall
