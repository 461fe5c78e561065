#pragma once

/// The normal channel: one ioctl on the firewall's control device carries a message.

#include <string>

#include "TarnFWIOChannel.h"

namespace TarnFirewall {

/// Body of ioctl 15, as the kernel lays it out. Integers in host order.
struct FWIoctlMessage_ {
  dvs_port_ selector;  //   +0  all zero when there is none
  host32 messageSize;  // +100  header plus body
  host64 message;      // +104  address of the message header
};
static_assert(sizeof(FWIoctlMessage_) == 112 && alignof(FWIoctlMessage_) == 1);
static_assert(offsetof(FWIoctlMessage_, messageSize) == 100 &&
              offsetof(FWIoctlMessage_, message) == 104);

/// The kernel writes its reply over the message.
class CTarnFWIOChannelIOCTL final : public CTarnFWIOChannel {
 public:
  /// Opens the firewall's control device under the name it has now, and closes it at the end.
  CTarnFWIOChannelIOCTL();

  /// Opens `name` and closes it at the end. Throws `CCannotOpenDevException`.
  explicit CTarnFWIOChannelIOCTL(const char* name);

  /// Works on a descriptor that stays the caller's.
  explicit CTarnFWIOChannelIOCTL(int descriptor);

  ~CTarnFWIOChannelIOCTL() override;

  /// Throws `CPortNotFoundException` when the kernel does not know the filter that `port` selects,
  /// `CIoctlException` for any other failure.
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override;

 private:
  std::string name_;  // empty when the descriptor is the caller's
  int descriptor_;
};

}  // namespace TarnFirewall
