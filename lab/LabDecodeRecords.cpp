// The records inside the messages of the log: rules, addresses, elements, names, counters.
#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabDecode.h"
#include "LabMessage.h"
#include "LabRuleRecord.h"
#include "LabText.h"

namespace TarnLab {

namespace {

enum class Content : std::uint8_t {
  rules,
  ruleCounters,
  ruleIds,
  addresses,
  marked,
  entryCounters,
  chain,
  names,
  setCounters,
};

/// Where a command has its records.
struct Place {
  std::uint16_t command;
  bool reply;
  Content content;
  std::size_t atCount;
  std::size_t atRecords;
  std::size_t atIds;  // offset of the number of ids in front of the records; 0 when there are none
  std::size_t stride;
};

constexpr Place places[] = {
    {2, true, Content::names, 8, 12, 0, 64},
    {3, false, Content::rules, 136, 168, 0, RuleRecord::size},
    {10, true, Content::rules, 76, 96, 64, RuleRecord::size},
    {11, true, Content::ruleCounters, 76, 80, 64, 64},
    {12, true, Content::ruleIds, 76, 80, 0, 4},
    {13, false, Content::addresses, 46, 86, 0, AddressRecord::size},
    {17, true, Content::addresses, 50, 70, 0, AddressRecord::size},
    {18, true, Content::marked, 50, 54, 0, AddressRecord::size + 1},
    {19, true, Content::entryCounters, 54, 58, 0, 80},
    {21, true, Content::names, 12, 16, 0, 38},
    {22, true, Content::setCounters, 12, 16, 0, 130},
    {56, true, Content::chain, 50, 70, 0, 0},
    {75, false, Content::chain, 46, 86, 0, 0},
};

std::string line(const std::string& text) { return "    " + printable(text) + "\n"; }

/// Eight counters: packets, then bytes, in the order of the record. The program's displays read
/// them under different names, so they have none here.
std::string eightCounters(ConstBytes record, std::size_t offset) {
  std::string text = "packets";
  for (std::size_t i = 0; i < 8; ++i) {
    if (i == 4) text += ", bytes";
    text += format(" %llu", static_cast<unsigned long long>(get64(record, offset + 8 * i)));
  }
  return text;
}

unsigned long long counter(ConstBytes record, std::size_t offset) { return get64(record, offset); }

std::string recordText(Content content, ConstBytes record) {
  switch (content) {
    case Content::rules:
      return RuleRecord::text(record);
    case Content::ruleCounters:
      return format(
          "rule %u: evals %llu, hits %llu, sessions %llu, packets in %llu out %llu, bytes in %llu "
          "out %llu",
          get32(record, 0), counter(record, 8), counter(record, 16), counter(record, 24),
          counter(record, 32), counter(record, 40), counter(record, 48), counter(record, 56));
    case Content::ruleIds:
      return format("rule %u", get32(record, 0));
    case Content::addresses:
      return AddressRecord::text(record);
    case Content::marked:
      return AddressRecord::text(record.first(AddressRecord::size)) +
             format(" mark %u", get8(record, AddressRecord::size));
    case Content::entryCounters:
      return eightCounters(record, 0) + format(", connections %u, at most %u, uptime %llu",
                                               get32(record, 64), get32(record, 68),
                                               counter(record, 72));
    case Content::setCounters:
      return std::string(getText(record, 0, 38)) + ": " + eightCounters(record, 38) +
             format(", match %llu, no match %llu, uptime %llu, references %u", counter(record, 102),
                    counter(record, 110), counter(record, 118), get32(record, 126));
    case Content::names:
    case Content::chain:
      break;
  }
  return std::string(getText(record, 0, record.size()));
}

std::string chainLines(ConstBytes chain) {
  if (chain.size() >= Chain::headSize) {
    const std::size_t size = get32(chain, Chain::bytes);
    if (size <= chain.size() - Chain::headSize) chain = chain.first(Chain::headSize + size);
  }
  if (const std::string fault = Chain::fault(chain); !fault.empty()) return line("? " + fault);
  std::string text;
  for (const std::string& element : Chain::texts(chain)) text += line(element);
  return text;
}

std::string lines(const Place& place, ConstBytes body) {
  const std::uint64_t count = get32(body, place.atCount);
  std::uint64_t at = place.atRecords;
  if (place.atIds != 0) at += 4 * std::uint64_t{get32(body, place.atIds)};
  if (at > body.size()) return line("? cut off");
  ConstBytes rest = body.subspan(static_cast<std::size_t>(at));
  if (place.content == Content::chain) return chainLines(rest);
  std::string text;
  for (std::uint64_t i = 0; i < count; ++i) {
    if (rest.size() < place.stride) {
      return text + line(format("? and %llu more", static_cast<unsigned long long>(count - i)));
    }
    text += line(recordText(place.content, rest.first(place.stride)));
    rest = rest.subspan(place.stride);
  }
  return text;
}

/// The lines of every command in a message, as it was sent or as it was answered.
std::string messageLines(ConstBytes message, bool reply) {
  std::string text;
  if (message.size() < MessageHeader::size) return text;
  std::size_t at = MessageHeader::size;
  while (message.size() - at >= Envelope::size) {
    const ConstBytes envelope = message.subspan(at);
    const std::size_t room = envelope.size() - Envelope::size;
    const std::size_t length = std::min<std::size_t>(get32(envelope, Envelope::bodyLength), room);
    for (const Place& place : places) {
      if (place.command != get16(envelope, Envelope::command) || place.reply != reply) continue;
      if (reply && get32(envelope, Envelope::status) != 0) continue;
      try {
        text += lines(place, envelope.subspan(Envelope::size, length));
      } catch (const std::out_of_range&) {
        text += line("? cut off");
      }
    }
    at += Envelope::size + length;
  }
  return text;
}

}  // namespace

std::string decodeRecords(const JournalEntry& entry) {
  if (entry.device != Device::firewall || entry.request != 15) return "";
  const auto whole = [&entry](ByteVector bytes) {
    const std::uint64_t known = std::min<std::uint64_t>(entry.size, JournalEntry::keptLimit);
    if (bytes.size() < known) bytes.resize(static_cast<std::size_t>(known));
    return bytes;
  };
  std::string text = messageLines(whole(entry.sent), false);
  if (!entry.answered.empty()) text += messageLines(whole(entry.answered), true);
  return text;
}

}  // namespace TarnLab
