// Request 15 of the firewall device: a message, its header, and the envelopes of its commands.
#include "LabMessage.h"

#include <cerrno>

#include "LabCallerMemory.h"
#include "LabCommand.h"
#include "LabRequest.h"
#include "LabSelector.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The block that the frame points to, 112 bytes.
constexpr std::size_t blockSize = 112;
constexpr std::size_t atMessageSize = 100, atMessageAddress = 104;

// A message above this is refused rather than copied.
constexpr std::uint32_t messageLimit = std::uint32_t{3} << 30;

/// What is wrong with the header of a message of so many bytes; empty when nothing is.
std::string headerFault(ConstBytes header, std::uint32_t messageSize) {
  if (getText(header, MessageHeader::signature, 4) != "TARN") return "bad signature";
  if (get8(header, MessageHeader::major) != 1 || get8(header, MessageHeader::minor) != 1) {
    return format("version %u.%u", get8(header, MessageHeader::major),
                  get8(header, MessageHeader::minor));
  }
  // A message that the kernel was too busy for comes back and is sent again as it stands.
  if (get8(header, MessageHeader::type) > 1) {
    return format("message type %u", get8(header, MessageHeader::type));
  }
  if (get8(header, MessageHeader::category) != 1) {
    return format("category %u", get8(header, MessageHeader::category));
  }
  if (get16(header, MessageHeader::padding) != 0) return "padding of the header is not zero";
  if (get32(header, MessageHeader::bodyLength) != messageSize - MessageHeader::size) {
    return format("body length %u in a message of %u bytes",
                  get32(header, MessageHeader::bodyLength), messageSize);
  }
  if (get16(header, MessageHeader::count) == 0) return "message without a command";
  return "";
}

/// Finds the commands: the offset of each envelope. Returns what is wrong, or the empty text.
std::string findEnvelopes(ConstBytes message, std::vector<std::size_t>& offsets) {
  const bool resent = get8(message, MessageHeader::type) != 0;
  const unsigned count = get16(message, MessageHeader::count);
  std::size_t at = MessageHeader::size;
  for (unsigned i = 0; i < count; ++i) {
    if (message.size() - at < Envelope::size) {
      return format("%u commands counted, %u found", count, i);
    }
    const ConstBytes envelope = part(message, at, Envelope::size);
    const std::uint32_t length = get32(envelope, Envelope::bodyLength);
    if (length > message.size() - at - Envelope::size) {
      return format("command %u with a body of %u bytes, %zu are left",
                    get16(envelope, Envelope::command), length,
                    message.size() - at - Envelope::size);
    }
    if (!resent && get32(envelope, Envelope::status) != 0) {
      return format("command %u sent with status %u", get16(envelope, Envelope::command),
                    get32(envelope, Envelope::status));
    }
    offsets.push_back(at);
    at += Envelope::size + length;
  }
  if (at != message.size()) {
    return format("%zu bytes behind the last command", message.size() - at);
  }
  return "";
}

std::uint32_t answerCommand(const CommandContext& context, std::uint16_t number,
                            CommandBody& body) {
  const CommandKind* kind = findCommand(number);
  if (kind == nullptr) {
    return context.refuse(Status::notSupported, format("command %u is not known", number));
  }
  if (body.size() < kind->least) {
    return context.refuse(Status::badMessage,
                          format("command %u with a body of %zu bytes, %zu needed", number,
                                 body.size(), kind->least));
  }
  const ConstBytes behind = body.bytes().subspan(std::min(kind->zeros.at, body.size()));
  if (!isZero(behind.first(std::min(kind->zeros.size, behind.size())))) {
    return context.refuse(Status::badMessage, format("command %u with reserved bytes set", number));
  }
  if (kind->scope != CommandScope::host && context.target.match == SelectorMatch::none) {
    return context.refuse(Status::noFilter, format("command %u without a filter", number));
  }
  if (kind->scope == CommandScope::filter && context.target.match == SelectorMatch::sharedSets) {
    return context.refuse(Status::notSupported,
                          format("command %u for shared address sets", number));
  }
  try {
    return kind->answer(context, body);
  } catch (const std::bad_alloc&) {
    return context.refuse(Status::noMemory, format("command %u: out of memory", number));
  } catch (const std::out_of_range& failure) {
    return context.refuse(Status::badMessage, format("command %u: %s", number, failure.what()));
  }
}

}  // namespace

