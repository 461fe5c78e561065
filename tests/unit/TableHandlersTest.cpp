// Handlers of the filter tables and of the machines that follow them, against scripted devices.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "DirectKernel.h"
#include "Expect.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Words = std::vector<std::string>;

const char kTables[] = "/dev/weirgatetbl";
const char kVmList[] = "/bin/tarn_vm_list.sh";
const char kFilter[] = "nic-1002672-eth0-my-agent.2";

#define UUID "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f"
#define VNIC "00010203-0405-0607-0809-0a0b0c0d0e0f"

Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Bytes operator+(const Bytes& a, const Bytes& b) {
  Bytes both(a.size() + b.size());
  std::copy(a.begin(), a.end(), both.begin());
  std::copy(b.begin(), b.end(), both.begin() + static_cast<std::ptrdiff_t>(a.size()));
  return both;
}

/// An entry with its head.
Bytes entry(int type, const Bytes& value) {
  const auto length = static_cast<int>(value.size());
  return Bytes(3).at(0, {type, length & 0xff, length >> 8}) + value;
}

const Bytes kUuid({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});

template <typename Number>
Number load(const std::uint8_t* from) {
  Number number;
  std::memcpy(&number, from, sizeof number);
  return number;
}

/// The table device for the length of a test, and the host's list of machines.
class Tables {
 public:
  struct Request {
    unsigned long number;
    std::string agent;
    Bytes entries = Bytes(0);  // that were sent; for the revalidation its record
    std::uint32_t size = 0;    // of the frame
  };

  explicit Tables(const std::string& list = "") : program_(kVmList, "printf '" + list + "'") {
    DeviceShim::put(kTables, [this](const DeviceShim::Call& call) {
      return answer(call.request, static_cast<std::uint8_t*>(call.argument));
    });
  }
  ~Tables() {
    DeviceShim::put(kTables);
    EXPECT_FALSE(hasChild());
  }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  Bytes exclude = Bytes(0), include = Bytes(0);
  std::map<unsigned long, int> errors;                // by request
  std::optional<std::uint32_t> size = {}, told = {};  // what replies say instead of the truth
  std::vector<Request> requests;

  std::string numbers() const {
    std::string text;
    for (const Request& request : requests)
      text += (text.empty() ? "" : " ") + std::to_string(request.number);
    return text;
  }

  const CallShim::Program& program() const { return program_; }

 private:
  int answer(unsigned long number, std::uint8_t* frame) {
    if (number == 10) {
      requests.push_back({number, "", Bytes(20), 20});
      std::memcpy(requests.back().entries.data(), frame, 20);
      return outcome(number);
    }
    const bool asksSize = number == 3 || number == 8;
    const bool reads = number == 4 || number == 9;
    EXPECT_EQ(frame[39], 0);
    const std::string agent(reinterpret_cast<char*>(frame));
    EXPECT_TRUE(std::all_of(frame + agent.size(), frame + 40, [](int byte) { return byte == 0; }));
    if (asksSize) {
      requests.push_back({number, agent});
    } else {
      Request request{number, agent, Bytes(0), load<std::uint32_t>(frame + 48)};
      const auto* const at = reinterpret_cast<const std::uint8_t*>(load<std::uint64_t>(frame + 40));
      if (!reads && request.size != 0)
        request.entries =
            Bytes(Bytes::const_iterator(at), Bytes::const_iterator(at + request.size));
      requests.push_back(request);
    }
    if (const int result = outcome(number); result != 0) return result;
    const Bytes& table = number < 5 ? exclude : include;
    if (asksSize) {
      const std::uint32_t bytes = size.value_or(static_cast<std::uint32_t>(table.size()));
      std::memcpy(frame + 40, &bytes, 4);
    }
    if (reads) {
      auto* const at = reinterpret_cast<std::uint8_t*>(load<std::uint64_t>(frame + 40));
      std::copy_n(table.begin(), std::min<std::size_t>(table.size(), requests.back().size), at);
      const std::uint32_t bytes = told.value_or(static_cast<std::uint32_t>(table.size()));
      std::memcpy(frame + 48, &bytes, 4);
    }
    return 0;
  }

  int outcome(unsigned long number) {
    const auto found = errors.find(number);
    if (found == errors.end()) return 0;
    errno = found->second;
    return -1;
  }

  LogCapture log_;
  CallShim::Program program_;
};

std::string usageOf(const std::string& command) {
  return runCommand({command, "-Override", "-h"}).out;
}

const std::string kLongAgent(39, 'a');

}  // namespace

// --- getfiltertables

