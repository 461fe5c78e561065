#include "TarnFWCmd.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>

#include "TarnFWCmdCatalogue.h"
#include "TarnFWCmdEnvelope.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWSelector.h"
#include "TarnFWStatus.h"

namespace TarnFirewall {

namespace {

constexpr int kAttempts = 3;
constexpr unsigned int kBusySeconds = 1;

/// A message buffer that is given back unless it was handed on.
class Buffer {
 public:
  Buffer(CTarnFWLibHandle& handle, CTarnFWMessageMemory* memory)
      : handle_(handle), memory_(memory) {}
  ~Buffer() {
    if (body_ == nullptr) return;
    try {
      handle_.releaseCommandBuffer(body_, memory_);
    } catch (...) {
      // Whatever ends the exchange counts, not what comes after it.
    }
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  FWStatus_t get(unsigned int size) {
    return handle_.getCommandBuffer(&body_, size, memory_, &fresh_);
  }
  void* body() const { return body_; }
  bool fresh() const { return fresh_; }
  std::byte* commandBody() const { return static_cast<std::byte*>(body_) + kEnvelopeSize; }
  void handOn() { body_ = nullptr; }

 private:
  CTarnFWLibHandle& handle_;
  CTarnFWMessageMemory* memory_;
  void* body_ = nullptr;
  bool fresh_ = true;
};

}  // namespace

CTarnFWCmd::CTarnFWCmd(const dvs_port_* port)
    : port_(port != nullptr ? *port : dvs_port_{}), initialPort_(port_) {
  if (selectorType(initialPort_) != FW_SELECTOR_NONE) {
    TARNFW_TRACE(FW_COMPONENT_CMD, 0, "cmd initial dvsport: [type %d, %.64s:%d]\n",
                 selectorType(initialPort_), initialPort_.identifier,
                 static_cast<int>(selectorIndex(initialPort_)));
  } else {
    TARNFW_TRACE(FW_COMPONENT_CMD, 0, "cmd initial dvsport: none\n");
  }
}

bool CTarnFWCmd::setDVSPort(const dvs_port_* port, bool force) {
  if (port != nullptr && (force || selectorType(initialPort_) == FW_SELECTOR_NONE)) port_ = *port;
  return selectorType(port_) != FW_SELECTOR_NONE;
}

std::string CTarnFWCmd::dvsportToString(const char* prefix) const {
  return TarnFirewall::dvsportToString(port_, prefix);
}

const char* CTarnFWCmd::cmdName() const { return commandName(getCommand()); }

void CTarnFWCmd::checkCmdReply(const void*, unsigned int) {}

bool CTarnFWCmd::writeFreshBody(void* body, unsigned int room, unsigned int* written) {
  return writeCmdBody(body, room, written, 0);
}

bool CTarnFWCmd::toFreshMessage(void* buffer, unsigned int room, unsigned int* written) {
  const struct Fresh {
    explicit Fresh(bool& mark) : mark_(mark) { mark_ = true; }
    ~Fresh() { mark_ = false; }
    Fresh(const Fresh&) = delete;
    Fresh& operator=(const Fresh&) = delete;
    bool& mark_;
  } fresh(fresh_);
  return toMessage(buffer, room, written);
}

bool CTarnFWCmd::toMessage(void* buffer, unsigned int room, unsigned int* written) {
  if (room < kEnvelopeSize) return false;
  std::byte* body = static_cast<std::byte*>(buffer) + kEnvelopeSize;
  // The length of a body that was not written is kept: no receiver takes it, so that a command
  // whose body failed never counts as sent.
  unsigned int length = std::numeric_limits<unsigned int>::max();
  const unsigned int bodyRoom = room - kEnvelopeSize;
  if (!(fresh_ ? writeFreshBody(body, bodyRoom, &length)
               : writeCmdBody(body, bodyRoom, &length, 0))) {
    std::memset(body, 0, std::min(bodyRoom, getMsgSize()));
  }
  FWCmdEnvelope_ envelope{};
  envelope.bodyLength = length;
  envelope.command = getCommand();
  envelope.status = FW_STATUS_OK;
  storeRecord(buffer, envelope);
  *written = length + kEnvelopeSize;
  return true;
}

FWStatus_t CTarnFWCmd::execute(CTarnFWLibHandle* handle, void** reply, unsigned int* replySize,
                               void* context) {
  return execute(handle, reply, replySize, context, nullptr);
}

FWStatus_t CTarnFWCmd::execute(CTarnFWLibHandle* handle, void** reply, unsigned int* replySize,
                               void* context, CTarnFWMessageMemory* memory) {
  *reply = nullptr;
  *replySize = 0;
  try {
    const unsigned int size = getMsgSize();
    if (size > std::numeric_limits<unsigned int>::max() - kEnvelopeSize) {
      throw CIntegerOverflowException("command is too large", static_cast<int>(size));
    }
    Buffer buffer(*handle, memory);
    if (const FWStatus_t status = buffer.get(size + kEnvelopeSize)) return status;
    TARNFW_TRACE(FW_COMPONENT_CMD, 1, "command %s [agent %.32s, type %d, uuid %.64s, idx %d]\n",
                 cmdName(), port_.agent, selectorType(port_), port_.identifier,
                 static_cast<int>(selectorIndex(port_)));
    unsigned int written = 0;
    if (!(buffer.fresh() ? toFreshMessage(buffer.body(), size + kEnvelopeSize, &written)
                         : toMessage(buffer.body(), size + kEnvelopeSize, &written))) {
      return FW_STATUS_BUFFER_TOO_SMALL;
    }
    handle->addCommand(buffer.body(), written);

    dvs_port_* const port = selectorType(port_) != FW_SELECTOR_NONE ? &port_ : nullptr;
    for (int attempts = kAttempts;;) {
      if (const FWStatus_t status =
              handle->flushCommandBuffer(buffer.body(), size + kEnvelopeSize, port, context)) {
        return status;
      }
      const FWStatus_t status = loadRecord<FWCmdEnvelope_>(buffer.body()).status;
      if (status == FW_STATUS_OK) {
        checkCmdReply(buffer.commandBody(), size);
        *reply = buffer.commandBody();
        *replySize = size;
        buffer.handOn();
        return FW_STATUS_OK;
      }
      TARNFW_WARNING("failed to execute command %s: %s\n\n", cmdName(), statusText(status));
      if (status != FW_STATUS_BAD_STATE) return status;
      // The last sleep comes before the failure is returned: callers time their own retries by it.
      // The buffer goes out again as it stands, with the kernel's status in its envelope.
      sleep(kBusySeconds);
      if (--attempts == 0) return status;
    }
  } catch (const CTarnFWException& e) {
    TARNFW_WARNING("%s\n", e.what());
    return static_cast<FWStatus_t>(e.retcode());
  } catch (...) {
    return FW_STATUS_UNKNOWN_ERROR;
  }
}

bool CTarnFWCmd::releaseCmdBuffer(CTarnFWLibHandle* handle, const void* reply,
                                  CTarnFWMessageMemory* memory) {
  try {
    auto* body = static_cast<std::byte*>(const_cast<void*>(reply)) - kEnvelopeSize;
    return handle->releaseCommandBuffer(body, memory) == FW_STATUS_OK;
  } catch (...) {
    return false;
  }
}

}  // namespace TarnFirewall
