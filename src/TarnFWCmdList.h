#pragma once

/// Commands in order, evaluated one by one or in as few messages as they fit into.

#include <deque>
#include <memory>
#include <vector>

#include "TarnFWCmd.h"
#include "TarnFWLoadMemory.h"

namespace TarnFirewall {

/// Owns its commands; they stay in the list after an evaluation and may be evaluated again.
/// Messages are built in one memory, the largest that was needed, which the list keeps: further
/// evaluations get no fresh pages.
class CTarnFWCmdList final : public ITarnFWObject {
 public:
  CTarnFWCmdList() = default;
  /// A list of what a load makes in this memory, which it keeps.
  explicit CTarnFWCmdList(std::shared_ptr<CTarnFWLoadMemory> memory);

  /// All three are always true. `mergeCmdList` leaves `other` empty.
  bool addCmd(std::unique_ptr<CTarnFWCmd> command);
  bool insertCmd(std::unique_ptr<CTarnFWCmd> command);
  bool mergeCmdList(CTarnFWCmdList& other);

  std::size_t size() const { return commands_.size(); }
  const CTarnFWCmd& at(std::size_t index) const { return *commands_.at(index); }
  CTarnFWCmd& at(std::size_t index) { return *commands_.at(index); }

  /// Size of the largest command, 0 for an empty list.
  unsigned int getMsgSize() const override;
  int getType() const override;

  /// Each command's text with ";\n" after it.
  std::string toString() const override;

  /// Throws `CUnsupportedException`: a list is evaluated, not written.
  bool toMessage(void* buffer, unsigned int room, unsigned int* written) override;

  /// Evaluates in the way that the environment chose: the setting is read once in a process.
  /// `port` replaces the selector of every command unless it is null. Nothing is undone when a
  /// command fails. Exceptions of the channel pass in batch mode only.
  FWStatus_t eval(fwlibhandle_* handle, const dvs_port_* port, void* context);

  /// One command at a time, up to the first that fails. A command that finds no port is skipped
  /// when no `port` is given and another command follows.
  FWStatus_t evalSingleCmd(CTarnFWLibHandle& handle, const dvs_port_* port, void* context);

  /// As many commands in a message as fit into 256000 bytes; a larger command gets a message of its
  /// own size. Only the result of sending counts: a status in a command's envelope is not looked
  /// at, and nothing is sent twice.
  FWStatus_t evalBatchCmd(CTarnFWLibHandle& handle, const dvs_port_* port, void* context);

 private:
  std::vector<std::shared_ptr<CTarnFWLoadMemory>> memories_;  // outlive the commands
  std::deque<std::unique_ptr<CTarnFWCmd>> commands_;
  CTarnFWMessageMemory messageMemory_;
};

}  // namespace TarnFirewall