namespace {

CommandResult shown(const Tables&, const Words& options = {}) {
  return runCommand(Words{"getfiltertables", "-a", "my-agent"} + options);
}

}  // namespace

TEST(GetFilterTables, SaysThatTablesAreEmpty) {
  Tables tables;
  EXPECT_EQ(shown(tables),
            (CommandResult{0, "Exclude table is empty\n\nInclude table is empty.\n", ""}));
  EXPECT_EQ(tables.numbers(), "3 8");
  for (const Tables::Request& request : tables.requests) EXPECT_EQ(request.agent, "my-agent");
}

TEST(GetFilterTables, PrintsEveryKindOfEntry) {
  Tables tables;
  tables.exclude = entry(0, Bytes(8).text(0, "switch1")) + entry(1, kUuid + Bytes({4, 0, 0, 0}));
  tables.include = entry(2, kUuid + Bytes({0xf9, 255, 255, 255})) + entry(3, kUuid) +
                   entry(4, kUuid + Bytes({200, 2, 0, 0, 0}) + Bytes(8)) +
                   entry(5, Bytes(8).text(0, "switch2")) + entry(6, Bytes(12).at(0, {2}));
  EXPECT_EQ(shown(tables), (CommandResult{0,
                                          "Exclude Table (size = 34)\n"
                                          "VSWITCH switch1\n"
                                          "VNIC UUID " UUID " VNIC Index 4\n"
                                          "\n"
                                          "Include Table (size = 100)\n"
                                          "DVS " UUID " DVPort -7\n"
                                          "DVS " UUID "\n"
                                          "VNIC UUID " UUID " VNIC Index 200\n"
                                          "VSWITCH switch2\n"
                                          "HOST WIDE\n"
                                          "\n",
                                          ""}));
  EXPECT_EQ(tables.numbers(), "3 4 8 9");
  EXPECT_EQ(tables.requests[1].size, 34u);
  const std::string out = shown(tables, {"-n"}).out;
  EXPECT_NE(out.find("\nVNIC ID " VNIC ".004\n"), std::string::npos) << out;
  EXPECT_NE(out.find("\nVNIC ID " VNIC ".200\n"), std::string::npos) << out;
}

TEST(GetFilterTables, EitherTableMayHoldEitherKind) {
  Tables tables;
  tables.exclude = entry(6, Bytes(12)) + entry(5, Bytes(2).text(0, "s"));
  EXPECT_EQ(shown(tables).out,
            "Exclude Table (size = 20)\nHOST WIDE\nVSWITCH s\n\nInclude table is empty.\n");
  tables.exclude = Bytes(0);
  tables.include = entry(1, kUuid + Bytes({255, 255, 255, 255}));
  EXPECT_EQ(shown(tables).out,
            "Exclude table is empty\n\nInclude Table (size = 23)\nVNIC UUID " UUID
            " VNIC Index -1\n\n");
}

TEST(GetFilterTables, NeedsAnAgentOfAtMost39Characters) {
  Tables tables;
  EXPECT_EQ(runCommand({"getfiltertables"}), (CommandResult{1, usageOf("getfiltertables"), ""}));
  EXPECT_EQ(runCommand({"getfiltertables", "-a", kLongAgent + "b"}),
            (CommandResult{1, "", "ERROR: invalid agent name " + kLongAgent + "b\n"}));
  EXPECT_TRUE(tables.requests.empty());
  EXPECT_EQ(runCommand({"getfiltertables", "-a", kLongAgent}).status, 0);
  EXPECT_EQ(tables.requests[0].agent, kLongAgent);
}

TEST(GetFilterTables, WhatIsCutEndsTheTable) {
  const Bytes first = entry(0, Bytes(2).text(0, "s"));
  const Bytes whole = first + entry(4, kUuid + Bytes(13));
  for (std::uint32_t length = 0; length <= whole.size(); ++length) {
    Tables tables;
    tables.exclude = whole;
    tables.told = length;
    const std::string out = shown(tables).out;
    EXPECT_EQ(out.find("VSWITCH s\n") != std::string::npos, length >= first.size()) << length;
    EXPECT_EQ(out.find("VNIC UUID") != std::string::npos, length == whole.size()) << length;
    EXPECT_EQ(out.rfind("Exclude Table (size = " + std::to_string(length) + ")\n", 0), 0u);
  }
}

