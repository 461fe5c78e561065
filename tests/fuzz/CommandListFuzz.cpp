// A list of commands, one by one or in a batch, over a channel of any kind to a host that answers
// with whatever it likes, or not at all. The list must keep to its order of sends, hand every
// command its own part of the reply and no byte more, end with the status of what failed, and give
// every message and descriptor back.
//
// The input: a byte for the kind of the channel, one for the settings, 16 bits for the length of
// the channel's memory, a byte for the commands, each of them a byte and what `newCommand` takes,
// then the host (see FuzzHost).

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "CommandMakers.h"
#include "Fuzz.h"
#include "FuzzHost.h"
#include "Sockets.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdEnvelope.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWCmdGetStatOfRuleSet.h"
#include "TarnFWCmdList.h"
#include "TarnFWException.h"
#include "TarnFWIOChannelFactory.h"
#include "TarnFWIOChannelIOCTL.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWLog.h"
#include "TarnFWSelector.h"
#include "TestCmd.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

constexpr unsigned int kMaxCommands = 64;

/// Settings of a run, bits of one byte.
constexpr unsigned int kBatch = 1;
constexpr unsigned int kListSelector = 2;
constexpr unsigned int kOwnSelectors = 4;
constexpr unsigned int kVerbose = 8;
constexpr unsigned int kSilent = 16;

class Input {
 public:
  explicit Input(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  unsigned int number(std::size_t size) {
    unsigned int value = 0;
    for (std::size_t i = 0; i < size && !bytes_.empty(); ++i, bytes_ = bytes_.subspan(1)) {
      value |= static_cast<unsigned int>(bytes_[0]) << (8 * i);
    }
    return value;
  }

  std::span<const std::uint8_t> rest() const { return bytes_; }

 private:
  std::span<const std::uint8_t> bytes_;
};

// --- What an evaluation may do

/// A command that has written its request.
struct Begun {
  unsigned int size;
  std::uint16_t number;
  bool written;
  std::vector<FWStatus_t> outcomes;  // of its sends, one by one
};

/// Watches one evaluation: the commands note what they are asked, the channel what it carries.
class Watch {
 public:
  Watch(unsigned int settings) : settings_(settings) {}

  bool batch() const { return (settings_ & kBatch) != 0; }

  /// A command writes its request. The one before it, when sent by itself, was done or skipped.
  void begin(const Begun& command) {
    if (!batch() && !begun_.empty()) {
      require(!begun_.back().outcomes.empty());
      const FWStatus_t last = begun_.back().outcomes.back();
      require(last == FW_STATUS_OK ||
              (last == FW_STATUS_PORT_NOT_FOUND && (settings_ & kListSelector) == 0));
    }
    begun_.push_back(command);
  }

  void beforeSend(const dvs_port_* port, const std::byte* message, unsigned int size) {
    require(std::find(broken_.begin(), broken_.end(), message) == broken_.end());
    require(!begun_.empty() && size >= kMsgHeaderSize);
    if (batch()) require((port != nullptr) == ((settings_ & kListSelector) != 0));
    const auto header = loadRecord<tarn_msg_hdr_>(message);
    require(header.bodyLength == size - kMsgHeaderSize);
    message_ = message;
    size_ = size;
    const std::size_t first = batch() ? sent_ : begun_.size() - 1;
    const Begun& newest = begun_.back();
    require(newest.outcomes.empty() || newest.outcomes.back() == FW_STATUS_BAD_STATE);
    require(newest.outcomes.size() < 3);
    if (newest.outcomes.empty()) {
      require(header.commandCount == begun_.size() - first);
      std::size_t offset = kMsgHeaderSize;
      for (std::size_t i = first; i < begun_.size(); ++i) {
        const Begun& command = begun_[i];
        require(offset + kEnvelopeSize + command.size <= size);
        const auto envelope = loadRecord<FWCmdEnvelope_>(message + offset);
        require(envelope.command == command.number && envelope.status == FW_STATUS_OK);
        require((envelope.bodyLength == command.size) == command.written);
        offset += kEnvelopeSize + command.size;
      }
      require(offset == size);
    }
    nextReply_ = kMsgHeaderSize;
    sent_ = begun_.size();
    std::memcpy(behind_, message + size, sizeof behind_);
  }

