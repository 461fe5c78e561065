#include "TarnFWIOChannel.h"

#include <cstring>

#include "TarnFWCmdEnvelope.h"
#include "TarnFWLog.h"
#include "TarnFWMsgBuf.h"

namespace TarnFirewall {

void CTarnFWIOChannel::validateMessage(const void* message, unsigned int size) const {
  TARNFW_TRACE(FW_COMPONENT_IO, 1, "Validating message\n");
  if (verboseLevel(FW_COMPONENT_IO) <= 2 || message == nullptr) return;
  if (size < sizeof(tarn_msg_hdr_)) return;
  const auto header = loadRecord<tarn_msg_hdr_>(message);
  if (std::memcmp(header.signature, kMsgSignature, sizeof kMsgSignature) == 0) {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message signature found\n");
  } else {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". error: message signature not found\n");
  }
  TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message body length is %u\n",
               std::uint32_t{header.bodyLength});
  TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message sequence is %u\n",
               std::uint32_t{header.sequence});
  TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message major version is %d\n", header.major);
  TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message minor version is %d\n", header.minor);
  if (header.type == 0) {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message type is request\n");
  } else if (header.type == 1) {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message type is response\n");
  } else {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". error: message type is unknown (%d)\n", header.type);
  }
  if (header.category == 1) {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message category is firewall\n");
  } else {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". fail: message category is unknown (%d)\n", header.category);
  }
  // "commads" is what scripts match.
  const int commands = header.commandCount;
  TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message contains %d commads\n", commands);
  const auto padding = loadRecord<host16>(header.reserved);
  if (padding == 0) {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". ok   : message padding is zero\n");
  } else {
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". fail: message padding is unknown (%d)\n", int{padding});
  }
  if (size - sizeof(tarn_msg_hdr_) < sizeof(FWCmdEnvelope_)) return;
  const auto envelope =
      loadRecord<FWCmdEnvelope_>(static_cast<const std::byte*>(message) + sizeof(tarn_msg_hdr_));
  for (int number = 0; number < commands; ++number) {
    // Every pass shows the first command, as readers of these logs know it.
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". command no. %d\n", number);
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". body bytes: %u\n", std::uint32_t{envelope.bodyLength});
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". command: %d\n", int{envelope.command});
    TARNFW_TRACE(FW_COMPONENT_IO, 2, ". status: %u\n", std::uint32_t{envelope.status});
  }
}

}  // namespace TarnFirewall