TEST(GetFilterTables, AValueThatIsTooShortIsFilledUp) {
  const std::string zeros = "00 00 00 00 00 00 00 00-00 00 00 00 00 00 00 00";
  Tables tables;
  tables.include = entry(5, Bytes(0)) + entry(5, Bytes(3).text(0, "abc")) + entry(3, Bytes(0)) +
                   entry(1, Bytes({0, 1})) + entry(4, Bytes(0)) + entry(2, kUuid) +
                   entry(6, Bytes(0)) + entry(3, kUuid + Bytes(9, 0xff));
  EXPECT_EQ(shown(tables).out, "Exclude table is empty\n\nInclude Table (size = " +
                                   std::to_string(tables.include.size()) +
                                   ")\n"
                                   "VSWITCH \n"
                                   "VSWITCH abc\n"
                                   "DVS " +
                                   zeros +
                                   "\n"
                                   "VNIC UUID 00 01" +
                                   zeros.substr(5) +
                                   " VNIC Index 0\n"
                                   "VNIC UUID " +
                                   zeros +
                                   " VNIC Index 0\n"
                                   "DVS " UUID
                                   " DVPort 0\n"
                                   "HOST WIDE\n"
                                   "DVS " UUID "\n\n");
}

TEST(GetFilterTables, NamesArePrintedAsTheyAre) {
  Tables tables;
  tables.exclude = entry(0, Bytes(7).text(0, "%s%n%d"));
  EXPECT_EQ(shown(tables).out,
            "Exclude Table (size = 10)\nVSWITCH %s%n%d\n\nInclude table is empty.\n");
}

TEST(GetFilterTables, AReplyThatIsLargerThanItsRoomIsCut) {
  for (const std::uint32_t told : {4u, 0xffffffffu}) {
    Tables tables;
    tables.exclude = entry(6, Bytes(0));
    tables.told = told;
    EXPECT_EQ(shown(tables).out, "Exclude Table (size = " + std::to_string(static_cast<int>(told)) +
                                     ")\nHOST WIDE\n\nInclude table is empty.\n");
  }
}

TEST(GetFilterTables, SaysWhenThereIsNoMemory) {
  Tables tables;
  tables.size = 0xffffffff;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(shown(tables),
            (CommandResult{1, "", "ERROR: no memory for exclude table of size -1\n"}));
  EXPECT_EQ(tables.numbers(), "3");
}

TEST(GetFilterTables, SaysWhenThereIsNoMemoryForTheIncludeTable) {
  Tables tables;
  tables.include = entry(6, Bytes(12));
  DeviceShim::failNextCalloc();
  EXPECT_EQ(shown(tables), (CommandResult{1, "Exclude table is empty\n\n",
                                          "ERROR: no memory for include table of size 15\n"}));
}

TEST(GetFilterTables, ResultsOfRequestsAreNotRead) {
  Tables tables;
  tables.exclude = entry(6, Bytes(12));
  tables.errors = {{3, ENOENT}, {8, EPERM}};
  EXPECT_EQ(shown(tables),
            (CommandResult{0, "Exclude table is empty\n\nInclude table is empty.\n", ""}));
  tables.errors = {{4, ENOENT}};
  // Nothing was written into the room: zeros, which are switches without a name.
  EXPECT_EQ(shown(tables),
            (CommandResult{0,
                           "Exclude Table (size = 15)\nVSWITCH \nVSWITCH \nVSWITCH \nVSWITCH \n"
                           "VSWITCH \n\nInclude table is empty.\n",
                           ""}));
}

namespace {

/// Runs the command on a table with an unknown type in a process of its own, whose standard error
/// is `errors`. Returns what waiting for it gives.
int runOnUnknownType(int errors, const std::string& out) {
  const pid_t child = fork();
  if (child == 0) {
    dup2(errors, STDERR_FILENO);
    Tables tables;
    tables.exclude = entry(6, Bytes(12)) + entry(7, Bytes(2)) + entry(6, Bytes(12));
    const CommandResult result = [&] {
      testing::internal::CaptureStdout();
      char name[] = "tarnioctl", word[] = "getfiltertables", option[] = "-a", agent[] = "x";
      char* argv[] = {name, word, option, agent, nullptr};
      const int status = runCommand(4, argv);
      return CommandResult{status, testing::internal::GetCapturedStdout(), ""};
    }();
    std::ofstream(out) << result.out;
    _exit(result.status);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

}  // namespace

TEST(GetFilterTables, AnUnknownTypeIsRepeatedUntilTheProcessEnds) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t reader = fork();
  if (reader == 0) {
    // Reads 1000 lines and goes away.
    close(ends[1]);
    std::FILE* const lines = fdopen(ends[0], "r");
    char line[256];
    int same = 0;
    for (int i = 0; i < 1000; ++i)
      if (std::fgets(line, sizeof line, lines) != nullptr &&
          std::strcmp(line, "ERROR: invalid table type 7 in exclude table\n") == 0)
        ++same;
    _exit(same == 1000 ? 0 : 1);
  }
  close(ends[0]);
  const int status = runOnUnknownType(ends[1], "/dev/null");
  close(ends[1]);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGPIPE);
  int read = 0;
  waitpid(reader, &read, 0);
  EXPECT_EQ(read, 0);
}

