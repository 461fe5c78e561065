#pragma once

/// How flat functions run their commands. One that sends a request, or reads values or records of a
/// reply, is one statement:
///
///     return runCommand<CTarnFWCmdClearRuleSet>({__func__, handle, port, context}, id);
///
///     return runAndRead<CTarnFWCmdGetRuleSetCount>(
///         {__func__, handle, port, context}, {count},
///         [&](auto& command, auto& reply) { *count = command.count(reply); });
///
///     return runAndCopy<CTarnFWCmdGetRuleSetList>({__func__, handle, port, context}, names,
///                                                 returned, max, from);
///
/// What comes after the call and the results are the arguments of the command after its selector.
/// One of them that is a pointer must not be null, like the results: null gives 3. A command takes
/// a record by reference, text by pointer. A function with more to do calls `callLibrary` and
/// `run`.

#include <initializer_list>
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

/// Copies the records of a reply to the caller, whose memory holds as many as were asked for, and
/// reports their number. Names in them are closed with a NUL.
template <typename Record>
void copyRecords(const CTarnFWReplyRecords<Record>& from, Record* to, unsigned int* returned) {
  from.copyTo(to);
  for (std::uint32_t i = 0; i < from.size(); ++i) {
    if constexpr (requires { to->text; }) {
      to[i].text[sizeof to[i].text - 1] = '\0';
    } else if constexpr (requires { to->name.text; }) {
      to[i].name.text[sizeof to[i].name.text - 1] = '\0';
    }
  }
  *returned = from.reported();
}

/// What every flat function is called with, and where it stands.
struct FWCall {
  FWCall(const char* function, fwlibhandle_* onHandle, const dvs_port_* onPort, void* withContext,
         const char* file = kFlatSource, int line = __builtin_LINE())
      : place{function, file, line}, handle(onHandle), port(onPort), context(withContext) {}

  FWCallPlace place;
  fwlibhandle_* handle;
  const dvs_port_* port;
  void* context;
};

template <typename Argument>
inline constexpr bool kIsText = std::is_same_v<std::decay_t<Argument>, const char*>;

/// An argument as a command takes it: what a pointer points at, unless it is text.
template <typename Argument>
decltype(auto) given(const Argument& argument) {
  if constexpr (std::is_pointer_v<Argument> && !kIsText<Argument>) {
    return (*argument);
  } else {
    return (argument);
  }
}

template <typename Argument>
bool isMissing([[maybe_unused]] const Argument& argument) {
  if constexpr (std::is_pointer_v<Argument>) {
    return argument == nullptr;
  } else {
    return false;
  }
}

/// A whole flat function: makes a `Command`, executes it and hands command and reply to `read`.
template <typename Command, typename Read, typename... Arguments>
FWStatus_t runAndRead(const FWCall& call, std::initializer_list<const void*> results, Read&& read,
                      const Arguments&... arguments) {
  const auto body = [&](CTarnFWLibHandle& library) -> FWStatus_t {
    bool missing = (isMissing(arguments) || ...);
    for (const void* result : results) missing = missing || result == nullptr;
    if (missing) return FW_STATUS_INVALID_ARGUMENT;
    Command command(call.port, given(arguments)...);
    return run(library, command, call.context,
               [&](const CTarnFWCmdReply& reply) { return read(command, reply); });
  };
  return callLibrary(call.place.function, call.handle, body, call.place.file, call.place.line);
}

/// A whole flat function that has no results.
template <typename Command, typename... Arguments>
FWStatus_t runCommand(const FWCall& call, const Arguments&... arguments) {
  return runAndRead<Command>(
      call, {}, [](const Command&, const CTarnFWCmdReply&) {}, arguments...);
}

/// A whole flat function that copies the records of the reply.
template <typename Command, typename Record, typename... Arguments>
FWStatus_t runAndCopy(const FWCall& call, Record* records, unsigned int* returned,
                      const Arguments&... arguments) {
  return runAndRead<Command>(
      call, {records, returned},
      [&](const Command& command, const CTarnFWCmdReply& reply) {
        copyRecords(command.records(reply), records, returned);
      },
      arguments...);
}

}  // namespace TarnFirewall
