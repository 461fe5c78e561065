// Traces of the host's daemon, and of the components of the kernel's firewall.

#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>

#include "HandlerForm.h"
#include "Handlers.h"
#include "LocalSocket.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

constexpr char kTraceSocket[] = "/var/run/kelpco/hulld_trace";

/// The daemon looks for it from time to time, and starts to trace when it is there.
constexpr char kTraceMarker[] = "/etc/kelpco/hulld/enable_trace";

constexpr char kBadComponent[] = "ERROR: bad component id %s\n";
constexpr char kMissingCommand[] = "ERROR: missing trace command\n";

// --- Commands of a trace

/// The texts stand in the row: their addresses would be moved at each start of the program.
struct TraceCommand {
  char letter;
  char name[24];
  char text[48];
};

constexpr char kNoCommand = '\0';

constexpr TraceCommand kHelp = {'?', "help", "this help message"};

/// Texts as scripts know them, "continer" too.
constexpr TraceCommand kHulldCommands[] = {
    {'A', "status", "tracing status"},
    {'B', "exit", "stop tracing"},
    {'C', "log", "set process log level"},
    {'D', "lib-log", "set library log level"},
    {'E', "save-rule", "save binary ruleset config"},
    {'F', "dump-rule", "dump ruleset config"},
    {'G', "save-spoofguard", "save binary spoofguard config"},
    {'H', "dump-spoofguard", "dump spoofguard config"},
    {'I', "save-filter", "save binary filter config"},
    {'J', "dump-filter", "dump filter config"},
    {'K', "save-flow", "save flow config"},
    {'L', "dump-flow", "dump flow config"},
    {'M', "save-threshold", "save threshold config"},
    {'N', "dump-threshold", "dump threshold config"},
    {'O', "save-msg", "save manager message"},
    {'P', "tune-l2rule", "tune l2 rule optimization"},
    {'Q', "tune-l3rule", "tune l3 rule optimization"},
    {'R', "save-gconfig", "save global config"},
    {'S', "dump-gconfig", "dump global config"},
    {'T', "tune-scontainer", "tune shared addrset"},
    {'U', "dump-cservice", "dump container service"},
    {'V', "dump-spset", "dump service profile set"},
    {'W', "dump-siset", "dump service instance set"},
    {'X', "dump-appmon", "dump app mon config"},
    {'Y', "dump-montype", "dump filter monitor types"},
    {'Z', "dump-timeout", "dump timeout config"},
    {'[', "clean-buffer", "toggle clean protobuf"},
    {'\\', "addrset-timeout", "set addrset aggregation timeout"},
    {']', "dump-clienttopics", "dump client topics"},
    {'^', "dump-ploysyncstate", "dump ploy sync state"},
    {'_', "vm-cont-query", "vm continer query"},
    {'`', "dump-thread", "dump threads info"},
    {'a', "addrset-interval", "set addrset aggregation interval"},
};
static_assert(std::size(kHulldCommands) == 33);

enum HulldLetter : char { kHulldStatus = 'A', kHulldExit = 'B', kHulldThreshold = 'M' };

constexpr TraceCommand kTarnCommands[] = {
    {'A', "status", "tracing status"},
    {'B', "comp-log", "set component log level"},
};

enum TarnLetter : char { kTarnStatus = 'A', kTarnLog = 'B' };

void listCommands(std::span<const TraceCommand> commands) {
  const auto line = [](const TraceCommand& command) {
    std::printf("  %15s (%c): %s\n", command.name, command.letter, command.text);
  };
  std::puts("Available trace commands are:");
  std::for_each(commands.begin(), commands.end(), line);
  line(kHelp);
}

/// The letter of the command that a text names, be it by its name or by its letter. Otherwise lists
/// the commands, after an error line unless the list was asked for, and returns `kNoCommand`.
char takeCommand(std::span<const TraceCommand> commands, const char* text) {
  const auto names = [text](const TraceCommand& command) {
    return (text[0] == command.letter && text[1] == '\0') || strcasecmp(text, command.name) == 0;
  };
  const auto found = std::find_if(commands.begin(), commands.end(), names);
  if (found != commands.end()) return found->letter;
  if (std::strcmp(text, "?") != 0 && std::strcmp(text, kHelp.name) != 0)
    error("ERROR: invalid trace command `%s'.\n", text);
  listCommands(commands);
  return kNoCommand;
}

/// Takes `-v`: one step without a value, otherwise the value. Returns `kGoOn`; or 1 after an error
/// line.
int takeLevel(const char* text, long* level) {
  if (text == nullptr)
    ++*level;
  else if (!Str2Long(text, 10, level) || *level < 0)
    return error("ERROR: invalid log level %s\n", text);
  return *level <= 9 ? kGoOn : error("ERROR: invalid log level %ld\n", *level);
}

/// Ends a handler that has listed its commands, or that got none.
int needCommand(bool listed, char command, const Target& target) {
  if (listed) return 1;
  return command != kNoCommand ? kGoOn : target.usage.error("%s", kMissingCommand);
}

// --- The daemon