TEST(GetFilterTables, AnUnknownTypeEndsTheTableWhenNobodyCanReadOfIt) {
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  const std::string out = testing::TempDir() + "unknown-type-" + std::to_string(getpid());
  EXPECT_EQ(runOnUnknownType(full, out), 0);
  close(full);
  std::ifstream file(out);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(text, "Exclude Table (size = 35)\nHOST WIDE\n\nInclude table is empty.\n");
  std::remove(out.c_str());
}

// --- setfiltertables

namespace {

Words set(const Words& options) { return Words{"setfiltertables", "-Override"} + options; }

const Bytes kExcludeEntry = entry(1, kUuid + Bytes({7, 0, 0, 0}));
const Bytes kIncludeEntry = entry(4, kUuid + Bytes({7, 2, 0, 0, 0}) + Bytes(8));
const Bytes kHostEntry = entry(6, Bytes(12).at(0, {2}));

#define VM "1000:" UUID "\\n"
const Bytes kVm = Bytes({0xe8, 3, 0, 0}) + kUuid;

/// The firewall device with one filter.
class OneFilter : public DirectKernel {
 public:
  explicit OneFilter(std::string uuid = UUID, std::uint32_t vnicIndex = 7) {
    on(40, [=, this](std::uint8_t* body) {
      EXPECT_EQ(load<std::uint32_t>(body + 100), 1u);
      EXPECT_EQ(load<std::uint32_t>(body + 104), 866u);
      agent = reinterpret_cast<char*>(body);
      auto* const record = reinterpret_cast<std::uint8_t*>(load<std::uint64_t>(body + 108));
      name = reinterpret_cast<char*>(record);
      std::memcpy(record + 304, uuid.data(), std::min<std::size_t>(uuid.size(), 128));
      std::memcpy(record + 432, &vnicIndex, 4);
      return status;
    });
  }
  std::uint32_t status = 0;
  std::string agent, name;
};

}  // namespace

TEST(SetFilterTables, SendsTheEntryAndRevalidates) {
  const std::vector<std::pair<Words, std::pair<unsigned long, Bytes>>> rows = {
      {{"-e", "-n", VNIC ".007"}, {0, kExcludeEntry}},
      {{"-e", "-d", "-n", VNIC ".007"}, {2, kExcludeEntry}},
      {{"-n", UUID ".007"}, {5, kIncludeEntry}},
      {{"-d", "-n", UUID ":007"}, {7, kIncludeEntry}},
      {{"-o"}, {5, kHostEntry}},
      {{"-od"}, {7, kHostEntry}},
      {{"-o", "-s", "258"}, {5, Bytes(kHostEntry).at(3, {2, 1})}},
      {{"-n", VNIC ".007", "-s0"}, {5, Bytes(kIncludeEntry).at(20, {0})}},
      {{"-n", VNIC ".007", "-s", "4294967295"},
       {5, Bytes(kIncludeEntry).at(20, {255, 255, 255, 255})}},
      // An exclude entry of a NIC, whatever -o says.
      {{"-e", "-n", VNIC ".007", "-o"}, {0, kExcludeEntry}},
      // The include table has a byte for the index, the exclude table four.
      {{"-n", VNIC ".519"}, {5, kIncludeEntry}},
      {{"-e", "-n", VNIC ".519"}, {0, Bytes(kExcludeEntry).at(19, {7, 2})}},
  };
  for (const auto& [options, sent] : rows) {
    Tables tables(VM);
    EXPECT_EQ(runCommand(set(Words{"-a", "my-agent"} + options)), (CommandResult{0, "", ""}));
    ASSERT_EQ(tables.requests.size(), 2u);
    EXPECT_EQ(tables.requests[0].number, sent.first);
    EXPECT_EQ(tables.requests[0].agent, "my-agent");
    EXPECT_EQ(tables.requests[0].entries, sent.second);
    EXPECT_EQ(tables.requests[1].number, 10u);
    EXPECT_EQ(tables.requests[1].entries, kVm);
    EXPECT_EQ(tables.program().starts(), Words{kVmList});
  }
}

