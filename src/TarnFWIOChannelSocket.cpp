#include "TarnFWIOChannelSocket.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "TarnFWCmdCatalogue.h"
#include "TarnFWCmdEnvelope.h"
#include "TarnFWMsgBuf.h"

namespace TarnFirewall {

namespace {

constexpr std::size_t kHeadSize = kMsgHeaderSize + kEnvelopeSize;

FWStatus_t check(const void* message, unsigned int size) {
  // The signature is judged first, so that too few bytes for it count as a wrong one.
  if (message == nullptr || size < sizeof kMsgSignature ||
      std::memcmp(message, kMsgSignature, sizeof kMsgSignature) != 0) {
    return FW_STATUS_SOCKET_BAD_SIGNATURE;
  }
  if (size < kMsgHeaderSize) return FW_STATUS_SOCKET_TOO_SHORT;
  const auto header = loadRecord<tarn_msg_hdr_>(message);
  if (header.bodyLength != size - kMsgHeaderSize) return FW_STATUS_SOCKET_BAD_LENGTH;
  if (header.commandCount != 1) return FW_STATUS_NOT_SUPPORTED;
  if (size < kHeadSize) return FW_STATUS_SOCKET_BAD_LENGTH;
  const auto envelope =
      loadRecord<FWCmdEnvelope_>(static_cast<const std::byte*>(message) + kMsgHeaderSize);
  if (envelope.bodyLength != size - kHeadSize) return FW_STATUS_SOCKET_BAD_LENGTH;
  return FW_STATUS_OK;
}

}  // namespace

CTarnFWIOChannelSocket::CTarnFWIOChannelSocket(Sockets::SocketType_t type, const char* address,
                                               const char* port)
    : socket_(Sockets::SocketFactory::createSocket(type, address, port)) {}

CTarnFWIOChannelSocket::CTarnFWIOChannelSocket(std::unique_ptr<Sockets::Socket> socket)
    : socket_(std::move(socket)) {}

FWStatus_t CTarnFWIOChannelSocket::sendIOCTL(dvs_port_*, void* message, unsigned int size, void*) {
  if (const FWStatus_t status = check(message, size)) return status;
  auto* bytes = static_cast<unsigned char*>(message);
  auto header = loadRecord<tarn_msg_hdr_>(bytes);
  auto envelope = loadRecord<FWCmdEnvelope_>(bytes + kMsgHeaderSize);
  const std::uint32_t bodyLength = header.bodyLength;
  const std::uint32_t commandLength = envelope.bodyLength;

  const std::uint16_t command = envelope.command;
  if (command != 0 && command < kCmdCount) {
    const std::uint32_t request = cmd_request[command];
    envelope.bodyLength = request;
    // The peer expects the whole message's size in the header here, not the body's.
    header.bodyLength = request + static_cast<std::uint32_t>(kHeadSize);
    storeRecord(bytes, header);
    storeRecord(bytes + kMsgHeaderSize, envelope);
  }
  try {
    // For a command from the catalogue this is 20 bytes more than header, envelope and request
    // take: after the header the peer reads as many bytes as the header says.
    const std::size_t total = std::size_t{header.bodyLength} + kMsgHeaderSize;
    const std::size_t owned = std::min(total, size + kMsgSlack);
    socket_->SendAll(bytes, owned);
    if (owned < total) {
      const std::vector<unsigned char> zeros(total - owned);
      socket_->SendAll(zeros.data(), zeros.size());
    }
    header.bodyLength = bodyLength;
    // 16 bits only: the peer's answer overwrites it.
    envelope.bodyLength = commandLength & 0xffff;
    storeRecord(bytes, header);
    storeRecord(bytes + kMsgHeaderSize, envelope);
    socket_->RecvAll(bytes, size);
  } catch (...) {
    return FW_STATUS_SOCKET_ERROR;
  }
  return FW_STATUS_OK;
}

}  // namespace TarnFirewall
