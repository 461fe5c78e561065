// What the host's process for deep inspection counts and knows, by its own socket.

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>

#include "HandlerForm.h"
#include "Handlers.h"
#include "LocalSocket.h"
#include "Records.h"
#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

constexpr char kInspectionSocket[] = "/var/run/kelpco/vdpi_stats_channel";

/// Every number on the socket is one of these.
using Word = host32;

enum DpiCommand : std::uint32_t {
  kStats = 65,
  kEnableTracing = 66,
  kDisableTracing = 67,
  kThreadStatus = 68,
  kDumpFqdnConfig = 69,
  kLoadFqdnConfig = 70,
  kMatchFqdn = 71,
  kNone = 0xffffffff,  // sent as it is when no option was given
};

/// What an option asks for. With a title there is a reply.
struct DpiOption {
  DpiCommand command;
  const char* title = nullptr;
};

/// What is said when a part of a request can't be sent. Scripts know the texts, with "stats" for
/// every command but the query.
struct RequestTexts {
  const char* length;
  const char* command;
};
constexpr RequestTexts kStatsRequest = {
    "ERROR: failed to send length of get stats command: %s\n",
    "ERROR: failed to send get stats command: %s\n",
};
constexpr RequestTexts kQueryRequest = {
    "ERROR: failed to send length of command: %s\n",
    "ERROR: failed to send command: %s\n",
};

/// What is said about a reply, without the end of a line.
struct ReplyTexts {
  const char* length;
  const char* memory;
  const char* bytes;
};
constexpr ReplyTexts kStatsReply = {
    "ERROR: Failed to receive the length of dpi stats",
    "ERROR: Failed to allocate buffer to recv dpi stats",
    "ERROR: failed to get stats from vdpi",
};
constexpr ReplyTexts kQueryReply = {
    "ERROR: Failed to receive the length of response",
    "ERROR: Failed to allocate buffer to recv response",
    "ERROR: failed to get response from vdpi",
};

/// A longer reply than any that the process has is taken for a length that is wrong.
constexpr std::uint32_t kMostReply = 64 << 20;

constexpr std::size_t kMostText = 1023;

/// Prints a text with the reason why a call failed; false, so that it ends a chain of calls.
bool failed(const char* text) {
  printWith(stderr, text, std::strerror(errno));
  return false;
}

bool sendWord(LocalSocket& process, std::uint32_t word, const char* failure) {
  const Word bytes(word);
  return process.send(&bytes, sizeof bytes) || failed(failure);
}

/// Connects and sends the command after its length.
bool request(LocalSocket& process, std::uint32_t command, const RequestTexts& texts) {
  if (!process.open()) return failed("ERROR: failed to open trace ctrl socket: %s\n");
  if (!process.connect(kInspectionSocket))
    return failed("ERROR: failed to connect to vdpi stats socket: %s\n");
  return sendWord(process, sizeof(Word), texts.length) && sendWord(process, command, texts.command);
}

/// Fills the buffer. The first end of the stream is passed over, a second one in a row is a
/// failure, as is any when `toleratesEnd` is false.
bool fill(LocalSocket& process, void* buffer, std::size_t size, bool toleratesEnd) {
  auto* left = static_cast<char*>(buffer);
  bool ended = !toleratesEnd;
  while (size != 0) {
    const long received = process.receive(left, size);
    if (received < 0) return false;
    if (received == 0) {
      if (std::exchange(ended, true)) return false;
      continue;
    }
    ended = !toleratesEnd;
    left += received;
    size -= static_cast<std::size_t>(received);
  }
  return true;
}

/// Prints the reply's text, which ends at its first NUL or with its last byte.
void showReply(LocalSocket& process, const ReplyTexts& texts) {
  Word length;
  if (!fill(process, &length, sizeof length, false)) {
    error("%s", texts.length);
    return;
  }
  Records<char> text;
  if (length <= kMostReply) text = makeRecords<char>(std::size_t{length} + 1);
  if (text == nullptr)
    error("%s", texts.memory);
  else if (!fill(process, text.get(), length, true))
    error("%s", texts.bytes);
  else
    std::fputs(text.get(), stdout);
}

constexpr char kUsage[] = "Get VDPI info.\n\n" USAGE_OPTIONS
                          "    -s          : stats\n"
                          "    -t          : thread status\n"
                          "    -e          : enable tracing\n"
                          "    -d          : disable tracing\n"
                          "    -c          : dump FQDN config\n"
                          "    -l          : load FQDN config\n"
                          "    -m <string> : get uuids matching FQDN\n" USAGE_HELP;

/// What the options ask for; the last of them decides the command.
struct Inspection {
  std::uint32_t command = kNone;
  const char* title = nullptr;  // of -s or -t, whichever was the last
  const char* text = nullptr;   // of -m

  int take(const DpiOption& option) {
    command = option.command;
    if (option.title != nullptr) title = option.title;
    return kGoOn;
  }

  int takeText(const char* value) {
    if (std::strlen(value) > kMostText) {
      std::puts("length of input string shoudl be less than 1024");
      return 1;
    }
    text = value;
    return kGoOn;
  }

  int query() const {
    std::puts("\n");  // a title without a text
    LocalSocket process;
    if (!request(process, kMatchFqdn, kQueryRequest)) return 1;
    const std::size_t size = std::strlen(text) + 1;
    if (!sendWord(process, static_cast<std::uint32_t>(size),
                  "ERROR: failed to send length of input string: %s\n"))
      return 1;
    if (!process.send(text, size)) return failed("ERROR: failed to send input string: %s\n"), 1;
    showReply(process, kQueryReply);
    return 0;
  }

  int show() const {
    std::printf("\n%s\n", title);
    LocalSocket process;
    if (!request(process, command, kStatsRequest)) return 1;
    showReply(process, kStatsReply);
    return 0;
  }

  /// Nobody learns by the status whether it arrived.
  int tell() const {
    LocalSocket process;
    request(process, command, kStatsRequest);
    return 0;
  }

  int run() const {
    if (text != nullptr) return query();
    return title != nullptr ? show() : tell();
  }
};

}  // namespace

int GetVDPIInfo(const char* cmd, int argc, char** argv) {
  Inspection inspection;
  const auto with = [&inspection](const DpiOption& option) {
    return [&inspection, option](const char*, const Target&) { return inspection.take(option); };
  };
  return onHost(cmd, argc, argv,
                {.usage = kUsage,
                 .letters = ":hsedtclm:",
                 .own = {{'s', with({kStats, "vDPI runtime stats"})},
                         {'t', with({kThreadStatus, "vDPI Thread Status"})},
                         {'e', with({kEnableTracing})},
                         {'d', with({kDisableTracing})},
                         {'c', with({kDumpFqdnConfig})},
                         {'l', with({kLoadFqdnConfig})},
                         {'m', [&](const char* value,
                                   const Target&) { return inspection.takeText(value); }}}},
                [&](const Target&) { return inspection.run(); });
}
