// Request 15 of the firewall device: a message, its header, and the envelopes of its commands.
#include "LabMessage.h"

#include <cerrno>

#include "LabCallerMemory.h"
#include "LabFamily.h"
#include "LabSelector.h"

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
    return format("%zu bytes after the last command", message.size() - at);
  }
  return "";
}

/// What comes before the answer of every command: a status.
std::uint32_t checkCommand(const CommandContext& context, const CommandKind& kind,
                           const Body& body) {
  const std::string title = format("command %u", kind.number);
  if (body.size() < kind.least) {
    return context.refuse(
        Status::badMessage,
        title + format(" with a body of %zu bytes, %zu needed", body.size(), kind.least));
  }
  if (const std::string fault = reservedFault(kind.request, body, title); !fault.empty()) {
    return context.refuse(Status::badMessage, fault);
  }
  if (kind.scope != CommandScope::host && context.target.match == SelectorMatch::none) {
    return context.refuse(Status::noFilter, title + " without a filter");
  }
  if (kind.scope == CommandScope::filter && context.target.match == SelectorMatch::sharedSets) {
    return context.refuse(Status::notSupported, title + " for shared address sets");
  }
  if (const std::string fault = nameFault(kind.request, body); !fault.empty()) {
    return context.refuse(Status::badMessage, fault);
  }
  return Status::ok;
}

std::uint32_t answerCommand(const CommandContext& context, std::uint16_t number, Body& body) {
  const CommandKind* kind = findCommand(number);
  if (kind == nullptr) {
    return context.refuse(Status::notSupported, format("command %u is not known", number));
  }
  try {
    const std::uint32_t status = checkCommand(context, *kind, body);
    return status != Status::ok ? status : kind->answer(context, body);
  } catch (const std::bad_alloc&) {
    return context.refuse(Status::noMemory, format("command %u: out of memory", number));
  } catch (const std::out_of_range& failure) {
    return context.refuse(Status::badMessage, format("command %u: %s", number, failure.what()));
  }
}

/// Reads the message that a block points to, with its header checked first, so that nothing is
/// copied for a wrong one. Returns 0 or an errno.
int readMessage(Request& request, ConstBytes block, ByteVector& message) {
  const std::uint32_t size = get32(block, atMessageSize);
  const std::uint64_t address = get64(block, atMessageAddress);
  request.entry.size = size;
  if (size < MessageHeader::size) {
    return request.refuse(EINVAL, format("message of %u bytes", size));
  }
  if (size > messageLimit) return request.refuse(E2BIG, format("message of %u bytes", size));
  std::byte header[MessageHeader::size];
  if (!readCaller(address, header)) return request.refuse(EFAULT, "message cannot be read");
  request.entry.sent = JournalEntry::kept(header);
  if (const std::string fault = headerFault(header, size); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  message.resize(size);
  if (!readCaller(address, message)) return request.refuse(EFAULT, "message cannot be read");
  request.entry.sent = JournalEntry::kept(message);
  return 0;
}

/// Answers every command in its turn, and writes back what each one has answered. False when that
/// cannot be written.
bool answerCommands(Request& request, const SelectedFilter& target, ByteVector& message,
                    const std::vector<std::size_t>& envelopes, std::uint64_t address) {
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
    Body body(part(Bytes(message), bodyAt, get32(message, at + Envelope::bodyLength)));
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
  return written;
}

int answerMessage(Request& request) {
  if (request.bodyLength != blockSize) {
    return request.refuse(
        EINVAL, format("block of %u bytes in place of %zu", request.bodyLength, blockSize));
  }
  std::byte block[blockSize];
  if (!readCaller(request.bodyAddress, block)) {
    return request.refuse(EFAULT, "block cannot be read");
  }
  const ConstBytes selectorBytes = part(ConstBytes(block), 0, Selector::size);
  request.entry.selector.assign(selectorBytes.begin(), selectorBytes.end());
  const Selector selector(selectorBytes);
  if (!selector.known()) return request.refuse(EINVAL, format("selector type %u", selector.type));
  if (selector.type == Selector::none && !isZero(selectorBytes)) {
    return request.refuse(EINVAL, "selector without a type is not zero");
  }

  ByteVector message;
  if (const int error = readMessage(request, block, message); error != 0) return error;
  std::vector<std::size_t> envelopes;
  if (const std::string fault = findEnvelopes(message, envelopes); !fault.empty()) {
    return request.refuse(EINVAL, fault);
  }
  const SelectedFilter target = request.host.select(selectorBytes);
  if (target.match == SelectorMatch::unknown) {
    return request.refuse(ENOENT, "there is no " + selector.toString());
  }
  const std::uint64_t address = get64(block, atMessageAddress);
  const bool written = answerCommands(request, target, message, envelopes, address);
  request.entry.answered = JournalEntry::kept(message);
  return written ? 0 : request.refuse(EFAULT, "message cannot be written");
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall, .number = 15, .title = "message", .whole = answerMessage}};

}  // namespace

constinit const Family messageFamily{.requests = requests};

}  // namespace TarnLab
