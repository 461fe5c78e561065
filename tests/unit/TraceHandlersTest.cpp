// tracehulld against daemons of any kind.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "CallShim.h"
#include "LocalPeer.h"
#include "LogCapture.h"
#include "RunCommand.h"

using namespace std::string_literals;

namespace {

const char kHulldUsage[] =
    "Trace hulld process.\n\n"
    "Usage: tarnioctl tracehulld <options>\n"
    "    -e          : enable tracing\n"
    "    -q          : disable tracing\n"
    "    -s          : tracing status\n"
    "    -c <string> : execute a trace command\n"
    "    -o          : turn on a trace feature\n"
    "    -v<number>  : verbose log level for log commands\n"
    "    -m <string> : verbose log component name or id\n"
    "    -t <number> : addrset update timeout\n"
    "    -h          : this help message\n";

const char kHulldList[] =
    "Available trace commands are:\n"
    "           status (A): tracing status\n"
    "             exit (B): stop tracing\n"
    "              log (C): set process log level\n"
    "          lib-log (D): set library log level\n"
    "        save-rule (E): save binary ruleset config\n"
    "        dump-rule (F): dump ruleset config\n"
    "  save-spoofguard (G): save binary spoofguard config\n"
    "  dump-spoofguard (H): dump spoofguard config\n"
    "      save-filter (I): save binary filter config\n"
    "      dump-filter (J): dump filter config\n"
    "        save-flow (K): save flow config\n"
    "        dump-flow (L): dump flow config\n"
    "   save-threshold (M): save threshold config\n"
    "   dump-threshold (N): dump threshold config\n"
    "         save-msg (O): save manager message\n"
    "      tune-l2rule (P): tune l2 rule optimization\n"
    "      tune-l3rule (Q): tune l3 rule optimization\n"
    "     save-gconfig (R): save global config\n"
    "     dump-gconfig (S): dump global config\n"
    "  tune-scontainer (T): tune shared addrset\n"
    "    dump-cservice (U): dump container service\n"
    "       dump-spset (V): dump service profile set\n"
    "       dump-siset (W): dump service instance set\n"
    "      dump-appmon (X): dump app mon config\n"
    "     dump-montype (Y): dump filter monitor types\n"
    "     dump-timeout (Z): dump timeout config\n"
    "     clean-buffer ([): toggle clean protobuf\n"
    "  addrset-timeout (\\): set addrset aggregation timeout\n"
    "  dump-clienttopics (]): dump client topics\n"
    "  dump-ploysyncstate (^): dump ploy sync state\n"
    "    vm-cont-query (_): vm continer query\n"
    "      dump-thread (`): dump threads info\n"
    "  addrset-interval (a): set addrset aggregation interval\n"
    "             help (?): this help message\n";

const char kMissing[] = "ERROR: missing trace command\n";

using Words = std::vector<std::string>;

CommandResult hulld(Words options) {
  options.insert(options.begin(), "tracehulld");
  return runCommand(options);
}

/// A message of 260 bytes that begins with these.
std::string message(std::string begin) {
  begin.resize(260);
  return begin;
}

/// The daemon at its place, for each run a new one.
class HulldTrace : public testing::Test {
 protected:
  /// What the daemon gets; expects that the run says nothing and ends with 0.
  std::string sentBy(const Words& options) {
    LocalPeer daemon(host.run("hulld_trace"));
    EXPECT_EQ(hulld(options), (CommandResult{0, "", ""})) << lineOf(options);
    return daemon.sent();
  }

  /// Expects a run that does not come as far as a socket.
  void expectNothingSent(const Words& options, const CommandResult& result) {
    const CallShim::SocketCalls calls;
    EXPECT_EQ(hulld(options), result) << lineOf(options);
    EXPECT_TRUE(calls.lines().empty()) << lineOf(options);
  }

