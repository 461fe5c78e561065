// One command of a message, and the table of those that the model knows.
#ifndef TARNLAB_COMMAND_H
#define TARNLAB_COMMAND_H

#include <algorithm>

#include "LabHost.h"
#include "LabJournal.h"

namespace TarnLab {

/// Statuses that the model answers with, as the kernel numbers them.
namespace Status {
inline constexpr std::uint32_t ok = 0, invalidArgument = 3, notSupported = 7, noFilter = 21,
                               badTransaction = 23, badMessage = 25, badState = 26, noRule = 27,
                               noRuleSet = 28, noAddrSet = 29, noAddress = 30, noMemory = 65;
inline constexpr std::uint32_t bufferTooSmall = 9, invalidAddress = 33, invalidAddrSetType = 34,
                               invalidAttribute = 35, invalidRule = 45;
}  // namespace Status

/// A command's body: the request is read from it and the reply is written over it. Remembers what
/// was written, since only that goes back to the caller.
class CommandBody {
 public:
  explicit CommandBody(Bytes bytes) : bytes_(bytes), first_(bytes.size()) {}

  ConstBytes bytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }

  /// A part of the body to write a reply into.
  Bytes reply(std::size_t offset, std::size_t size) {
    const Bytes piece = part(bytes_, offset, size);
    if (size > 0) {
      first_ = std::min(first_, offset);
      last_ = std::max(last_, offset + size);
    }
    return piece;
  }
  void put32(std::size_t offset, std::uint32_t value) { putHost(reply(offset, 4), 0, value); }
  void put64(std::size_t offset, std::uint64_t value) { putHost(reply(offset, 8), 0, value); }

  /// What was written: an offset, and a size that is 0 when nothing was.
  std::size_t writtenAt() const { return first_; }
  std::size_t writtenSize() const { return last_ > first_ ? last_ - first_ : 0; }

 private:
  Bytes bytes_;
  std::size_t first_;
  std::size_t last_ = 0;
};

struct CommandContext {
  const Store& store;
  const Host& host;
  const SelectedFilter& target;
  JournalEntry& entry;

  /// The status, with a line in the log that says why.
  std::uint32_t refuse(std::uint32_t status, const std::string& why) const {
    entry.note = why;
    return status;
  }
};

/// What a command is for: the host itself, a filter, or what holds address sets, which a filter and
/// the shared sets of an agent do.
enum class CommandScope : std::uint8_t { host, filter, sets };

struct CommandKind {
  std::uint16_t number;
  std::size_t least;  // bytes that the request itself takes; the reply may need more
  CommandScope scope;
  std::uint32_t (*answer)(const CommandContext& context, CommandBody& body);
  struct {
    std::size_t at, size;
  } zeros = {0, 0};  // reserved bytes of the request
};

/// The command of that number, or null when the model does not know it.
const CommandKind* findCommand(std::uint16_t number);

/// The commands of each family.
std::span<const CommandKind> ruleSetCommands();
std::span<const CommandKind> addrSetCommands();

}  // namespace TarnLab

#endif
