// getdpiinfo against inspection processes of any kind.

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "LocalPeer.h"
#include "RunCommand.h"

using namespace std::string_literals;

namespace {

using Words = std::vector<std::string>;

CommandResult dpi(Words options) {
  options.insert(options.begin(), "getdpiinfo");
  return runCommand(options);
}

/// A number as it stands on the socket.
std::string word(std::uint32_t value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

const char kStats[] = "\nvDPI runtime stats\n";
const char kThreads[] = "\nvDPI Thread Status\n";
const char kQuery[] = "\n\n";

const char kNoLength[] = "ERROR: Failed to receive the length of dpi stats";
const char kNoMemory[] = "ERROR: Failed to allocate buffer to recv dpi stats";
const char kNoStats[] = "ERROR: failed to get stats from vdpi";

class DpiHandlers : public testing::Test {
 protected:
  std::string path() const { return host.run("vdpi_stats_channel"); }

  /// What a run prints and returns when the process says this.
  CommandResult runOn(const Words& options, const std::string& reply) {
    LocalPeer process(path(), reply);
    const CommandResult result = dpi(options);
    sent = process.sent();
    return result;
  }

  HostFolder host;
  std::string sent;
};

}  // namespace

// --- What is sent

TEST_F(DpiHandlers, SendsTheCommandOfItsLastOption) {
  const std::vector<std::pair<Words, std::uint32_t>> rows = {
      {{"-e"}, 66},           {{"-d"}, 67},       {{"-c"}, 69},       {{"-l"}, 70},
      {{"-e", "-d"}, 67},     {{"-d", "-e"}, 66}, {{"-l", "-c"}, 69}, {{}, 0xffffffff},
      {{"word"}, 0xffffffff}, {{"-edcl"}, 70},
  };
  for (const auto& [options, command] : rows) {
    EXPECT_EQ(runOn(options, "never read"), (CommandResult{0, "", ""})) << lineOf(options);
    EXPECT_EQ(sent, word(4) + word(command)) << lineOf(options);
  }
}

TEST_F(DpiHandlers, ShowsAReplyForStatsAndThreads) {
  const std::string reply = word(6) + "first\n";
  const std::vector<std::tuple<Words, std::uint32_t, std::string>> rows = {
      {{"-s"}, 65, kStats},
      {{"-t"}, 68, kThreads},
      {{"-s", "-t"}, 68, kThreads},
      {{"-t", "-s"}, 65, kStats},
      {{"-e", "-s"}, 65, kStats},
      // The reply is awaited whatever the command.
      {{"-s", "-e"}, 66, kStats},
      {{"-td"}, 67, kThreads},
      {{"-s", "-t", "-l"}, 70, kThreads},
  };
  for (const auto& [options, command, title] : rows) {
    EXPECT_EQ(runOn(options, reply), (CommandResult{0, title + "first\n", ""})) << lineOf(options);
    EXPECT_EQ(sent, word(4) + word(command)) << lineOf(options);
  }
}

TEST_F(DpiHandlers, AsksByAName) {
  for (const std::string& text :
       Words{"www.example.com", "", "%s", "two words", std::string(1023, 'n')}) {
    for (const Words& options : {Words{"-m", text},
                                 {"-s", "-m", text},
                                 {"-m", text, "-t"},
                                 {"-m", "x", "-e", "-m", text}}) {
      EXPECT_EQ(runOn(options, word(3) + "abc"), (CommandResult{0, kQuery + "abc"s, ""}))
          << lineOf(options);
      EXPECT_EQ(sent, word(4) + word(71) + word(static_cast<std::uint32_t>(text.size() + 1)) +
                          text + '\0')
          << lineOf(options);
    }
  }
}

TEST_F(DpiHandlers, RefusesANameOf1024Characters) {
  const CallShim::SocketCalls calls;
  EXPECT_EQ(dpi({"-s", "-m", std::string(1024, 'n'), "-h"}),
            (CommandResult{1, "length of input string shoudl be less than 1024\n", ""}));
  EXPECT_TRUE(calls.lines().empty());
}

TEST_F(DpiHandlers, SendsEachNumberByItself) {
  const Words connected = {"socket 1 1 0", "connect /var/run/kelpco/vdpi_stats_channel 36",
                           "send 4 16384", "send 4 16384"};
  for (const char* const option : {"-s", "-t", "-e", "-l"}) {
    const CallShim::SocketCalls calls;
    EXPECT_EQ(runOn({option}, word(0)).status, 0);
    EXPECT_EQ(calls.lines(), connected) << option;
  }
  Words asked = connected;
  asked.insert(asked.end(), {"send 4 16384", "send 5 16384"});
  const CallShim::SocketCalls calls;
  EXPECT_EQ(runOn({"-m", "name"}, word(0)).status, 0);
  EXPECT_EQ(calls.lines(), asked);
}

TEST_F(DpiHandlers, GoesOnAfterShortSends) {
  for (const std::size_t limit : {1u, 3u}) {
    const CallShim::ShortCalls few(limit);
    EXPECT_EQ(runOn({"-m", "www.example.com"}, word(1) + "x"),
              (CommandResult{0, kQuery + "x"s, ""}));
    EXPECT_EQ(sent, word(4) + word(71) + word(16) + "www.example.com\0"s);
  }
}

// --- What comes back

TEST_F(DpiHandlers, PrintsTheTextOfAReply) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {word(0), ""},
      {word(1) + "\0"s, ""},
      {word(6) + "text\n\0"s, "text\n"},
      // The text ends at its first NUL, or with the last byte that was announced.
      {word(9) + "text\0more"s, "text"},
      {word(4) + "text", "text"},
      {word(4) + "text and more", "text"},
      {word(5) + "\0text"s, ""},
      // Lengths whose memory ends with them.
      {word(24) + std::string(24, 'x'), std::string(24, 'x')},
      {word(40) + std::string(40, 'y'), std::string(40, 'y')},
      {word(1032) + std::string(1032, 'z'), std::string(1032, 'z')},
      {word(4) + "%s%n", "%s%n"},
      {word(3) + "\xff\x01\n", "\xff\x01\n"},
      {word(100000) + std::string(100000, 'x'), std::string(100000, 'x')},
  };
  for (const auto& [reply, text] : rows) {
    EXPECT_EQ(runOn({"-s"}, reply), (CommandResult{0, kStats + text, ""}));
    EXPECT_EQ(runOn({"-t"}, reply), (CommandResult{0, kThreads + text, ""}));
    EXPECT_EQ(runOn({"-m", "n"}, reply), (CommandResult{0, kQuery + text, ""}));
  }
}