  HostFolder host;
};

struct Name {
  char letter;
  const char* name;
  const char* otherCase;
};

const Name kNames[] = {
    {'A', "status", "STATUS"},
    {'B', "exit", "Exit"},
    {'C', "log", "LOG"},
    {'D', "lib-log", "LIB-Log"},
    {'E', "save-rule", "SAVE-RULE"},
    {'F', "dump-rule", "Dump-Rule"},
    {'G', "save-spoofguard", "save-SPOOFGUARD"},
    {'H', "dump-spoofguard", "dump-SpoofGuard"},
    {'I', "save-filter", "SAVE-filter"},
    {'J', "dump-filter", "Dump-filter"},
    {'K', "save-flow", "save-floW"},
    {'L', "dump-flow", "dump-Flow"},
    {'M', "save-threshold", "SAVE-THRESHOLD"},
    {'N', "dump-threshold", "dump-Threshold"},
    {'O', "save-msg", "save-MSG"},
    {'P', "tune-l2rule", "tune-L2rule"},
    {'Q', "tune-l3rule", "tune-L3Rule"},
    {'R', "save-gconfig", "save-gConfig"},
    {'S', "dump-gconfig", "DUMP-gconfig"},
    {'T', "tune-scontainer", "tune-sContainer"},
    {'U', "dump-cservice", "dump-cService"},
    {'V', "dump-spset", "dump-SPset"},
    {'W', "dump-siset", "dump-SIset"},
    {'X', "dump-appmon", "dump-AppMon"},
    {'Y', "dump-montype", "dump-MonType"},
    {'Z', "dump-timeout", "DUMP-TIMEOUT"},
    {'[', "clean-buffer", "Clean-Buffer"},
    {'\\', "addrset-timeout", "ADDRSET-timeout"},
    {']', "dump-clienttopics", "dump-clientTopics"},
    {'^', "dump-ploysyncstate", "dump-PloySyncState"},
    {'_', "vm-cont-query", "VM-cont-query"},
    {'`', "dump-thread", "dump-Thread"},
    {'a', "addrset-interval", "ADDRSET-INTERVAL"},
};

}  // namespace

// --- tracehulld: what is sent

TEST_F(HulldTrace, SendsALetterForEachNameOfACommand) {
  EXPECT_EQ(std::size(kNames), 33u);
  for (const Name& row : kNames) {
    const std::string expected = message({'t', 'c', row.letter, '\n'});
    EXPECT_EQ(sentBy({"-c", std::string(1, row.letter)}), expected) << row.name;
    EXPECT_EQ(sentBy({"-c", row.name}), expected) << row.name;
    EXPECT_EQ(sentBy({"-c", row.otherCase}), expected) << row.name;
  }
}

