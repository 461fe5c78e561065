// Handlers that show and change the filter tables, against scripted devices.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "DirectKernel.h"
#include "TableKernel.h"

using namespace TableTest;

namespace {

const char kFilter[] = "nic-1002672-eth0-my-agent.2";

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
  kernel.status = 1;
  EXPECT_EQ(runCommand(set({"-f", kFilter})),
            (CommandResult{
                1, "", "ERROR: failed to get detail of filter " + std::string(kFilter) + ": 1\n"}));
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