TEST(SetFilterTables, RevalidatesOneMachineOrNone) {
  Tables tables(VM);
  EXPECT_EQ(runCommand(set({"-a", "x", "-n", VNIC ".007", "-w", "5"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "5 10");
  EXPECT_EQ(tables.requests[1].entries, Bytes({5, 0, 0, 0}) + kUuid);

  tables.requests.clear();
  EXPECT_EQ(runCommand(set({"-a", "x", "-o", "-w", "0"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.requests[1].entries, Bytes(20)) << "the host has no identifier";

  tables.requests.clear();
  EXPECT_EQ(runCommand(set({"-a", "x", "-o", "-k", "-w", "5"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "5");
  EXPECT_TRUE(tables.program().starts().empty());
}

TEST(SetFilterTables, TakesTheNicOfAFilter) {
  OneFilter kernel;
  Tables tables;
  EXPECT_EQ(runCommand(set({"-f", kFilter, "-e", "-w", "5"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.name, kFilter);
  EXPECT_EQ(kernel.agent, "my-agent");
  EXPECT_EQ(tables.numbers(), "0 10");
  EXPECT_EQ(tables.requests[0].agent, "my-agent");
  EXPECT_EQ(tables.requests[0].entries, kExcludeEntry);
  EXPECT_EQ(tables.requests[1].entries, Bytes({5, 0, 0, 0}) + kUuid);

  tables.requests.clear();
  EXPECT_EQ(runCommand(set({"-f", kFilter, "-k"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.requests[0].entries, kIncludeEntry);
}

TEST(SetFilterTables, TheLaterAgentIsTheFrames) {
  const std::vector<std::pair<Words, std::string>> rows = {
      {{"-f", kFilter}, "my-agent"},
      {{"-a", "other", "-f", kFilter}, "my-agent"},
      {{"-f", kFilter, "-a", "other"}, "other"},
      {{"-f", kFilter, "-a", "other", "-f", kFilter}, "my-agent"},
      {{"-f", kFilter, "-a", kLongAgent}, kLongAgent},
      {{"-a", "other", "-f", "8d0c7a10"}, "kelpco-sfw"},
      {{"-f", "shared-addrset-filter-my-agent.2"}, "my-agent"},
  };
  for (const auto& [options, agent] : rows) {
    OneFilter kernel;
    Tables tables;
    EXPECT_EQ(runCommand(set(options + Words{"-k"})), (CommandResult{0, "", ""}));
    ASSERT_EQ(tables.requests.size(), 1u);
    EXPECT_EQ(tables.requests[0].agent, agent);
    EXPECT_NE(kernel.agent, "other") << "the filter's own";
  }
}

TEST(SetFilterTables, AFilterWhoseNicIsNotFoundIsReported) {
  Tables tables;
  OneFilter kernel;
  kernel.status = 0xfffffffe;
  EXPECT_EQ(
      runCommand(set({"-f", kFilter})),
      (CommandResult{1, "",
                     "ERROR: failed to get detail of filter " + std::string(kFilter) + ": -2\n"}));
  kernel.fail(40, ENOENT);
  EXPECT_EQ(runCommand(set({"-f", kFilter})), (CommandResult{1, "", "ERROR: bad vnic \n"}));
  const OneFilter other("no identifier%s");
  EXPECT_EQ(runCommand(set({"-f", kFilter})),
            (CommandResult{1, "", "ERROR: bad vnic no identifier%s\n"}));
  const OneFilter full(std::string(128, 'f'));
  EXPECT_EQ(runCommand(set({"-f", kFilter})),
            (CommandResult{1, "", "ERROR: bad vnic " + std::string(128, 'f') + "\n"}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(SetFilterTables, NeedsAnAgentAndOneEntry) {
  const std::string usage = usageOf("setfiltertables");
  const std::string agent = "ERROR: agent is missing\n";
  const std::string exclude = "ERROR: vnic or filter is missing\n";
  const std::string include = "ERROR: must specify either vnic, filter, or host\n";
  const std::vector<std::pair<Words, std::string>> rows = {
      {{}, agent},
      {{"-o"}, agent},
      {{"-e", "-n", VNIC ".007"}, agent},
      {{"-a", "x", "-e"}, exclude},
      {{"-a", "x", "-e", "-o"}, exclude},
      {{"-e", "-n", VNIC ".007", "-f", kFilter}, exclude},
      {{"-a", "x"}, include},
      {{"-a", "x", "-o", "-n", VNIC ".007"}, include},
      {{"-o", "-f", kFilter}, include},
      {{"-n", VNIC ".007", "-f", kFilter}, include},
  };
  Tables tables;
  const DirectKernel kernel;
  for (const auto& [options, line] : rows)
    EXPECT_EQ(runCommand(set(options)), (CommandResult{1, usage, line}));
  EXPECT_TRUE(tables.requests.empty());
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(SetFilterTables, RefusesWhatItCannotRead) {
  const std::string usage = usageOf("setfiltertables");
  const std::string filter(100, 'f');
  const std::vector<std::pair<Words, CommandResult>> rows = {
      {{"-a", kLongAgent + "b"}, {1, "", "ERROR: invalid agent name " + kLongAgent + "b\n"}},
      {{"-n", VNIC}, {1, "", "ERROR: bad vnic " VNIC "\n"}},
      {{"-n", ""}, {1, "", "ERROR: bad vnic \n"}},
      {{"-n", "%s%n"}, {1, "", "ERROR: bad vnic %s%n\n"}},
      {{"-f", filter}, {1, "", "ERROR: invalid filter name " + filter + "\n"}},
      {{"-s", "x"}, {1, usage, ""}},
      {{"-s", "-1"}, {1, usage, ""}},
      {{"-w", "4294967296"}, {1, usage, ""}},
      {{"-w", ""}, {1, usage, ""}},
  };
  Tables tables;
  for (const auto& [options, result] : rows)
    EXPECT_EQ(runCommand(set(Words{"-a", "x", "-o"} + options)), result) << options[1];
  EXPECT_TRUE(tables.requests.empty());
}

TEST(SetFilterTables, AChangeThatFailsIsFollowedByTheRevalidation) {
  Tables tables(VM);
  tables.errors = {{5, EEXIST}};
  EXPECT_EQ(runCommand(set({"-a", "x", "-o"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "5 10");
}

TEST(SetFilterTables, ReportsARevalidationThatFails) {
  const CommandResult failed{1, "", "ERROR: Failed to revalidate vm(s) after set weirgate table\n"};
  Tables tables(VM);
  tables.errors = {{10, EINVAL}};
  EXPECT_EQ(runCommand(set({"-a", "x", "-o"})), failed);
  EXPECT_EQ(runCommand(set({"-a", "x", "-o", "-w", "5"})), failed);
  EXPECT_EQ(runCommand(set({"-a", "x", "-o", "-w", "5", "-k"})), (CommandResult{0, "", ""}));
}

// --- clrwgttable

namespace {

Words clear(const Words& options = {}) { return Words{"clrwgttable", "-Override"} + options; }

}  // namespace

TEST(ClearWeirgateTbl, DeletesWhatItHasRead) {
  Tables tables;
  tables.exclude = kExcludeEntry;
  tables.include = kIncludeEntry + kHostEntry;
  EXPECT_EQ(runCommand(clear()), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "8 9 7 3 4 2");
  EXPECT_EQ(tables.requests[2].entries, tables.include);
  EXPECT_EQ(tables.requests[5].entries, tables.exclude);
  for (const Tables::Request& request : tables.requests) EXPECT_EQ(request.agent, "kelpco-sfw");
}

TEST(ClearWeirgateTbl, ClearsOneTable) {
  for (const auto& [words, numbers] : {std::pair<Words, const char*>{{"-i"}, "8 9 7"},
                                       {{"--incl"}, "8 9 7"},
                                       {{"-e"}, "3 4 2"},
                                       {{"--excl", "--agent", "kelpco-sfw"}, "3 4 2"}}) {
    Tables tables;
    tables.exclude = kExcludeEntry;
    tables.include = kIncludeEntry;
    EXPECT_EQ(runCommand(clear(words)), (CommandResult{0, "", ""}));
    EXPECT_EQ(tables.numbers(), numbers);
  }
  Tables tables;
  EXPECT_EQ(runCommand(clear({"-i", "-e"})),
            (CommandResult{1, "", "-i and -e are mutually exclusive, clearing both is default\n"}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(ClearWeirgateTbl, SaysWhatItDoesWithVerbosity) {
  const std::string head = "weirgate agent: my%sagent\n";
  const std::string one =
      "got the include extries for my%sagent\ncleared the include extries for my%sagent\n"
      "got the include extries for my%sagent\ncleared the exclude extries for my%sagent\n";
  Tables tables;
  tables.exclude = kExcludeEntry;
  tables.include = kIncludeEntry;
  EXPECT_EQ(runCommand(clear({"-v1", "-a", "my%sagent"})),
            (CommandResult{0, "verbose level : 1\n" + head + one, ""}));
  EXPECT_EQ(runCommand(clear({"-v", "1", "--verbose=1", "-v-5", "-a", "my%sagent", "-i"})),
            (CommandResult{0,
                           "verbose level : 2\n" + head +
                               "buflen: 32\n"
                               "got the include extries for my%sagent\n"
                               "cleared the include extries for my%sagent\n",
                           ""}));
}

TEST(ClearWeirgateTbl, TheAgentIsPrintedWholeAndSentCut) {
  Tables tables;
  const std::string agent(99, 'a');
  EXPECT_EQ(
      runCommand(clear({"-a", agent, "-v1"})),
      (CommandResult{0,
                     "verbose level : 1\nweirgate agent: " + agent + "\nEntries for " + agent +
                         " already cleared\nEntries for " + agent + " already cleared\n",
                     ""}));
  EXPECT_EQ(tables.requests[0].agent, kLongAgent);
  EXPECT_EQ(runCommand(clear({"-a", agent + "b"})),
            (CommandResult{1, "", "ERROR: agent name too long"}));
}

TEST(ClearWeirgateTbl, SaysThatThereAreNoEntries) {
  Tables tables;
  EXPECT_EQ(runCommand(clear({"-e"})),
            (CommandResult{0, "Entries for kelpco-sfw already cleared\n", ""}));
  tables.errors = {{8, ENOENT}, {3, ENOENT}};
  EXPECT_EQ(runCommand(clear()), (CommandResult{0,
                                                "No include entries found for kelpco-sfw\n"
                                                "No exclude entries found for kelpco-sfw\n",
                                                ""}));
}

TEST(ClearWeirgateTbl, ReportsTheRequestThatFails) {
  struct Row {
    unsigned long number;
    int error;
    const char* line;
    const char* requests;
  };
  const Row rows[] = {
      {8, EPERM, "failed to get include size: -1, 1\n", "8"},
      {9, ENOENT, "failed to get current include entries: -1, 2\n", "8 9"},
      {7, ENOENT, "failed to delete the include entries: -1, 2\n", "8 9 7"},
      {3, EINVAL, "failed to get exclude size: -1, 22\n", "8 9 7 3"},
      {4, ENOMEM, "failed to get current exclude entries: -1, 12\n", "8 9 7 3 4"},
      {2, EBUSY, "failed to delete the exclude entries: -1, 16\n", "8 9 7 3 4 2"},
  };
  for (const Row& row : rows) {
    Tables tables;
    tables.exclude = kExcludeEntry;
    tables.include = kIncludeEntry;
    tables.errors = {{row.number, row.error}};
    EXPECT_EQ(runCommand(clear()), (CommandResult{1, row.line, ""}));
    EXPECT_EQ(tables.numbers(), row.requests);
  }
}

TEST(ClearWeirgateTbl, DeletesWithTheSizeOfTheReply) {
  const std::vector<std::pair<std::uint32_t, std::size_t>> rows = {
      {0, 0}, {3, 3}, {32, 32}, {33, 32}, {0xffffffff, 32}};
  for (const auto& [told, sent] : rows) {
    Tables tables;
    tables.include = kIncludeEntry;
    tables.told = told;
    EXPECT_EQ(runCommand(clear({"-i"})), (CommandResult{0, "", ""}));
    EXPECT_EQ(tables.requests[2].entries.size(), sent) << told;
  }
}

TEST(ClearWeirgateTbl, WithoutMemoryItEndsWithoutAText) {
  Tables tables;
  tables.include = kIncludeEntry;
  tables.size = 0xffffffff;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand(clear()), (CommandResult{1, "", ""}));
  EXPECT_EQ(tables.numbers(), "8");
}

// --- clearallfilters

namespace {

const std::string kDestroyed =
    "Destroyed all disconnected filters (please ignore `Function not implemented' error if there "
    "is).\n";

Words clearAll(const Words& options = {}) {
  return Words{"clearallfilters", "-Override"} + options;
}

}  // namespace

TEST(ClearAllFilters, ClearsRevalidatesAndDestroys) {
  struct Row {
    Words options;
    int status;
    std::string out;
    const char* requests;
  };
  const std::string include = "Cleared weirgate include table.\n";
  const std::string exclude = "Cleared weirgate exclude table.\n";
  const std::string updated = "Updated all VMs to remove filters.\n";
  const std::string skipped = "Skip connected filters.\n";
  const Row rows[] = {
      {{}, 0, include + updated + kDestroyed, "6 10 11"},
      {{"-e"}, 0, include + exclude + updated + kDestroyed, "6 1 10 11"},
      {{"-d"}, 0, include + updated, "6 10"},
      {{"-d", "-e"}, 0, include + exclude + updated, "6 1 10"},
      {{"-o"}, 1, skipped + kDestroyed, "11"},
      {{"-e", "-o"}, 1, skipped + kDestroyed, "11"},
  };
  for (const Row& row : rows) {
    Tables tables(VM);
    EXPECT_EQ(runCommand(clearAll(row.options)),
              (CommandResult{row.status, "Removing all kelpco-sfw filters...\n" + row.out, ""}));
    EXPECT_EQ(tables.numbers(), row.requests);
    for (const Tables::Request& request : tables.requests) {
      if (request.number == 10) continue;
      EXPECT_EQ(request.agent, "kelpco-sfw");
      EXPECT_EQ(request.size, 0u);
    }
  }
}

TEST(ClearAllFilters, DelayAndOnlyExcludeEachOther) {
  Tables tables;
  EXPECT_EQ(runCommand(clearAll({"-d", "-o"})),
            (CommandResult{1, "Cannot have option -d and -o together.\n", ""}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(ClearAllFilters, DestroysAlsoWhenTheRevalidationFails) {
  Tables tables("1000:x\\n");
  EXPECT_EQ(runCommand(clearAll()), (CommandResult{1,
                                                   "Removing all kelpco-sfw filters...\n"
                                                   "Cleared weirgate include table.\n" +
                                                       kDestroyed,
                                                   ""}));
  EXPECT_EQ(tables.numbers(), "6 11");
}

TEST(ClearAllFilters, ResultsOfItsRequestsAreNotRead) {
  Tables tables(VM);
  tables.errors = {{6, EPERM}, {1, EPERM}, {11, ENOSYS}};
  EXPECT_EQ(runCommand(clearAll({"-e"})).status, 0);
  EXPECT_EQ(tables.numbers(), "6 1 10 11");
}

TEST(ClearAllFilters, TakesAnAgentOfAtMost39Characters) {
  Tables tables;
  EXPECT_EQ(runCommand(clearAll({"-a", kLongAgent, "-o"})).out,
            "Removing all " + kLongAgent + " filters...\nSkip connected filters.\n" + kDestroyed);
  EXPECT_EQ(tables.requests[0].agent, kLongAgent);
  EXPECT_EQ(runCommand(clearAll({"-a", kLongAgent + "b"})),
            (CommandResult{1, "", "ERROR: invalid agent name " + kLongAgent + "b\n"}));
}

// --- revalidatevm

namespace {

Words revalidate(const Words& options = {}) { return Words{"revalidatevm", "-Override"} + options; }

}  // namespace

TEST(RevalidateVM, RevalidatesOneOrAll) {
  Tables tables("998253:" UUID "\\n" VM);
  EXPECT_EQ(runCommand(revalidate()), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "10 10");
  EXPECT_EQ(tables.requests[1].entries, kVm);

  tables.requests.clear();
  EXPECT_EQ(runCommand(revalidate({"-w", "1000", "-u", UUID})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.numbers(), "10");
  EXPECT_EQ(tables.requests[0].entries, kVm);

  tables.requests.clear();
  EXPECT_EQ(runCommand(revalidate({"-u", UUID, "-w0"})), (CommandResult{0, "", ""}));
  EXPECT_EQ(tables.requests[0].entries, Bytes(4) + kUuid);
}

TEST(RevalidateVM, NeedsBothOrNone) {
  const std::string usage = usageOf("revalidatevm");
  const std::string one = "ERROR: Please provide both vm uuid and world id to revalidate one vm\n";
  Tables tables;
  EXPECT_EQ(runCommand(revalidate({"-w", "5"})), (CommandResult{1, usage, one}));
  EXPECT_EQ(runCommand(revalidate({"-u", UUID})), (CommandResult{1, usage, one}));
  for (const char* uuid : {"", "x", "00 01 02", VNIC})
    EXPECT_EQ(runCommand(revalidate({"-w", "5", "-u", uuid})),
              (CommandResult{1, usage, "ERROR: Bad vm uuid string.\n"}));
  for (const char* world : {"", "x", "-1", "4294967296"})
    EXPECT_EQ(runCommand(revalidate({"-w", world, "-u", UUID})), (CommandResult{1, usage, ""}));
  EXPECT_TRUE(tables.requests.empty());
}

TEST(RevalidateVM, AFailureIsTheStatusOnly) {
  Tables tables(VM);
  tables.errors = {{10, EINVAL}};
  EXPECT_EQ(runCommand(revalidate()), (CommandResult{1, "", ""}));
  EXPECT_EQ(runCommand(revalidate({"-w", "5", "-u", UUID})), (CommandResult{1, "", ""}));
}