  void afterSend(std::byte* message, FWStatus_t status) {
    require(std::memcmp(behind_, message + size_, sizeof behind_) == 0);
    const auto header = loadRecord<tarn_msg_hdr_>(message);
    if (std::memcmp(header.signature, kMsgSignature, sizeof kMsgSignature) != 0 ||
        header.major != 1 || header.category != 1) {
      broken_.push_back(message);
    }
    if (status == FW_STATUS_OK && !batch()) {
      status = loadRecord<FWCmdEnvelope_>(message + kMsgHeaderSize).status;
      if (status == FW_STATUS_BAD_STATE) ++busy_;
    }
    begun_.back().outcomes.push_back(status);
  }

  /// A command is handed its part of the message that was sent last, in their order.
  void reads(const void* reply, unsigned int size) {
    require(!begun_.empty() && sent_ == begun_.size());
    require(begun_.back().outcomes.back() == FW_STATUS_OK);
    require(reply == message_ + nextReply_ + kEnvelopeSize);
    require(nextReply_ + kEnvelopeSize + size <= size_);
    nextReply_ += kEnvelopeSize + size;
    ++read_;
  }

  /// A reply that its command could not read.
  void refused(FWStatus_t status) { begun_.back().outcomes.back() = status; }

  /// Looks at the end. `sleeps` is how often the evaluation slept.
  void end(FWStatus_t status, std::size_t commands, unsigned int sleeps) const {
    require(sleeps == busy_);
    if (begun_.empty()) {
      require(commands == 0 ? status == FW_STATUS_OK : isOwn(status));
      return;
    }
    const std::vector<FWStatus_t>& outcomes = begun_.back().outcomes;
    if (status != FW_STATUS_OK) {
      require(isOwn(status) || (!outcomes.empty() && status == outcomes.back()));
      return;
    }
    require(begun_.size() == commands && sent_ == commands);
    require(!outcomes.empty() && outcomes.back() == FW_STATUS_OK);
    if (batch()) require(read_ == commands && nextReply_ == size_);
  }

  /// A message whose header is broken is not freed, which is known and kept: with its header mended
  /// it is still there to be given back.
  void giveBack(CTarnFWLibHandle& library) const {
    for (std::byte* message : broken_) {
      tarn_msg_hdr_ header{};
      std::memcpy(header.signature, kMsgSignature, sizeof kMsgSignature);
      header.major = 1;
      header.category = 1;
      storeRecord(message, header);
      require(library.releaseCommandBuffer(message + kMsgHeaderSize) == FW_STATUS_OK);
    }
  }

 private:
  /// What an evaluation gives without a failing send: no memory or a message that was not to be
  /// sent, a size that no message holds, and a buffer that could not be used again.
  bool isOwn(FWStatus_t status) const {
    return status == FW_STATUS_OUT_OF_MEMORY || status == FW_STATUS_INTEGER_TOO_LARGE ||
           (batch() && status == FW_STATUS_INVALID_ARGUMENT && !broken_.empty());
  }

  unsigned int settings_;
  std::vector<Begun> begun_;
  std::vector<std::byte*> broken_;
  const std::byte* message_ = nullptr;
  unsigned int size_ = 0;
  std::size_t sent_ = 0;  // commands, up to the last send
  std::size_t nextReply_ = 0;
  std::size_t read_ = 0;
  unsigned int busy_ = 0;
  std::byte behind_[kMsgSlack]{};
};

class WatchedCmd final : public CTarnFWCmd {
 public:
  WatchedCmd(Watch& watch, CommandPtr command, const dvs_port_* port)
      : CTarnFWCmd(port), watch_(watch), command_(std::move(command)) {}

  unsigned int getMsgSize() const override { return command_->getMsgSize(); }
  int getType() const override { return command_->getType(); }
  std::string toString() const override { return command_->toString(); }
  std::uint16_t getCommand() const override { return command_->getCommand(); }

  bool writeCmdBody(void* body, unsigned int room, unsigned int* written,
                    unsigned int arg) override {
    const bool result = command_->writeCmdBody(body, room, written, arg);
    watch_.begin({getMsgSize(), getCommand(), result && *written == getMsgSize(), {}});
    return result;
  }

  void checkCmdReply(const void* reply, unsigned int size) override {
    require(size == getMsgSize());
    watch_.reads(reply, size);
    // In memory of its own, so that reading on after it is seen.
    const auto* bytes = static_cast<const std::byte*>(reply);
    const std::vector<std::byte> copy(bytes, bytes + size);
    try {
      command_->checkCmdReply(copy.data(), size);
    } catch (const CTarnFWException& e) {
      watch_.refused(static_cast<FWStatus_t>(e.retcode()));
      throw;
    }
  }