int answerMessage(Request& request) {
  if (request.bodyLength != blockSize) {
    return request.refuse(
        EINVAL, format("block of %u bytes in place of %zu", request.bodyLength, blockSize));
  }
  std::byte block[blockSize];
  if (!readCaller(request.bodyAddress, block))
    return request.refuse(EFAULT, "block cannot be read");
  const ConstBytes selectorBytes = part(ConstBytes(block), 0, Selector::size);
  request.entry.selector.assign(selectorBytes.begin(), selectorBytes.end());
  const Selector selector(selectorBytes);
  if (!selector.known()) return request.refuse(EINVAL, format("selector type %u", selector.type));
  if (selector.type == Selector::none && !isZero(selectorBytes)) {
    return request.refuse(EINVAL, "selector without a type is not zero");
  }

  const std::uint32_t size = get32(block, atMessageSize);
  const std::uint64_t address = get64(block, atMessageAddress);
  request.entry.size = size;
  if (size < MessageHeader::size)
    return request.refuse(EINVAL, format("message of %u bytes", size));
  if (size > messageLimit) return request.refuse(E2BIG, format("message of %u bytes", size));
  std::byte header[MessageHeader::size];
  if (!readCaller(address, header)) return request.refuse(EFAULT, "message cannot be read");
  request.entry.sent = JournalEntry::kept(header);
  if (const std::string fault = headerFault(header, size); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  ByteVector message(size);
  if (!readCaller(address, message)) return request.refuse(EFAULT, "message cannot be read");
  request.entry.sent = JournalEntry::kept(message);
  std::vector<std::size_t> envelopes;
  if (const std::string fault = findEnvelopes(message, envelopes); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  const SelectedFilter target = request.host.select(selectorBytes);
  if (target.match == SelectorMatch::unknown) {
    return request.refuse(ENOENT, "there is no " + selector.toString());
  }

  std::vector<std::uint16_t> numbers;
  for (const std::size_t at : envelopes) {
    numbers.push_back(get16(message, at + Envelope::command));
  }
  const auto ordered = request.faults.takeStatus(numbers);
  if (ordered) request.entry.note = "ordered fault";

  put8(message, MessageHeader::type, 1);
  bool written =
      writeCaller(address + MessageHeader::type, part(ConstBytes(message), MessageHeader::type, 1));
  const CommandContext context{request.store, request.host, target, request.entry};
  for (std::size_t i = 0; i < envelopes.size(); ++i) {
    const std::size_t at = envelopes[i];
    const std::size_t bodyAt = at + Envelope::size;
    CommandBody body(part(Bytes(message), bodyAt, get32(message, at + Envelope::bodyLength)));
    const std::uint32_t status = ordered ? *ordered : answerCommand(context, numbers[i], body);
    put32(message, at + Envelope::status, status);
    written = written && writeCaller(address + at + Envelope::status,
                                     part(ConstBytes(message), at + Envelope::status, 4));
    if (status == Status::ok && body.writtenSize() > 0) {
      const std::size_t from = bodyAt + body.writtenAt();
      written = written &&
                writeCaller(address + from, part(ConstBytes(message), from, body.writtenSize()));
    }
  }
  request.entry.answered = JournalEntry::kept(message);
  return written ? 0 : request.refuse(EFAULT, "message cannot be written");
}

const CommandKind* findCommand(std::uint16_t number) {
  for (const auto family : {ruleSetCommands(), addrSetCommands()}) {
    for (const CommandKind& kind : family) {
      if (kind.number == number) return &kind;
    }
  }
  return nullptr;
}

}  // namespace TarnLab