TEST_F(DpiHandlers, TakesAReplyByteByByte) {
  const CallShim::ShortCalls one(1);
  EXPECT_EQ(runOn({"-s"}, word(11) + "slow stats\n"),
            (CommandResult{0, kStats + "slow stats\n"s, ""}));
}

TEST_F(DpiHandlers, ALengthThatEndsEarlyIsAFailure) {
  for (const std::string& reply : {""s, "\4"s, "\4\0"s, "\4\0\0"s}) {
    EXPECT_EQ(runOn({"-s"}, reply), (CommandResult{0, kStats, kNoLength}));
    EXPECT_EQ(runOn({"-m", "n"}, reply),
              (CommandResult{0, kQuery, "ERROR: Failed to receive the length of response"}));
  }
}

TEST_F(DpiHandlers, ALengthAboveItsLimitIsTakenForALackOfMemory) {
  constexpr std::uint32_t kMost = 64u << 20;
  for (const std::uint32_t length :
       {kMost + 1, 0x7fffffffu, 0x80000000u, 0xfffffffeu, 0xffffffffu}) {
    EXPECT_EQ(runOn({"-t"}, word(length) + "text"), (CommandResult{0, kThreads, kNoMemory}));
    EXPECT_EQ(runOn({"-m", "n"}, word(length) + "text"),
              (CommandResult{0, kQuery, "ERROR: Failed to allocate buffer to recv response"}));
  }
  EXPECT_EQ(runOn({"-t"}, word(kMost) + "text"), (CommandResult{0, kThreads, kNoStats}));
}

TEST_F(DpiHandlers, ALackOfMemoryIsReported) {
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runOn({"-s"}, word(4) + "text"), (CommandResult{0, kStats, kNoMemory}));
}

TEST_F(DpiHandlers, AReplyThatEndsEarlyIsAFailure) {
  for (const std::string& reply : {word(4), word(4) + "t", word(4) + "tex"}) {
    EXPECT_EQ(runOn({"-s"}, reply), (CommandResult{0, kStats, kNoStats}));
    EXPECT_EQ(runOn({"-m", "n"}, reply),
              (CommandResult{0, kQuery, "ERROR: failed to get response from vdpi"}));
  }
}

TEST_F(DpiHandlers, OneEndOfTheStreamIsPassedOver) {
  // The first call is that of the length.
  const CallShim::Failing ended(1, 0, "recv");
  EXPECT_EQ(runOn({"-s"}, word(4) + "text"), (CommandResult{0, kStats + "text"s, ""}));
  EXPECT_TRUE(ended.reached());
}

TEST_F(DpiHandlers, OneEndAfterEachPartOfAReplyIsPassedOver) {
  // The length has 4 bytes.
  const CallShim::PausingStream pausing(4);
  EXPECT_EQ(runOn({"-s"}, word(4) + "text"), (CommandResult{0, kStats + "text"s, ""}));
}

// --- What fails

TEST_F(DpiHandlers, ReportsAProcessThatIsNotThere) {
  const std::string text = "ERROR: failed to connect to vdpi stats socket: ";
  const std::string absent = text + "No such file or directory\n";
  EXPECT_EQ(dpi({"-s"}), (CommandResult{1, kStats, absent}));
  EXPECT_EQ(dpi({"-m", "n"}), (CommandResult{1, kQuery, absent}));
  EXPECT_EQ(dpi({"-e"}), (CommandResult{0, "", absent}));
  EXPECT_EQ(dpi({}), (CommandResult{0, "", absent}));

  std::ofstream(path()) << "a plain file";
  const std::string refused = text + "Connection refused\n";
  EXPECT_EQ(dpi({"-t"}), (CommandResult{1, kThreads, refused}));
  EXPECT_EQ(dpi({"-m", "n"}), (CommandResult{1, kQuery, refused}));
  EXPECT_EQ(dpi({"-d"}), (CommandResult{0, "", refused}));
}

