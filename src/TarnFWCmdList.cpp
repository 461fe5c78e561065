#include "TarnFWCmdList.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <span>
#include <vector>

#include "TarnFWCmdEnvelope.h"
#include "TarnFWException.h"
#include "TarnFWLibConfig.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kBatchSize = 256000;

/// The header counts the commands of a message in 16 bits.
constexpr std::size_t kMaxCommands = std::numeric_limits<std::uint16_t>::max();

/// One message that is filled with commands, sent, and filled again.
class Batch {
 public:
  Batch(CTarnFWLibHandle& handle, const dvs_port_* port, void* context,
        CTarnFWMessageMemory& memory)
      : handle_(handle), context_(context), memory_(memory), hasPort_(port != nullptr) {
    if (hasPort_) port_ = *port;
  }
  ~Batch() { release(); }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  FWStatus_t add(CTarnFWCmd& command) {
    const unsigned int size = command.getMsgSize();
    if (size > std::numeric_limits<unsigned int>::max() - kEnvelopeSize) {
      throw CIntegerOverflowException("command is too large", static_cast<int>(size));
    }
    const unsigned int needed = size + kEnvelopeSize;
    if (needed > capacity_ - used_ || pending_.size() == kMaxCommands) {
      if (const FWStatus_t status = flush()) return status;
      if (const FWStatus_t status = makeRoom(needed)) return status;
    }
    if (hasPort_) command.setDVSPort(&port_, true);
    unsigned int written = 0;
    // Nothing of an earlier message may reach the kernel: what is not fresh is cleared.
    const bool fresh = used_ >= dirty_;
    if (!(fresh ? command.toFreshMessage(body() + used_, capacity_ - used_, &written)
                : command.toMessage(body() + used_, capacity_ - used_, &written))) {
      return FW_STATUS_BUFFER_TOO_SMALL;
    }
    handle_.addCommand(buffer_, needed);
    used_ += needed;
    pending_.push_back(&command);
    TARNFW_TRACE(FW_COMPONENT_CMD, 0, "delay executing command %s\n", command.cmdName());
    return FW_STATUS_OK;
  }

  /// Sends what is pending and hands every command its reply.
  FWStatus_t flush() {
    if (pending_.empty()) return FW_STATUS_OK;
    const std::time_t before = std::time(nullptr);
    const FWStatus_t status =
        handle_.flushCommandBuffer(buffer_, used_, hasPort_ ? &port_ : nullptr, context_);
    const std::time_t after = std::time(nullptr);
    TARNFW_INFO("execute pending cmd list of %lu commands and %u bytes in %ld seconds\n",
                static_cast<unsigned long>(pending_.size()), used_,
                static_cast<long>(after - before));
    if (status != FW_STATUS_OK) return status;
    std::size_t offset = 0;
    for (CTarnFWCmd* command : pending_) {
      const unsigned int size = command->getMsgSize();
      command->checkCmdReply(body() + offset + kEnvelopeSize, size);
      offset += std::size_t{size} + kEnvelopeSize;
    }
    pending_.clear();
    return FW_STATUS_OK;
  }

 private:
  std::byte* body() const { return static_cast<std::byte*>(buffer_); }

  FWStatus_t makeRoom(unsigned int needed) {
    dirty_ = std::max(dirty_, used_);
    used_ = 0;
    if (needed <= capacity_) return handle_.resetCommandBuffer(buffer_);
    release();
    const unsigned int size = std::max(needed, kBatchSize);
    bool fresh = true;
    if (const FWStatus_t status = handle_.getCommandBuffer(&buffer_, size, &memory_, &fresh))
      return status;
    capacity_ = size;
    if (!fresh) dirty_ = size;
    return FW_STATUS_OK;
  }

  void release() {
    if (buffer_ != nullptr) handle_.releaseCommandBuffer(buffer_, &memory_);
    buffer_ = nullptr;
    capacity_ = 0;
    dirty_ = 0;
  }

  CTarnFWLibHandle& handle_;
  void* context_;
  CTarnFWMessageMemory& memory_;
  bool hasPort_;
  dvs_port_ port_{};
  void* buffer_ = nullptr;
  unsigned int capacity_ = 0;
  unsigned int used_ = 0;
  unsigned int dirty_ = 0;  // bytes at the beginning that held an earlier message
  std::vector<CTarnFWCmd*> pending_;
};

bool batchIsChosen() {
  bool chosen = false;
  CTarnFWLibConfig::GetInstance()->readConfig(FW_CONFIG_EXEC_BATCH_CMD, &chosen);
  return chosen;
}

}  // namespace

CTarnFWCmdList::CTarnFWCmdList(std::shared_ptr<CTarnFWLoadMemory> memory)
    : memories_{std::move(memory)} {}

bool CTarnFWCmdList::addCmd(std::unique_ptr<CTarnFWCmd> command) {
  commands_.push_back(std::move(command));
  return true;
}

bool CTarnFWCmdList::insertCmd(std::unique_ptr<CTarnFWCmd> command) {
  commands_.push_front(std::move(command));
  return true;
}

bool CTarnFWCmdList::mergeCmdList(CTarnFWCmdList& other) {
  if (&other == this) return true;
  memories_.insert(memories_.end(), other.memories_.begin(), other.memories_.end());
  for (auto& command : other.commands_) commands_.push_back(std::move(command));
  other.commands_.clear();
  return true;
}

unsigned int CTarnFWCmdList::getMsgSize() const {
  unsigned int largest = 0;
  for (const auto& command : commands_) largest = std::max(largest, command->getMsgSize());
  return largest;
}

int CTarnFWCmdList::getType() const { return 128; }

std::string CTarnFWCmdList::toString() const {
  std::string text;
  for (const auto& command : commands_) {
    text += command->toString();
    text += ";\n";
  }
  return text;
}

bool CTarnFWCmdList::toMessage(void*, unsigned int, unsigned int*) {
  throw CUnsupportedException(
      "CTarnFWCmdList::toMessage is not supported! Call CTarnFWCmd::eval method instead.");
}

FWStatus_t CTarnFWCmdList::eval(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  static const bool batch = batchIsChosen();
  if (handle == nullptr) return FW_STATUS_INVALID_LIB_HANDLE;
  CTarnFWLibHandle& library = *fromLibHandle(handle);
  return batch ? evalBatchCmd(library, port, context) : evalSingleCmd(library, port, context);
}

FWStatus_t CTarnFWCmdList::evalSingleCmd(CTarnFWLibHandle& handle, const dvs_port_* port,
                                         void* context) {
  FWStatus_t status = FW_STATUS_OK;
  for (std::size_t i = 0; i < commands_.size(); ++i) {
    CTarnFWCmd& command = *commands_[i];
    command.setDVSPort(port, true);
    void* reply = nullptr;
    unsigned int size = 0;
    status = command.execute(&handle, &reply, &size, context, &messageMemory_);
    if (status == FW_STATUS_OK) {
      CTarnFWCmd::releaseCmdBuffer(&handle, reply, &messageMemory_);
      continue;
    }
    const bool skip =
        status == FW_STATUS_PORT_NOT_FOUND && port == nullptr && i + 1 < commands_.size();
    if (!skip) break;
  }
  return status;
}

FWStatus_t CTarnFWCmdList::evalBatchCmd(CTarnFWLibHandle& handle, const dvs_port_* port,
                                        void* context) {
  Batch batch(handle, port, context, messageMemory_);
  for (const auto& command : commands_) {
    if (const FWStatus_t status = batch.add(*command)) return status;
  }
  return batch.flush();
}

}  // namespace TarnFirewall
