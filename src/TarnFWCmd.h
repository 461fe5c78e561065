#pragma once

/// One request to the kernel firewall. The base carries the whole exchange; a concrete command says
/// its number and size, writes its body and reads its reply.

#include <cstddef>
#include <cstdint>

#include "TarnFWCmdReply.h"
#include "TarnFWLibHandle.h"
#include "TarnFWObject.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The operations of a command as log lines name them. Most classes do their part in hooks of a
/// base, whose names say nothing to those who search the log.
inline constexpr char kWriteCmdBody[] = "writeCmdBody";
inline constexpr char kCheckCmdReply[] = "checkCmdReply";

/// A command holds no state from an earlier run and may be executed again. It is used by one
/// thread.
class CTarnFWCmd : public ITarnFWObject {
 public:
  /// Sends the command once, and up to twice more, a second apart, while the kernel is busy
  /// (status 26). On status 0 `*reply` and `*replySize` give the reply, which the caller gives back
  /// with `releaseCmdBuffer`; otherwise they are cleared. Nothing is thrown.
  virtual FWStatus_t execute(CTarnFWLibHandle* handle, void** reply, unsigned int* replySize,
                             void* context);

  /// The same with a message that is built in `memory`, unless that is null.
  FWStatus_t execute(CTarnFWLibHandle* handle, void** reply, unsigned int* replySize, void* context,
                     CTarnFWMessageMemory* memory);

  /// Gives the reply of `execute` back, with the same memory.
  static bool releaseCmdBuffer(CTarnFWLibHandle* handle, const void* reply,
                               CTarnFWMessageMemory* memory = nullptr);

  /// Writes envelope and body over whatever the buffer holds. `room` counts both; false, with
  /// nothing written, when it is too small for the envelope. A body that could not be written
  /// leaves a body length that no receiver accepts, and the flush fails on it.
  bool toMessage(void* buffer, unsigned int room, unsigned int* written) override;

  /// `toMessage` into a buffer that is zero, as message buffers are when they are obtained.
  bool toFreshMessage(void* buffer, unsigned int room, unsigned int* written);

  /// The kernel's number of the command.
  virtual std::uint16_t getCommand() const = 0;

  /// Writes the request. False, with nothing promised, when `room` is under `getMsgSize()`.
  virtual bool writeCmdBody(void* body, unsigned int room, unsigned int* written,
                            unsigned int arg) = 0;

  /// Prints or keeps what the reply says. May throw: `execute` turns that into a status.
  virtual void checkCmdReply(const void* reply, unsigned int size);

  /// Sets the current selector; null changes nothing. Without `force` a command that was made with
  /// a selector keeps its own. True when there is a current selector.
  bool setDVSPort(const dvs_port_* port, bool force);

  const dvs_port_& currentPort() const { return port_; }

  /// Name of the command as logs print it.
  const char* cmdName() const;

 protected:
  explicit CTarnFWCmd(const dvs_port_* port);

  /// `writeCmdBody` into memory that is zero. A command that asks for a large reply leaves the room
  /// for it untouched, so that it costs no memory before the kernel writes there.
  virtual bool writeFreshBody(void* body, unsigned int room, unsigned int* written);

  /// Text of the current selector after a prefix, as statements end with it.
  std::string dvsportToString(const char* prefix) const;

 private:
  dvs_port_ port_;
  dvs_port_ initialPort_;
  bool fresh_ = false;  // the buffer of the message that is being written is zero
};

}  // namespace TarnFirewall