TEST_F(HulldTrace, WritesItsOptionsIntoTheMessage) {
  const std::vector<std::pair<Words, std::string>> rows = {
      {{"-s"}, "tcA\n"},
      {{"-q"}, "tcB\n"},
      {{"-s", "operand"}, "tcA\n"},
      // The last command counts.
      {{"-q", "-s"}, "tcA\n"},
      {{"-s", "-c", "Z"}, "tcZ\n"},
      {{"-c", "Z", "-q"}, "tcB\n"},
      // A level is a digit.
      {{"-c", "log", "-v"}, "tcC\n1"},
      {{"-c", "log", "-v", "-v"}, "tcC\n2"},
      {{"-c", "log", "-v0"}, "tcC\n0"},
      {{"-c", "log", "-v9"}, "tcC\n9"},
      {{"-c", "log", "-v3", "-v"}, "tcC\n4"},
      {{"-c", "log", "-v", "-v7"}, "tcC\n7"},
      {{"-c", "log", "-v", "7"}, "tcC\n1"},
      {{"-v5", "-c", "lib-log"}, "tcD\n5"},
      {{"-v6", "-s"}, "tcA\n6"},
      // A component by its name or number.
      {{"-c", "C", "-m", "misc"}, "tcC\n"},
      {{"-c", "C", "-m", "flow"}, "tcC\n\0\x0f"s},
      {{"-c", "C", "-m", "CACHE", "-v2"}, "tcC\n2\x12"},
      {{"-c", "C", "-v2", "-m", "63"}, "tcC\n2\x3f"},
      {{"-c", "C", "-m", "0x1f"}, "tcC\n\0\x1f"s},
      {{"-c", "C", "-m", "all"}, "tcC\n\0\xff"s},
      {{"-c", "C", "-m", "255"}, "tcC\n\0\xff"s},
      // A feature is turned on.
      {{"-c", "tune-l2rule", "-o"}, "tcP\n\1"},
      {{"-o", "-c", "clean-buffer"}, "tc[\n\1"},
      {{"-c", "P", "-v2", "-o"}, "tcP\n\1"},
      {{"-c", "P", "-o", "-v2"}, "tcP\n2"},
      // A timeout has 32 bits.
      {{"-c", "addrset-timeout", "-t", "0"}, "tc\\\n"},
      {{"-c", "addrset-timeout", "-t", "30"}, "tc\\\n\x1e"},
      {{"-c", "a", "-m", "flow", "-t", "7"}, "tca\n\7"},
      {{"-t", "7", "-m", "flow", "-c", "a"}, "tca\n\7\x0f"},
      // A threshold has a kind and a value.
      {{"-c", "M", "-t", "2"}, "tcM\n\2"},
      {{"-c", "save-threshold", "-t", "255", "-v1000"}, "tcM\n\xff\0\0\0\xe8\3\0\0"s},
      {{"-c", "M", "-v1000", "-t", "31"}, "tcM\n\x1f\0\0\0\xe8\3\0\0"s},
      {{"-c", "M", "-v4294967295"}, "tcM\n\0\0\0\0\xff\xff\xff\xff"s},
      {{"-c", "M", "-v0"}, "tcM\n"},
      {{"-c", "M", "-m", "flow", "-t", "3"}, "tcM\n\3\x0f"},
      {{"-c", "M", "-v16909060", "-v1"}, "tcM\n\0\0\0\0\1\0\0\0"s},
      // Both depend on the command before them.
      {{"-v5", "-c", "M"}, "tcM\n5"},
      {{"-m", "flow", "-t", "2", "-c", "M"}, "tcM\n\2"},
      {{"-c", "M", "-c", "C", "-v5"}, "tcC\n5"},
      {{"-c", "M", "-s", "-t", "5"}, "tcA\n\5"},
      // A path takes the whole argument.
      {{"-c", "save-rule", "-i", "/tmp/rules"}, "tcE\n/tmp/rules"},
      {{"-c", "E", "-i", "/tmp/rules", "-i", "/a"}, "tcE\n/a"},
      {{"-c", "E", "-m", "flow", "-i", "r"}, "tcE\nr"},
      {{"-c", "E", "-i", ""}, "tcE\n"},
      {{"-c", "E", "-i", "rules", "-m", "flow", "-o"}, "tcE\n\1\x0fles"},
      {{"-c", "E", "-i", std::string(255, 'p')}, "tcE\n" + std::string(255, 'p')},
  };
  for (const auto& [options, expected] : rows)
    EXPECT_EQ(sentBy(options), message(expected)) << lineOf(options);
}

