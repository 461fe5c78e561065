#pragma once

/// A channel that exchanges messages with a peer over a TCP socket.

#include <memory>

#include "Sockets.h"
#include "TarnFWIOChannel.h"

namespace TarnFirewall {

/// What only this channel answers. No text stands for these.
inline constexpr FWStatus_t FW_STATUS_SOCKET_BAD_SIGNATURE = 72;
inline constexpr FWStatus_t FW_STATUS_SOCKET_TOO_SHORT = 73;
inline constexpr FWStatus_t FW_STATUS_SOCKET_BAD_LENGTH = 74;

/// Carries one command of known size at a time. Nothing in it names the filter: the
/// selector is not used. The socket is expected to block.
class CTarnFWIOChannelSocket final : public CTarnFWIOChannel {
 public:
  /// Connects at once; throws what `Sockets::SocketFactory::createSocket` throws.
  CTarnFWIOChannelSocket(Sockets::SocketType_t type, const char* address, const char* port);

  /// Takes a connected socket over.
  explicit CTarnFWIOChannelSocket(std::unique_ptr<Sockets::Socket> socket);

  /// Sends what of the message really is request, with `kMsgSlack` bytes after it, and receives
  /// `size` bytes into the same memory. The `kMsgSlack` bytes after `size` must be the caller's
  /// too: message buffers own them. 72 to 74 for a message that is refused, 7 for one that does
  /// not hold exactly one command, 11 for a failing exchange. Throws nothing.
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override;

 private:
  std::unique_ptr<Sockets::Socket> socket_;
};

}  // namespace TarnFirewall