namespace {

struct Failure {
  const char* call;
  unsigned int number;
  int error;
  CommandResult result;
};

}  // namespace

TEST_F(DpiHandlers, ReportsEachCallThatFails) {
  const std::string open = "ERROR: failed to open trace ctrl socket: ";
  const std::string connect = "ERROR: failed to connect to vdpi stats socket: ";
  const std::string length = "ERROR: failed to send length of get stats command: ";
  const std::string command = "ERROR: failed to send get stats command: ";
  const std::vector<std::pair<Words, std::vector<Failure>>> rows = {
      {{"-s"},
       {{"socket", 0, EMFILE, {1, kStats, open + "Too many open files\n"}},
        {"connect", 0, EACCES, {1, kStats, connect + "Permission denied\n"}},
        {"send", 0, EPIPE, {1, kStats, length + "Broken pipe\n"}},
        {"send", 1, EPIPE, {1, kStats, command + "Broken pipe\n"}},
        {"recv", 0, ECONNRESET, {0, kStats, kNoLength}},
        {"recv", 0, 0, {0, kStats, kNoLength}},
        {"recv", 1, EIO, {0, kStats, kNoStats}},
        {"close", 0, EIO, {0, kStats + "text"s, ""}}}},
      {{"-m", "name"},
       {{"socket", 0, EACCES, {1, kQuery, open + "Permission denied\n"}},
        {"connect", 0, ECONNREFUSED, {1, kQuery, connect + "Connection refused\n"}},
        {"send", 0, EPIPE, {1, kQuery, "ERROR: failed to send length of command: Broken pipe\n"}},
        {"send", 1, EPIPE, {1, kQuery, "ERROR: failed to send command: Broken pipe\n"}},
        {"send",
         2,
         EPIPE,
         {1, kQuery, "ERROR: failed to send length of input string: Broken pipe\n"}},
        {"send", 3, EPIPE, {1, kQuery, "ERROR: failed to send input string: Broken pipe\n"}},
        {"recv", 0, EIO, {0, kQuery, "ERROR: Failed to receive the length of response"}},
        {"recv", 1, EIO, {0, kQuery, "ERROR: failed to get response from vdpi"}}}},
      {{"-e"},
       {{"socket", 0, ENFILE, {0, "", open + "Too many open files in system\n"}},
        {"connect", 0, EACCES, {0, "", connect + "Permission denied\n"}},
        {"send", 0, EPIPE, {0, "", length + "Broken pipe\n"}},
        {"send", 1, ECONNRESET, {0, "", command + "Connection reset by peer\n"}}}},
  };
  for (const auto& [options, failures] : rows) {
    for (const Failure& row : failures) {
      const std::vector<int> before = openDescriptors();
      const CallShim::Failing failing(row.number, row.error, row.call);
      EXPECT_EQ(runOn(options, word(4) + "text"), row.result)
          << lineOf(options) << " " << row.call << " " << row.number;
      EXPECT_TRUE(failing.reached()) << lineOf(options) << " " << row.call << " " << row.number;
      EXPECT_EQ(openDescriptors(), before) << lineOf(options) << " " << row.call;
    }
  }
}

TEST_F(DpiHandlers, AProcessThatGoesAwayIsAFailureAndNoSignal) {
  const std::vector<std::pair<Words, std::vector<CommandResult>>> rows = {
      {{"-s"},
       {{1, kStats, "ERROR: failed to send length of get stats command: Broken pipe\n"},
        {1, kStats, "ERROR: failed to send get stats command: Broken pipe\n"},
        {0, kStats, kNoLength}}},
      {{"-d"},
       {{0, "", "ERROR: failed to send length of get stats command: Broken pipe\n"},
        {0, "", "ERROR: failed to send get stats command: Broken pipe\n"},
        {0, "", ""}}},
      {{"-m", "name"},
       {{1, kQuery, "ERROR: failed to send length of command: Broken pipe\n"},
        {1, kQuery, "ERROR: failed to send command: Broken pipe\n"},
        {1, kQuery, "ERROR: failed to send length of input string: Broken pipe\n"},
        {1, kQuery, "ERROR: failed to send input string: Broken pipe\n"},
        {0, kQuery, "ERROR: Failed to receive the length of response"}}},
  };
  for (const auto& [options, results] : rows) {
    for (unsigned int sends = 0; sends < results.size(); ++sends) {
      LocalPeer process(path());
      const auto leave = [&process] { process.close(); };
      const CallShim::After gone(sends == 0 ? "connect" : "send", sends == 0 ? 0 : sends - 1,
                                 leave);
      EXPECT_EQ(dpi(options), results[sends]) << lineOf(options) << " after " << sends << " sends";
    }
  }
}
