// One command of a message, as its family declares it.
#ifndef TARNLAB_COMMAND_H
#define TARNLAB_COMMAND_H

#include <algorithm>

#include "LabField.h"
#include "LabHost.h"
#include "LabJournal.h"
#include "LabText.h"

namespace TarnLab {

/// Statuses that the model answers with, as the kernel numbers them.
namespace Status {
inline constexpr std::uint32_t ok = 0, invalidArgument = 3, notSupported = 7, bufferTooSmall = 9,
                               noFilter = 21, badTransaction = 23, badMessage = 25, badState = 26,
                               noRule = 27, noRuleSet = 28, noAddrSet = 29, noAddress = 30,
                               invalidAddress = 33, invalidAddrSetType = 34, invalidAttribute = 35,
                               invalidRule = 45, noVnic = 48, noMemory = 65, noUser = 70;
}  // namespace Status

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

/// A command is answered after these checks: the body holds `least` bytes, what is reserved in the
/// request is zero, the message is for what the command is for, the request's names are padded.
/// `answer` returns a status; a reply goes back with status 0 only.
struct CommandKind {
  std::uint16_t number = 0;
  CommandScope scope = CommandScope::filter;
  std::size_t least = 0;  // bytes that the request itself takes; the reply may need more
  std::uint32_t (*answer)(const CommandContext& context, Body& body) = nullptr;
  FieldList request = {};
  FieldList reply = {};
  List list = {};
};

/// Writes the part of a list that the request asks for: hands every place of it to the writer, with
/// the bytes of its record. Returns a status; refuses what the body has no room for.
template <typename Writer>
std::uint32_t fillList(const CommandContext& context, Body& body, const List& list,
                       std::uint64_t count, Writer write) {
  const std::uint64_t max = list.max.get(body);
  const std::uint64_t from = list.from.get(body);
  const std::size_t size = list.record->size;
  if (max > (body.size() - list.at) / size) {
    return context.refuse(Status::badMessage, "list without the room that it asks for");
  }
  std::uint32_t returned = 0;
  for (; returned < max && from + returned < count; ++returned) {
    write(static_cast<std::size_t>(from) + returned, body.reply(list.at + returned * size, size));
  }
  putHost(placeOf(body, list.count), 0, returned);
  return Status::ok;
}

/// Copies a stored record into its place in a reply.
inline void copyRecord(Bytes into, ConstBytes record) {
  std::copy_n(record.begin(), std::min(into.size(), record.size()), into.begin());
}

}  // namespace TarnLab

#endif
