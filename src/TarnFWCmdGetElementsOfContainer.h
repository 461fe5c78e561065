#pragma once

#include <memory>
#include <string>

#include "TarnFWContainer.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// Asks for the elements of a container and keeps them.
///
/// Command 56  request   +0  38 bytes  name of the container    reply  +70  the container's chain
///                      +42  u32       elements asked for
class CTarnFWCmdGetElementsOfContainer final : public CTarnFWSizedCmd<56> {
 public:
  /// `bufferSize` bytes are kept free for the chain. Throws `CInvalidContainerNameException` for a
  /// name of more than 37 characters and `CIntegerOverflowException` for a chain that no message
  /// holds.
  CTarnFWCmdGetElementsOfContainer(const dvs_port_* port, const std::string& name,
                                   FWContainerType type, unsigned int count,
                                   unsigned int bufferSize);

  /// Texts of the elements of the last reply, each from `malloc` and owned by the caller. False,
  /// with a log line and nothing allocated, when they are more than `max` or the reply could not be
  /// decoded.
  bool elementsToCharArray(char** out, unsigned int max, unsigned int* count) const;

  std::string toString() const override;

 private:
  void fill(std::span<std::byte> body) const override;
  void read(const CTarnFWCmdReply& reply) override;

  std::string name_;
  FWContainerType type_;
  unsigned int count_;
  std::unique_ptr<CTarnFWContainer> container_;
  bool decoded_ = false;
};

}  // namespace TarnFirewall