 private:
  Watch& watch_;
  CommandPtr command_;
};

// --- Channels

/// The host at the other end of a generic channel.
struct GenericHost {
  FuzzHost& host;
  int users = 0;
};

FWStatus_t openGeneric(void* argument, void** context) {
  ++static_cast<GenericHost*>(argument)->users;
  *context = argument;
  return FW_STATUS_OK;
}

void closeGeneric(void* context) { --static_cast<GenericHost*>(context)->users; }

FWStatus_t askGeneric(void* context, void* message, unsigned int size, void*) {
  auto* bytes = static_cast<std::uint8_t*>(message);
  return static_cast<FWStatus_t>(
      static_cast<GenericHost*>(context)->host.answer({bytes, std::size_t{size}}));
}

enum Kind : unsigned int { kGeneric, kDevice, kSocket, kFile, kMemory, kKinds };

struct ChannelArguments {
  Kind kind;
  GenericHost* generic;
  std::vector<std::uint8_t>* memory;
};

std::unique_ptr<CTarnFWIOChannel> newChannel(const ChannelArguments& arguments) {
  static constexpr FWLibGenericIO_ kTable = {openGeneric, closeGeneric, askGeneric, nullptr};
  switch (arguments.kind) {
    case kDevice:
      return std::make_unique<CTarnFWIOChannelIOCTL>();
    case kSocket: {
      const char* items[] = {"FWIOAddress", "127.0.0.1", "FWIOPort", "7"};
      return create_io_channel(FW_IO_SOCKET, 4, items);
    }
    case kFile: {
      const char* items[] = {"FWIOFileName", "messages"};
      return create_io_channel(FW_IO_FILE, 2, items);
    }
    case kMemory: {
      const auto length = static_cast<unsigned int>(arguments.memory->size());
      const char* items[] = {"FWIOMemory", reinterpret_cast<char*>(arguments.memory->data()),
                             "FWIOLength", reinterpret_cast<const char*>(&length)};
      return create_io_channel(FW_IO_MEMORY, 4, items);
    }
    default: {
      const char* items[] = {"FWIOGenericIO", reinterpret_cast<const char*>(&kTable),
                             "FWIOGenericIOInitArg", reinterpret_cast<char*>(arguments.generic)};
      return create_io_channel(FW_IO_GENERIC, 4, items);
    }
  }
}

class WatchedChannel final : public CTarnFWIOChannel {
 public:
  WatchedChannel(Watch& watch, Kind kind, std::unique_ptr<CTarnFWIOChannel> channel)
      : watch_(watch), kind_(kind), channel_(std::move(channel)) {}

  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override {
    auto* const bytes = static_cast<std::byte*>(message);
    watch_.beforeSend(port, bytes, size);
    std::vector<std::byte> before;
    if (kind_ == kFile || kind_ == kMemory) before.assign(bytes, bytes + size);
    FWStatus_t status = FW_STATUS_OK;
    try {
      status = channel_->sendIOCTL(port, message, size, context);
    } catch (const CTarnFWException& e) {
      require(e.retcode() != FW_STATUS_OK);
      watch_.afterSend(bytes, static_cast<FWStatus_t>(e.retcode()));
      throw;
    }
    require(status == FW_STATUS_OK || kind_ == kSocket);
    // These bring no reply.
    require(std::equal(before.begin(), before.end(), bytes));
    // What the log says of the reply: a line for every command that it claims to hold.
    if (loadRecord<tarn_msg_hdr_>(bytes).commandCount <= kMaxCommands) {
      validateMessage(bytes, size);
    }
    watch_.afterSend(bytes, status);
    return status;
  }

 private:
  Watch& watch_;
  Kind kind_;
  std::unique_ptr<CTarnFWIOChannel> channel_;
};

// --- Commands

template <typename Class, auto... arguments>
CommandPtr ofRuleSet() {
  return std::make_unique<Class>(nullptr, ruleSet("web"), arguments...);
}

template <typename Class, auto... arguments>
CommandPtr ofAddrSet() {
  return std::make_unique<Class>(nullptr, addrSet("web"), arguments...);
}

CommandPtr createContainer() {
  auto command =
      std::make_unique<CTarnFWCmdCreateContainer>(nullptr, "box", FW_CONTAINER_ATTR_PROFILE);
  command->addElement(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_TLS_VERSION, std::string("TLS_V12")));
  return command;
}

