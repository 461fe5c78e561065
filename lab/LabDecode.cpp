#include "LabDecode.h"

#include <cstring>
#include <ctime>

#include "LabCommandNames.h"
#include "LabFamily.h"
#include "LabMessage.h"
#include "LabPeer.h"
#include "LabSelector.h"

namespace TarnLab {

namespace {

std::string timeText(std::uint64_t nanoseconds) {
  const auto seconds = static_cast<std::time_t>(nanoseconds / 1000000000);
  std::tm local{};
  ::localtime_r(&seconds, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return format("%s.%06u", text, static_cast<unsigned>(nanoseconds % 1000000000 / 1000));
}

/// The kept bytes, as long again as they were before trailing zeros were dropped.
ByteVector whole(const ByteVector& kept, std::uint64_t size) {
  ByteVector bytes = kept;
  const std::uint64_t known = std::min<std::uint64_t>(size, JournalEntry::keptLimit);
  if (bytes.size() < known) bytes.resize(static_cast<std::size_t>(known));
  return bytes;
}

/// One command of a message as it was sent or as it was answered.
struct Piece {
  std::uint16_t command = 0;
  std::uint32_t status = 0;
  ConstBytes body;
};

/// Hands the commands of a message over in their order, as far as the message is there; each place
/// comes from the lengths of the message itself. Returns how many of them there were.
template <typename Visitor>
unsigned forEachCommand(ConstBytes message, Visitor visit) {
  if (message.size() < MessageHeader::size) return 0;
  const unsigned count = get16(message, MessageHeader::count);
  std::size_t at = MessageHeader::size;
  for (unsigned i = 0; i < count; ++i) {
    if (message.size() - at < Envelope::size) return i;
    const ConstBytes envelope = message.subspan(at);
    const std::size_t bodyRoom = envelope.size() - Envelope::size;
    const std::size_t length =
        std::min<std::size_t>(get32(envelope, Envelope::bodyLength), bodyRoom);
    visit(Piece{get16(envelope, Envelope::command), get32(envelope, Envelope::status),
                envelope.subspan(Envelope::size, length)});
    at += Envelope::size + length;
  }
  return count;
}

std::string inBraces(const std::string& fields) {
  return fields.empty() ? "" : " {" + fields + "}";
}

std::string answerText(const Piece& piece) {
  if (piece.status != 0) return format(" = status %u", piece.status);
  const CommandKind* kind = findCommand(piece.command);
  return " = ok" + (kind != nullptr ? inBraces(fieldsText(kind->reply, piece.body)) : "");
}

/// The commands of a message, each with its fields and, when there was one, its answer.
std::string commandsText(const JournalEntry& entry) {
  const ByteVector sent = whole(entry.sent, entry.size);
  if (sent.size() < MessageHeader::size) return "no message";
  std::vector<std::string> answers;
  if (!entry.answered.empty()) {
    forEachCommand(whole(entry.answered, entry.size),
                   [&](const Piece& piece) { answers.push_back(answerText(piece)); });
  }
  std::string text;
  std::size_t place = 0;
  const unsigned found = forEachCommand(sent, [&](const Piece& piece) {
    const CommandKind* kind = findCommand(piece.command);
    text += (text.empty() ? "" : "; ") + commandName(piece.command) + "(" +
            (kind != nullptr ? fieldsText(kind->request, piece.body) : "") + ")";
    if (place < answers.size()) text += answers[place];
    ++place;
  });
  if (const unsigned count = get16(sent, MessageHeader::count); found < count) {
    text += format("%sand %u more", text.empty() ? "" : "; ", count - found);
  }
  return text.empty() ? "no command" : text;
}

bool isMessage(const JournalEntry& entry) {
  return entry.device == Device::firewall && entry.request == 15;
}

std::string messageText(const JournalEntry& entry) {
  std::string text;
  if (entry.selector.size() == Selector::size) text = Selector(entry.selector).toString() + ": ";
  if (entry.sent.size() >= 12) {
    text += format("message %u: ", get32(entry.sent, MessageHeader::sequence));
  }
  return text + commandsText(entry);
}

/// A direct request with its fields and, unless it failed, what came back in its body.
std::string directText(const JournalEntry& entry) {
  const DirectKind* kind = findDirect(entry.device, entry.request);
  if (kind == nullptr) return "direct request";
  const ByteVector sent = whole(entry.sent, entry.size);
  std::string text = kind->title;
  if (sent.size() < kind->size) return text;
  if (kind->asked != nullptr) {
    text += kind->asked(sent);
  } else {
    text += "(" + fieldsText(kind->request, sent) + ")";
  }
  if (entry.error != 0) return text;
  if (entry.status != 0) return text + format(" = status %u", entry.status);
  if (entry.result != 0) return text + format(" = result %d", entry.result);
  return text + " = ok" + inBraces(fieldsText(kind->reply, whole(entry.answered, entry.size)));
}

/// What a peer was asked and, unless it failed, how much it answered.
std::string peerText(const JournalEntry& entry) {
  std::string text = Peer::asked(entry);
  if (entry.error != 0) return text;
  return text + " = ok" + (entry.result != 0 ? format(" {bytes %d}", entry.result) : "");
}

/// A message for the system log, with its facility and priority as log daemons name them. The line
/// ends after it are left out.
std::string messageOfLog(const JournalEntry& entry) {
  static constexpr const char* facilities[] = {
      "kern",   "user",   "mail",     "daemon", "auth",   "syslog", "lpr",    "news",
      "uucp",   "cron",   "authpriv", "ftp",    "ntp",    "audit",  "alert",  "clock",
      "local0", "local1", "local2",   "local3", "local4", "local5", "local6", "local7"};
  static constexpr const char* priorities[] = {"emerg",   "alert",  "crit", "err",
                                               "warning", "notice", "info", "debug"};
  const std::uint32_t facility = entry.request >> 3;
  std::string_view text(reinterpret_cast<const char*>(entry.sent.data()), entry.sent.size());
  while (text.ends_with('\n')) text.remove_suffix(1);
  return "syslog " +
         (facility < std::size(facilities) ? facilities[facility] : format("%u", facility)) + "." +
         priorities[entry.request & 7] + " " + printable(entry.note) + ": " + printable(text);
}

std::string line(const std::string& text) { return "    " + printable(text) + "\n"; }

/// A line for each record of a body.
std::string recordLines(const List& list, ConstBytes body) {
  const std::uint64_t count = numberOf(list.count, body);
  const std::uint64_t at = list.at + list.idBytes(body);
  if (at > body.size()) return line("? cut off");
  ConstBytes rest = body.subspan(static_cast<std::size_t>(at));
  std::string text;
  if (list.record->lines != nullptr) {
    for (const std::string& each : list.record->lines(rest)) text += line(each);
    return text;
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    if (rest.size() < list.record->size) {
      return text + line(format("? and %llu more", static_cast<unsigned long long>(count - i)));
    }
    const ConstBytes record = rest.first(list.record->size);
    text += line(list.record->text != nullptr ? list.record->text(record)
                                              : fieldsText(list.record->fields, record));
    rest = rest.subspan(record.size());
  }
  return text;
}

std::string listLines(const List& list, ConstBytes body) {
  try {
    return recordLines(list, body);
  } catch (const std::out_of_range&) {
    return line("? cut off");
  }
}

/// The records of every command in a message, as it was sent or as it was answered.
std::string messageLines(ConstBytes message, bool sent) {
  std::string text;
  forEachCommand(message, [&](const Piece& piece) {
    const CommandKind* kind = findCommand(piece.command);
    if (kind == nullptr || kind->list.record == nullptr || kind->list.inRequest != sent) return;
    if (sent || piece.status == 0) text += listLines(kind->list, piece.body);
  });
  return text;
}

std::string dump(const char* title, ConstBytes bytes, std::uint64_t size) {
  std::string text = format("    %s, %llu bytes\n", title, static_cast<unsigned long long>(size));
  for (std::size_t at = 0; at < bytes.size(); at += 16) {
    text += format("    %06zx ", at);
    for (std::size_t i = at; i < at + 16 && i < bytes.size(); ++i) {
      text += format(" %02x", static_cast<unsigned>(bytes[i]));
    }
    text += '\n';
  }
  if (bytes.size() < size) {
    text += size > JournalEntry::keptLimit ? "    what follows was not kept\n"
                                           : "    zeros to the end\n";
  }
  return text;
}

}  // namespace

std::string decodeEntry(const JournalEntry& entry) {
  return format("%s %s[%u] ", timeText(entry.time).c_str(), printable(entry.program).c_str(),
                entry.process) +
         decodeRequest(entry);
}

std::string decodeRequest(const JournalEntry& entry) {
  if (entry.device == Device::systemLog) return messageOfLog(entry);
  std::string text(deviceName(entry.device));
  if (isPeer(entry.device)) {
    text += entry.size == 0 ? ": nothing" : " " + peerText(entry);
  } else {
    text += format(" %u: ", entry.request);
    text += isMessage(entry) ? messageText(entry) : directText(entry);
  }
  if (entry.error != 0) {
    const char* name = ::strerrorname_np(entry.error);
    text += " = " + (name != nullptr ? std::string(name) : format("errno %d", entry.error));
  }
  if (!entry.note.empty()) text += " (" + printable(entry.note) + ")";
  return text;
}

std::string decodeRecords(const JournalEntry& entry) {
  const ByteVector sent = whole(entry.sent, entry.size);
  const ByteVector answered =
      entry.answered.empty() ? ByteVector() : whole(entry.answered, entry.size);
  if (entry.device == Device::systemLog) return "";
  if (isPeer(entry.device)) return Peer::answerLines(entry);
  if (isMessage(entry)) return messageLines(sent, true) + messageLines(answered, false);
  const DirectKind* kind = findDirect(entry.device, entry.request);
  if (kind == nullptr || kind->list.record == nullptr) return "";
  if (kind->list.inRequest) return sent.empty() ? "" : listLines(kind->list, sent);
  return answered.empty() ? "" : listLines(kind->list, answered);
}

std::string dumpEntry(const JournalEntry& entry) {
  std::string text;
  if (!entry.selector.empty() && !isZero(entry.selector)) {
    text += dump("selector", entry.selector, entry.selector.size());
  }
  if (!entry.sent.empty()) text += dump("sent", entry.sent, entry.size);
  if (!entry.answered.empty()) {
    const bool peer = isPeer(entry.device);
    text += dump("answered", entry.answered,
                 peer ? static_cast<std::uint64_t>(entry.result) : entry.size);
  }
  return text;
}

}  // namespace TarnLab