/// What the daemon is sent.
struct TraceMessage_ {
  char mark[2];         // +0  "tc"
  char command;         // +2  its letter
  std::uint8_t format;  // +3  10
  char argument[256];   // +4  a path, or
                        //     +0  a level as its digit, a choice, a kind of threshold, or a
                        //         timeout in 32 bits
                        //     +1  component
                        //     +4  a threshold in 32 bits
};
static_assert(sizeof(TraceMessage_) == 260 && alignof(TraceMessage_) == 1);
static_assert(offsetof(TraceMessage_, command) == 2 && offsetof(TraceMessage_, format) == 3 &&
              offsetof(TraceMessage_, argument) == 4);

constexpr std::size_t kArgumentComponent = 1;
constexpr std::size_t kArgumentThreshold = 4;
constexpr unsigned long kMostTimeout = 30;
constexpr std::size_t kMostPath = sizeof TraceMessage_::argument - 1;

constexpr char kHulldUsage[] =
    "Trace hulld process.\n\n" USAGE_OPTIONS
    "    -e          : enable tracing\n"
    "    -q          : disable tracing\n"
    "    -s          : tracing status\n"
    "    -c <string> : execute a trace command\n"
    "    -o          : turn on a trace feature\n"
    "    -v<number>  : verbose log level for log commands\n" USAGE_COMPONENT
    "    -t <number> : addrset update timeout\n" USAGE_HELP;

/// The message as the options make it, in their order: what an option means depends on the command
/// that stands before it, and where two options write the same bytes the later one stays.
class HulldTrace {
 public:
  int takeCommand(const char* text) {
    message_.command = ::takeCommand(kHulldCommands, text);
    listed_ = listed_ || message_.command == kNoCommand;
    return kGoOn;
  }

  int setCommand(HulldLetter letter) {
    message_.command = letter;
    return kGoOn;
  }

  int turnOn() {
    message_.argument[0] = 1;
    return kGoOn;
  }

  int takeLevel(const char* text) {
    if (message_.command == kHulldThreshold) return takeThreshold(text);
    if (const int failed = ::takeLevel(text, &level_); failed != kGoOn) return failed;
    message_.argument[0] = static_cast<char>('0' + level_);
    return kGoOn;
  }

  int takeComponent(const char* text) {
    unsigned int component = 0;
    if (!ParseCompString(text, &component, hulld_comp_name, kHulldComponents))
      return error(kBadComponent, text);
    message_.argument[kArgumentComponent] = static_cast<char>(component);
    return kGoOn;
  }

  int takeTimeout(const char* text) {
    const bool isKind = message_.command == kHulldThreshold;
    long number = 0;
    if (!str2Limited(text, 10, isKind ? 256 : kMostTimeout + 1, &number))
      return error("ERROR: timeout should be between 0 and %d second(s)\n",
                   static_cast<int>(kMostTimeout));
    if (isKind)
      message_.argument[0] = static_cast<char>(number);
    else
      storeWord(0, number);
    return kGoOn;
  }

  int takePath(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > kMostPath)
      return error("ERROR: Failed: Input file path is longer than %d\n",
                   static_cast<int>(kMostPath));
    std::memset(message_.argument, 0, sizeof message_.argument);
    std::memcpy(message_.argument, text, length);
    return kGoOn;
  }

  /// Runs after the options.
  int check(const Target& target) const { return needCommand(listed_, message_.command, target); }

  const TraceMessage_& message() const { return message_; }

 private:
  int takeThreshold(const char* text) {
    long number = 0;
    if (text == nullptr || !str2Limited(text, 10, 1ul << 32, &number))
      return error("ERROR: Threshold value not provided.\n");
    storeWord(kArgumentThreshold, number);
    return kGoOn;
  }

  void storeWord(std::size_t offset, long number) {
    storeRecord(message_.argument + offset, host32(static_cast<std::uint32_t>(number)));
  }

  TraceMessage_ message_{{'t', 'c'}, kNoCommand, 10, {}};
  long level_ = 0;
  bool listed_ = false;
};

int enableTrace() {
  const int marker = open(kTraceMarker, O_WRONLY | O_CREAT | O_EXCL, 0644);
  if (marker == -1) return error("ERROR: failed to enable trace: %s\n", std::strerror(errno));
  close(marker);
  std::puts("hulld trace is scheduled to start shortly. please check hulld.log to confirm.");
  return 0;
}

/// Writes to standard output at once, past its buffer, which is empty: for whoever watches a daemon
/// that takes its time. Returns how much was written.
std::size_t writeOut(const char* bytes, std::size_t size) {
  std::size_t written = 0;
  while (written < size) {
    const ssize_t more = write(STDOUT_FILENO, bytes + written, size - written);
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    written += static_cast<std::size_t>(more);
  }
  return written;
}

/// Copies what the daemon says. Scripts do not see by the status that it was cut.
int copyReply(LocalSocket& daemon) {
  char piece[1024];
  for (;;) {
    const long size = daemon.receive(piece, sizeof piece);
    if (size == 0) return 0;
    if (size < 0) {
      error("ERROR: failed to receive data: %s\n", std::strerror(errno));
      return 0;
    }
    const std::size_t written = writeOut(piece, static_cast<std::size_t>(size));
    if (written < static_cast<std::size_t>(size)) {
      error("ERROR: failed to print data: %d\n", static_cast<int>(written));
      return 0;
    }
  }
}

