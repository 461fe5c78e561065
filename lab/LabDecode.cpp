#include "LabDecode.h"

#include <cstring>
#include <ctime>

#include "LabCommandNames.h"
#include "LabMessage.h"
#include "LabSelector.h"
#include "LabText.h"

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

/// The commands of a message, each with its fields and what it was answered.
std::string commandsText(const JournalEntry& entry) {
  const ByteVector sent = whole(entry.sent, entry.size);
  const ByteVector answered = whole(entry.answered, entry.size);
  if (sent.size() < MessageHeader::size) return "no message";
  std::string text;
  const unsigned count = get16(sent, MessageHeader::count);
  std::size_t at = MessageHeader::size;
  for (unsigned i = 0; i < count; ++i) {
    if (sent.size() < at || sent.size() - at < Envelope::size) {
      text += format("%sand %u more", text.empty() ? "" : "; ", count - i);
      break;
    }
    const ConstBytes envelope = ConstBytes(sent).subspan(at);
    const std::uint16_t command = get16(envelope, Envelope::command);
    const std::size_t bodyAt = at + Envelope::size;
    const std::size_t room = sent.size() - bodyAt;
    const std::size_t length = std::min<std::size_t>(get32(envelope, Envelope::bodyLength), room);
    text += (text.empty() ? "" : "; ") + commandName(command) + "(" +
            decodeRequestFields(command, ConstBytes(sent).subspan(bodyAt, length)) + ")";
    if (answered.size() >= bodyAt) {
      const std::uint32_t status = get32(answered, at + Envelope::status);
      if (status != 0) {
        text += format(" = status %u", status);
      } else {
        const std::size_t have = std::min(length, answered.size() - bodyAt);
        const std::string fields =
            decodeReplyFields(command, ConstBytes(answered).subspan(bodyAt, have));
        text += " = ok" + (fields.empty() ? "" : " {" + fields + "}");
      }
    }
    at = bodyAt + length;
  }
  return text.empty() ? "no command" : text;
}

std::string messageText(const JournalEntry& entry) {
  std::string text;
  if (entry.selector.size() == Selector::size) text = Selector(entry.selector).toString() + ": ";
  if (entry.sent.size() >= 12) {
    text += format("message %u: ", get32(entry.sent, MessageHeader::sequence));
  }
  return text + commandsText(entry);
}

std::string filterListText(const JournalEntry& entry) {
  const ByteVector sent = whole(entry.sent, entry.size);
  const ByteVector answered = whole(entry.answered, entry.size);
  constexpr std::size_t size = 116, atCount = 100, atLength = 104;
  std::string text = entry.request == 20 ? "number of filters" : "filters";
  if (sent.size() < size) return text;
  const std::string_view agent = getText(sent, 0, atCount);
  text += agent.empty() ? " of every agent" : " of " + printable(agent);
  if (entry.request == 21) {
    text += format(" (count %u, room %u)", get32(sent, atCount), get32(sent, atLength));
  }
  if (entry.error == 0 && answered.size() >= size) {
    text += format(" = ok {count %u", get32(answered, atCount));
    if (entry.request == 21) text += format(", bytes %u", get32(answered, atLength));
    text += "}";
  }
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
  std::string text =
      format("%s %u: ", std::string(deviceName(entry.device)).c_str(), entry.request);
  if (entry.device == Device::firewall && entry.request == 15) {
    text += messageText(entry);
  } else if (entry.device == Device::firewall && (entry.request == 20 || entry.request == 21)) {
    text += filterListText(entry);
  } else {
    text += "direct request";
  }
  if (entry.error != 0) {
    const char* name = ::strerrorname_np(entry.error);
    text += " = " + (name != nullptr ? std::string(name) : format("errno %d", entry.error));
  }
  if (!entry.note.empty()) text += " (" + printable(entry.note) + ")";
  return text;
}

std::string dumpEntry(const JournalEntry& entry) {
  std::string text;
  if (!entry.selector.empty() && !isZero(entry.selector)) {
    text += dump("selector", entry.selector, entry.selector.size());
  }
  if (!entry.sent.empty()) text += dump("sent", entry.sent, entry.size);
  if (!entry.answered.empty()) text += dump("answered", entry.answered, entry.size);
  return text;
}

}  // namespace TarnLab