constexpr CommandPtr (*kMakers[])() = {
    plain<CTarnFWCmdGetRuleSetCount>,
    plain<CTarnFWCmdGetRuleSetList, 3u, 0u>,
    plain<CTarnFWCmdGetRootRuleSet>,
    ofRuleSet<CTarnFWCmdGetRuleSetInfo>,
    ofRuleSet<CTarnFWCmdGetRuleOfRuleSet, 2u, 0u, 0u>,
    ofRuleSet<CTarnFWCmdGetStatOfRuleSet, 3u, 0u, 0u>,
    ofAddrSet<CTarnFWCmdGetAddrSetTypeAndSize>,
    ofAddrSet<CTarnFWCmdGetAddressOfAddrSet, 3u, 0u>,
    plain<CTarnFWCmdGetAddrSetList, FW_ADDRSET_ANY, 3u, 0u>,
    plain<CTarnFWCmdDestroyAllRuleSet>,
    [] {
      return CommandPtr(std::make_unique<CTarnFWCmdGetElementsOfContainer>(
          nullptr, "box", FW_CONTAINER_ATTR_PROFILE, 3u, 200u));
    },
    createContainer,
};

/// A size of more is taken modulo this, unless no message can have it.
constexpr unsigned int kMostBody = 1 << 20;
constexpr unsigned int kNoBody = 0xffffff00;

/// One of the above, or a command of any number, 16 bits, and any size, 32 bits. A byte of 1 after
/// them leaves its body unwritten, one of 2 makes it claim a byte less, one of 3 lets it refuse its
/// reply.
CommandPtr newCommand(Input& input) {
  const unsigned int chosen = input.number(1) % (std::size(kMakers) + 1);
  if (chosen < std::size(kMakers)) return kMakers[chosen]();
  const auto number = static_cast<std::uint16_t>(input.number(2));
  unsigned int size = input.number(4);
  if (size >= kMostBody && size < kNoBody) size %= kMostBody;
  auto command = std::make_unique<TestCmd>(number, size);
  const unsigned int broken = input.number(1);
  command->refuse = broken == 1;
  if (broken == 2 && command->getMsgSize() != 0) command->shortBy = 1;
  if (broken == 3) command->onReply = [] { throw CInsufficientMsgBufException(2, 1); };
  return command;
}

__attribute__((format(printf, 2, 3))) int print(void*, const char* format, ...) {
  char line[1024];
  va_list arguments;
  va_start(arguments, format);
  const int result = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  return result;
}

FWStatus_t evaluate(CTarnFWCmdList& list, Watch& watch, CTarnFWLibHandle& library,
                    const dvs_port_* port) {
  try {
    return watch.batch() ? list.evalBatchCmd(library, port, nullptr)
                         : list.evalSingleCmd(library, port, nullptr);
  } catch (const CTarnFWException& e) {
    require(watch.batch());
    return static_cast<FWStatus_t>(e.retcode());
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  startAnew();
  Input input({data, size});
  const auto kind = static_cast<Kind>(input.number(1) % kKinds);
  const unsigned int settings = input.number(1);
  if ((settings & kVerbose) != 0) FW_SetLibVerboseLevel(FW_COMPONENT_ALL, 3);
  if ((settings & kSilent) == 0) FW_SetLibPrettyPrinting(print, nullptr);
  std::vector<std::uint8_t> memory(std::max(input.number(2), 1u));
  const unsigned int commands = input.number(1) % (kMaxCommands + 1);

  dvs_port_ selector{};
  std::memcpy(selector.identifier, "nic", 3);
  selector.type = FW_SELECTOR_FILTER;
  Watch watch(settings);
  CTarnFWCmdList list;
  for (unsigned int i = 0; i < commands; ++i) {
    list.addCmd(std::make_unique<WatchedCmd>(
        watch, newCommand(input), (settings & kOwnSelectors) != 0 ? &selector : nullptr));
  }

  const int free = freeDescriptor();
  {
    FuzzHost host(input.rest(), FuzzHost::Kind::kHostile);
    GenericHost generic{host};
    const auto library = CTarnFWLibHandle::GetInstance();
    bool made = false;
    try {
      library->setIOChannel(
          std::make_unique<WatchedChannel>(watch, kind, newChannel({kind, &generic, &memory})));
      made = true;
    } catch (const CTarnFWException& e) {
      require(e.retcode() == FW_STATUS_CANNOT_LOAD_FILE && (kind == kDevice || kind == kFile));
    } catch (const Sockets::SocketException&) {
      require(kind == kSocket);
    }
    require(generic.users == (kind == kGeneric ? 1 : 0));
    if (made) {
      const FWStatus_t status =
          evaluate(list, watch, *library, (settings & kListSelector) != 0 ? &selector : nullptr);
      watch.end(status, list.size(), host.slept());
      watch.giveBack(*library);
    }
    library->setIOChannel(nullptr);
    require(generic.users == 0);
  }
  require(freeDescriptor() == free);
  return 0;
}