int runTrace(const TraceMessage_& message) {
  LocalSocket daemon;
  const auto failed = [](const char* text) {
    printWith(stderr, text, std::strerror(errno));
    return 1;
  };
  if (!daemon.open()) return failed("ERROR: failed to open trace ctrl socket: %s\n");
  if (!daemon.connect(kTraceSocket))
    return failed("ERROR: failed to connect trace ctrl socket: %s\n");
  if (!daemon.send(&message, sizeof message))
    return failed("ERROR: failed to send trace ctrl command: %s\n");
  return copyReply(daemon);
}

// --- The kernel's firewall

constexpr char kTarnUsage[] = "Trace tarn kernel module.\n\n" USAGE_OPTIONS USAGE_FILTER
                              "    -s          : tracing status\n"
                              "    -c <string> : execute a trace command\n" USAGE_COMPONENT
                              "    -v<number>  : verbose log level for log commands\n" USAGE_HELP;

class TarnTrace {
 public:
  int takeCommand(const char* text) {
    command_ = ::takeCommand(kTarnCommands, text);
    listed_ = listed_ || command_ == kNoCommand;
    return kGoOn;
  }

  int setCommand(TarnLetter letter) {
    command_ = letter;
    return kGoOn;
  }

  /// The first `-v` without a value gives 1, though the level is 3 without any.
  int takeLevel(const char* text) {
    if (const int failed = ::takeLevel(text, &raised_); failed != kGoOn) return failed;
    level_ = raised_;
    return kGoOn;
  }

  int takeComponent(const char* text) {
    const bool known = ParseCompString(text, &component_, tarn_comp_name, kTarnComponents);
    return known ? kGoOn : error(kBadComponent, text);
  }

  /// Runs after the options.
  int check(const Target& target) const { return needCommand(listed_, command_, target); }

  /// The status is that of the request, which is no end of the command.
  void run(const Target& target) const {
    if (command_ == kTarnStatus) {
      FW_SetLibPrettyPrinting(pretty_printing, stdout);
      report(FW_DebugStatus(target.handle, target.port, nullptr));
    } else {
      report(FW_DebugComponent(target.handle, target.port, nullptr, component_,
                               static_cast<unsigned int>(level_)));
    }
  }

 private:
  static void report(FWStatus_t status) {
    outcome(status, "ERROR: failed to execute tarn trace command: %s\n");
  }

  char command_ = kNoCommand;
  bool listed_ = false;
  long raised_ = 0;
  long level_ = 3;
  unsigned int component_ = FW_COMPONENT_ALL;
};

}  // namespace

int TraceHulld(const char* cmd, int argc, char** argv) {
  HulldTrace trace;
  const auto with = [&trace](int (HulldTrace::*take)(const char*)) {
    return [&trace, take](const char* value, const Target&) { return (trace.*take)(value); };
  };
  const auto without = [&trace](HulldLetter letter) {
    return [&trace, letter](const char*, const Target&) { return trace.setCommand(letter); };
  };
  return onHost(cmd, argc, argv,
                {.usage = kHulldUsage,
                 .letters = "heqsc:v::m:i:ot:",
                 .own = {{'e', [](const char*, const Target&) { return enableTrace(); }},
                         {'q', without(kHulldExit)},
                         {'s', without(kHulldStatus)},
                         {'c', with(&HulldTrace::takeCommand)},
                         {'v', with(&HulldTrace::takeLevel)},
                         {'m', with(&HulldTrace::takeComponent)},
                         {'i', with(&HulldTrace::takePath)},
                         {'o', [&](const char*, const Target&) { return trace.turnOn(); }},
                         {'t', with(&HulldTrace::takeTimeout)}},
                 .parsed = [&](const Target& target) { return trace.check(target); }},
                [&](const Target&) { return runTrace(trace.message()); });
}

// The options -e, -q, -i, -o and -t are in the letters, so that they may be given, and are not
// taken.
int TraceTarn(const char* cmd, int argc, char** argv) {
  TarnTrace trace;
  const auto with = [&trace](int (TarnTrace::*take)(const char*)) {
    return [&trace, take](const char* value, const Target&) { return (trace.*take)(value); };
  };
  return onFilter(
      cmd, argc, argv,
      {.usage = kTarnUsage,
       .letters = "heqsc:v::m:i:ot:f:",
       .own = {{'s', [&](const char*, const Target&) { return trace.setCommand(kTarnStatus); }},
               {'c', with(&TarnTrace::takeCommand)},
               {'v', with(&TarnTrace::takeLevel)},
               {'m', with(&TarnTrace::takeComponent)}},
       .parsed = [&](const Target& target) { return trace.check(target); },
       .libraryFailure = {.status = 0}},
      [&](const Target& target) {
        trace.run(target);
        return 0;
      });
}