TEST_F(HulldTrace, SendsTheMessageAtOnceToTheSocketOfTheDaemon) {
  LocalPeer daemon(host.run("hulld_trace"));
  const CallShim::SocketCalls calls;
  EXPECT_EQ(hulld({"-s"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(calls.lines(),
            (Words{"socket 1 1 0", "connect /var/run/kelpco/hulld_trace 29", "send 260 16384"}));
}

TEST_F(HulldTrace, GoesOnAfterShortSends) {
  for (const std::size_t limit : {1u, 7u, 259u}) {
    const CallShim::ShortCalls few(limit);
    EXPECT_EQ(sentBy({"-c", "save-rule", "-i", "/tmp/rules"}), message("tcE\n/tmp/rules"));
  }
}

// --- tracehulld: options that are refused

TEST_F(HulldTrace, NeedsACommand) {
  for (const Words& options : {Words{}, {"-v1"}, {"-m", "flow"}, {"-o"}, {"-t", "30"}, {"word"}})
    expectNothingSent(options, {1, kHulldUsage, kMissing});
}

TEST_F(HulldTrace, ListsItsCommands) {
  for (const char* const text : {"help", "?"}) expectNothingSent({"-c", text}, {1, kHulldList, ""});
}

TEST_F(HulldTrace, ListsThemForACommandThatIsNone) {
  for (const std::string& text : Words{"", "b", "@", "z", "9", " ", "AB", "statu", "status ",
                                       "HELP", "??", "%s%n", "\x80", std::string(5000, 'A')})
    expectNothingSent({"-c", text},
                      {1, kHulldList, "ERROR: invalid trace command `" + text + "'.\n"});
}

TEST_F(HulldTrace, SendsNothingOnceItHasListedThem) {
  expectNothingSent({"-c", "help", "-c", "status"}, {1, kHulldList, ""});
  expectNothingSent({"-c", "status", "-c", "help"}, {1, kHulldList, ""});
  expectNothingSent({"-c", "?", "-s", "-v1"}, {1, kHulldList, ""});
  expectNothingSent({"-c", "none", "-q"},
                    {1, kHulldList, "ERROR: invalid trace command `none'.\n"});
  expectNothingSent({"-c", "?", "-c", "?"}, {1, kHulldList + std::string(kHulldList), ""});
}

TEST_F(HulldTrace, GoesOnWithItsOptionsAfterTheList) {
  expectNothingSent({"-c", "?", "-h"}, {0, kHulldList + std::string(kHulldUsage), ""});
  expectNothingSent({"-c", "?", "-v10"}, {1, kHulldList, "ERROR: invalid log level 10\n"});
  // The command is none then: the level is one, and no threshold.
  expectNothingSent({"-c", "M", "-c", "?", "-v"}, {1, kHulldList, ""});
  expectNothingSent({"-c", "M", "-c", "?", "-t", "31"},
                    {1, kHulldList, "ERROR: timeout should be between 0 and 30 second(s)\n"});
}

TEST_F(HulldTrace, RefusesValues) {
  const std::string level = "ERROR: invalid log level ";
  const std::string threshold = "ERROR: Threshold value not provided.\n";
  const std::string timeout = "ERROR: timeout should be between 0 and 30 second(s)\n";
  const std::string path(256, 'p');
  const std::vector<std::pair<Words, std::string>> rows = {
      {{"-s", "-v10"}, level + "10\n"},
      {{"-s", "-v-1"}, level + "-1\n"},
      {{"-s", "-v1x"}, level + "1x\n"},
      {{"-s", "-vv"}, level + "v\n"},
      {{"-s", "-v0x1"}, level + "0x1\n"},
      {{"-s", "-v9", "-v"}, level + "10\n"},
      {{"-s", "-v9223372036854775807"}, level + "9223372036854775807\n"},
      {{"-s", "-v9223372036854775808"}, level + "9223372036854775808\n"},
      {{"-v10"}, level + "10\n"},
      {{"-s", "-v", "-v", "-v", "-v", "-v", "-v", "-v", "-v", "-v", "-v"}, level + "10\n"},
      {{"-c", "M", "-v"}, threshold},
      {{"-c", "M", "-v4294967296"}, threshold},
      {{"-c", "M", "-v-1"}, threshold},
      {{"-c", "M", "-v12x"}, threshold},
      {{"-c", "M", "-v0x10"}, threshold},
      {{"-s", "-t", "31"}, timeout},
      {{"-s", "-t", "-1"}, timeout},
      {{"-s", "-t", "soon"}, timeout},
      {{"-s", "-t", ""}, timeout},
      {{"-s", "-t", "0x1"}, timeout},
      {{"-t", "31", "-c", "M"}, timeout},
      {{"-c", "M", "-t", "256"}, timeout},
      {{"-c", "M", "-t", "-1"}, timeout},
      {{"-s", "-m", "flows"}, "ERROR: bad component id flows\n"},
      {{"-s", "-m", "fastpath"}, "ERROR: bad component id fastpath\n"},
      {{"-s", "-m", "64"}, "ERROR: bad component id 64\n"},
      {{"-s", "-m", ""}, "ERROR: bad component id \n"},
      {{"-s", "-i", path}, "ERROR: Failed: Input file path is longer than 255\n"},
  };
  for (const auto& [options, text] : rows) expectNothingSent(options, {1, "", text});
}

// --- tracehulld: tracing is enabled by a file

namespace {

const char kScheduled[] =
    "hulld trace is scheduled to start shortly. please check hulld.log to confirm.\n";

/// The mode of a file while a mask of the process holds.
class Mask {
 public:
  explicit Mask(mode_t mask) : former_(umask(mask)) {}
  ~Mask() { umask(former_); }
  Mask(const Mask&) = delete;
  Mask& operator=(const Mask&) = delete;

 private:
  mode_t former_;
};

}  // namespace

TEST_F(HulldTrace, EnablesTracesByAnEmptyFile) {
  const std::vector<std::pair<mode_t, mode_t>> rows = {
      {0, S_IFREG | 0644}, {022, S_IFREG | 0644}, {077, S_IFREG | 0600}};
  for (const auto& [mask, mode] : rows) {
    const Mask now(mask);
    const std::vector<int> before = openDescriptors();
    expectNothingSent({"-e"}, {0, kScheduled, ""});
    EXPECT_EQ(openDescriptors(), before);
    struct stat made {};
    ASSERT_EQ(stat(host.etc("hulld/enable_trace").c_str(), &made), 0);
    EXPECT_EQ(made.st_mode, mode);
    EXPECT_EQ(made.st_size, 0);
    std::filesystem::remove(host.etc("hulld/enable_trace"));
  }
}

TEST_F(HulldTrace, LeavesTheFileThatIsThereAlone) {
  std::ofstream(host.etc("hulld/enable_trace")) << "kept";
  expectNothingSent({"-e"}, {1, "", "ERROR: failed to enable trace: File exists\n"});
  std::ostringstream content;
  content << std::ifstream(host.etc("hulld/enable_trace")).rdbuf();
  EXPECT_EQ(content.str(), "kept");
}

TEST_F(HulldTrace, DoesNotFollowALinkToAFile) {
  std::filesystem::create_symlink("elsewhere", host.etc("hulld/enable_trace"));
  expectNothingSent({"-e"}, {1, "", "ERROR: failed to enable trace: File exists\n"});
  EXPECT_FALSE(std::filesystem::exists(host.etc("hulld/elsewhere")));
}

TEST_F(HulldTrace, ReportsAFileThatCannotBeMade) {
  std::filesystem::remove(host.etc("hulld"));
  expectNothingSent({"-e"}, {1, "", "ERROR: failed to enable trace: No such file or directory\n"});
  for (const int error : {EACCES, EROFS, ENOSPC}) {
    const CallShim::Failing failing(0, error, "open");
    expectNothingSent({"-e"}, {1, "", "ERROR: failed to enable trace: "s + strerror(error) + "\n"});
  }
}

TEST_F(HulldTrace, EnablesAtOnceWhateverFollows) {
  expectNothingSent({"-s", "-e", "-x", "-c", "help"}, {0, kScheduled, ""});
  EXPECT_TRUE(std::filesystem::exists(host.etc("hulld/enable_trace")));
}

TEST_F(HulldTrace, DoesNotEnableAfterAnOptionThatIsRefused) {
  expectNothingSent({"-v10", "-e"}, {1, "", "ERROR: invalid log level 10\n"});
  EXPECT_FALSE(std::filesystem::exists(host.etc("hulld/enable_trace")));
}

// --- tracehulld: what comes back

TEST_F(HulldTrace, PrintsAllThatTheDaemonSays) {
  const std::string lines = "trace: on\nlevel: 3\n";
  std::string bytes;
  for (int i = 0; i < 1024; ++i) bytes += static_cast<char>(i);
  for (const std::string& reply : {lines, "no end of line"s, "%s%n\n"s, "a\0b\xff\n"s, bytes,
                                   bytes + "x", bytes + bytes + bytes, std::string(100000, 'x')}) {
    LocalPeer daemon(host.run("hulld_trace"), reply);
    EXPECT_EQ(hulld({"-c", "dump-rule"}), (CommandResult{0, reply, ""}));
    EXPECT_EQ(daemon.sent(), message("tcF\n"));
  }
}

TEST_F(HulldTrace, PrintsWhatComesByteByByte) {
  const CallShim::ShortCalls one(1);
  LocalPeer daemon(host.run("hulld_trace"), "slowly, but all of it\n");
  EXPECT_EQ(hulld({"-s"}), (CommandResult{0, "slowly, but all of it\n", ""}));
}

TEST_F(HulldTrace, PrintsPiecesAsTheyCome) {
  const LocalPeer daemon(host.run("hulld_trace"), "first" + std::string(1019, '.') + "second");
  std::vector<off_t> sizes;
  const auto look = [&] {
    struct stat now {};
    EXPECT_EQ(fstat(STDOUT_FILENO, &now), 0);
    sizes.push_back(now.st_size);
  };
  const CallShim::After first("recv", 0, look);
  const CallShim::After second("recv", 1, look);
  const CallShim::After third("recv", 2, look);
  EXPECT_EQ(hulld({"-s"}).status, 0);
  EXPECT_EQ(sizes, (std::vector<off_t>{0, 1024, 1030}));
}

TEST_F(HulldTrace, ReportsADaemonThatIsNotThere) {
  EXPECT_EQ(hulld({"-s"}),
            (CommandResult{
                1, "", "ERROR: failed to connect trace ctrl socket: No such file or directory\n"}));
  std::ofstream(host.run("hulld_trace")) << "a plain file";
  EXPECT_EQ(
      hulld({"-s"}),
      (CommandResult{1, "", "ERROR: failed to connect trace ctrl socket: Connection refused\n"}));
}

TEST_F(HulldTrace, ReportsEachCallThatFails) {
  const std::string open = "ERROR: failed to open trace ctrl socket: ";
  const std::string connect = "ERROR: failed to connect trace ctrl socket: ";
  const std::string send = "ERROR: failed to send trace ctrl command: ";
  const std::string receive = "ERROR: failed to receive data: ";
  struct Row {
    const char* call;
    unsigned int number;
    int error;
    CommandResult result;
  };
  const std::vector<Row> rows = {
      {"socket", 0, EMFILE, {1, "", open + "Too many open files\n"}},
      {"socket", 0, EACCES, {1, "", open + "Permission denied\n"}},
      {"connect", 0, EACCES, {1, "", connect + "Permission denied\n"}},
      {"connect", 0, EINTR, {1, "", connect + "Interrupted system call\n"}},
      {"send", 0, EPIPE, {1, "", send + "Broken pipe\n"}},
      {"send", 0, EAGAIN, {1, "", send + "Resource temporarily unavailable\n"}},
      {"recv", 0, ECONNRESET, {0, "", receive + "Connection reset by peer\n"}},
      {"recv", 1, EIO, {0, "said", receive + "Input/output error\n"}},
      {"recv", 0, 0, {0, "", ""}},
      {"write", 0, ENOSPC, {0, "", "ERROR: failed to print data: 0\n"}},
      {"close", 0, EIO, {0, "said", ""}},
  };
  for (const Row& row : rows) {
    const std::vector<int> before = openDescriptors();
    {
      LocalPeer daemon(host.run("hulld_trace"), "said");
      const CallShim::Failing failing(row.number, row.error, row.call);
      EXPECT_EQ(hulld({"-s"}), row.result) << row.call;
      EXPECT_TRUE(failing.reached()) << row.call;
    }
    EXPECT_EQ(openDescriptors(), before) << row.call;
  }
}

TEST_F(HulldTrace, ADaemonThatGoesAwayIsAFailureAndNoSignal) {
  LocalPeer daemon(host.run("hulld_trace"));
  const CallShim::After gone("connect", 0, [&] { daemon.close(); });
  EXPECT_EQ(hulld({"-s"}),
            (CommandResult{1, "", "ERROR: failed to send trace ctrl command: Broken pipe\n"}));
}

TEST_F(HulldTrace, ADaemonThatGoesAwayInTheMiddleOfTheMessageToo) {
  const CallShim::ShortCalls few(100);
  LocalPeer daemon(host.run("hulld_trace"));
  const CallShim::After gone("send", 1, [&] { daemon.close(); });
  EXPECT_EQ(hulld({"-s"}),
            (CommandResult{1, "", "ERROR: failed to send trace ctrl command: Broken pipe\n"}));
}

TEST_F(HulldTrace, SaysHowMuchOfAPieceWasWritten) {
  const CallShim::FullDisk full(2, 7);
  const LocalPeer daemon(host.run("hulld_trace"), "0123456789abcdefghij");
  EXPECT_EQ(hulld({"-s"}),
            (CommandResult{0, "0123456789abcd", "ERROR: failed to print data: 14\n"}));
}
