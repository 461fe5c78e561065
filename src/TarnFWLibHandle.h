#pragma once

/// What a command needs to reach the kernel: a message buffer object and an IO channel.

#include <memory>

#include "TarnFWIOChannel.h"
#include "TarnFWMsgBuf.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// A process normally has one handle, the default one on the control device. A buffer is known by
/// its body pointer, sizes are bytes of the body. Results are statuses.
class CTarnFWLibHandle {
 public:
  /// Despite its name makes a new handle on each call, without a channel. Throws
  /// `COutOfMemoryException`.
  static std::unique_ptr<CTarnFWLibHandle> GetInstance();

  /// The process-wide default handle on the control device, made on first use. A failure to make
  /// it ends the process with status 255: without the firewall there is nothing to administer.
  static CTarnFWLibHandle* GetIoctlInstance();

  /// Takes the channel; a former one is deleted.
  FWStatus_t setIOChannel(std::unique_ptr<CTarnFWIOChannel> channel);

  /// 1 without a message buffer object, 8 when no buffer was to be had. `memory` and `fresh` are
  /// those of `CTarnFWMsgBuf::getBuffer`.
  FWStatus_t getCommandBuffer(void** buffer, unsigned int size,
                              CTarnFWMessageMemory* memory = nullptr, bool* fresh = nullptr);

  /// Counts a command of `size` bytes into the buffer's header.
  bool addCommand(void* buffer, unsigned int size);

  /// Sends the buffer. 1 without a channel or a message buffer object; 8, which stands for a
  /// broken header and for a size other than what was added; else the channel's result. The
  /// channel's exceptions pass.
  FWStatus_t flushCommandBuffer(void* buffer, unsigned int size, dvs_port_* port, void* context);

  /// 1 without a message buffer object, 3 when the buffer was refused.
  FWStatus_t releaseCommandBuffer(void* buffer, CTarnFWMessageMemory* memory = nullptr);
  FWStatus_t resetCommandBuffer(void* buffer);

 private:
  std::unique_ptr<CTarnFWMsgBuf> msgBuf_;
  std::unique_ptr<CTarnFWIOChannel> channel_;
  void* defaultContext_ = nullptr;
};

/// The handle as callers outside the library hold it.
inline fwlibhandle_* toLibHandle(CTarnFWLibHandle* handle) {
  return reinterpret_cast<fwlibhandle_*>(handle);
}
inline CTarnFWLibHandle* fromLibHandle(fwlibhandle_* handle) {
  return reinterpret_cast<CTarnFWLibHandle*>(handle);
}

}  // namespace TarnFirewall
