#pragma once

/// How a flat function runs its command inside the call frame:
///
///     return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
///       CTarnFWCmdGetFailPolicy command(port);
///       return run(library, command, context,
///                  [&](const CTarnFWCmdReply& reply) { *policy = reply.byte(0); });
///     });

#include <type_traits>

#include "TarnFWCmd.h"
#include "TarnFWLibCall.h"

namespace TarnFirewall {

/// Executes the command; on status 0 hands its reply, bounded, to `readReply` before the buffer is
/// given back, also when `readReply` throws. `readReply` may return a status.
template <typename ReadReply>
FWStatus_t run(CTarnFWLibHandle& library, CTarnFWCmd& command, void* context,
               ReadReply&& readReply) {
  void* reply = nullptr;
  unsigned int size = 0;
  if (const FWStatus_t status = command.execute(&library, &reply, &size, context)) return status;
  struct Release {
    CTarnFWLibHandle& library;
    const void* reply;
    ~Release() {
      if (reply != nullptr) CTarnFWCmd::releaseCmdBuffer(&library, reply);
    }
  } const release{library, reply};
  const CTarnFWCmdReply view(reply, size);
  if constexpr (std::is_void_v<std::invoke_result_t<ReadReply, const CTarnFWCmdReply&>>) {
    readReply(view);
    return FW_STATUS_OK;
  } else {
    return readReply(view);
  }
}

/// Executes a command whose reply has nothing for the caller.
inline FWStatus_t run(CTarnFWLibHandle& library, CTarnFWCmd& command, void* context) {
  return run(library, command, context, [](const CTarnFWCmdReply&) {});
}

}  // namespace TarnFirewall
