// getflows, against a scripted kernel that answers on the firewall's device.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "FlowBytes.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "TimeZone.h"
#include "tarnfw.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

const std::string kLine =
    "102030405060708 Active gre 0800 IN 1003 4 5  10.0.0.1 -> 10.0.0.2 11 22 33 44\n";

std::uint32_t word(const Bytes& bytes, std::size_t offset) {
  std::uint32_t value;
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

/// Counts of one kind.
struct Counts {
  std::uint32_t records = 0;
  std::uint32_t attributes = 0;
  std::uint32_t attributeLength = 0;
  std::uint32_t length = 0;
};

/// Where the counts of the three kinds stand in a query.
constexpr std::size_t kKinds[] = {216, 232, 248};

/// Answers request 22, and keeps every query as it came.
class FlowKernel : public HandlerKernel {
 public:
  FlowKernel() {
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) { return take(call); });
  }
  ~FlowKernel() { DeviceShim::put("/dev/brq-tarn"); }

  /// Has these flows, all of them active.
  explicit FlowKernel(const std::vector<Bytes>& flows) : FlowKernel() {
    for (const Bytes& flow : flows) {
      ++counted[0].records;
      counted[0].length += static_cast<std::uint32_t>(flow.size());
      counted[0].attributeLength += static_cast<std::uint32_t>(flow.size() - 251);
      counted[0].attributes += flow[2];
      buffer.insert(buffer.end(), flow.begin(), flow.end());
    }
    returned[0] = counted[0];
  }

  Counts counted[3];                  // what it says to operation 1
  Counts returned[3];                 // and to operation 2
  Bytes buffer = Bytes(32, 0xee);     // what it writes, from the start of the buffer
  int countErrno = 0, readErrno = 0;  // with which a call fails, after it was answered
  std::uint32_t frameStatus = 0;      // what it writes into the frame of every request
  std::vector<Bytes> queries;
  std::function<void(FlowKernel&)> beforeEach;  // gets it before it answers

 private:
  int take(const DeviceShim::Call& call) {
    if (beforeEach) beforeEach(*this);
    auto* const frame = static_cast<std::byte*>(call.argument);
    std::uint32_t length;
    std::uint64_t address;
    std::memcpy(&length, frame + 8, sizeof length);
    std::memcpy(&address, frame + 12, sizeof address);
    EXPECT_EQ(call.request, 22u);
    EXPECT_EQ(length, 264u);
    auto* const body = reinterpret_cast<std::byte*>(address);
    Bytes query(264);
    std::memcpy(query.data(), body, 264);
    queries.push_back(query);

    const bool reads = query[200] == 2;
    for (std::size_t kind = 0; kind < 3; ++kind)
      std::memcpy(body + kKinds[kind], &(reads ? returned : counted)[kind], sizeof(Counts));
    if (reads) {
      std::uint64_t to;
      std::memcpy(&to, query.data() + 208, sizeof to);
      std::memcpy(reinterpret_cast<void*>(to), buffer.data(),
                  std::min<std::size_t>(buffer.size(), word(query, 204)));
    }
    std::memcpy(frame + 4, &frameStatus, sizeof frameStatus);
    errno = reads ? readErrno : countErrno;
    return errno != 0 ? -1 : 0;
  }
};

CommandResult show(const std::vector<std::string>& options = {}) {
  std::vector<std::string> words{"getflows", "-f", kFilter};
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

std::string retrieved(int active, int inactive = 0, int drop = 0) {
  return "Count retrieved from kernel active=" + std::to_string(active) +
         ", inactive=" + std::to_string(inactive) + ", drop=" + std::to_string(drop) + "\n";
}

}  // namespace

TEST(GetFlows, AsksForTheCountsAndThenForTheRecords) {
  FlowKernel kernel({ipv4Flow(47), ipv4Flow(47)});
  EXPECT_EQ(show(), (CommandResult{0, retrieved(2) + kLine + kLine, ""}));
  ASSERT_EQ(kernel.queries.size(), 2u);
  Bytes count = Bytes(264).text(0, "kelpco-sfw").text(100, kFilter);
  count.at(199, {7}).at(200, {1, 1, 0, 1});  // type, then operation, flush, RTT, attributes
  EXPECT_EQ(kernel.queries[0], count);
  Bytes read = kernel.queries[1];
  EXPECT_EQ(word(read, 204), 32u + 502u);
  EXPECT_NE(Bytes(read.begin() + 208, read.begin() + 216), Bytes(8)) << "the buffer's address";
  put64(put32(read, 204, 0), 208, 0);
  count.at(200, {2});
  EXPECT_EQ(read, put32(put32(count, 216, 2), 228, 502));
}

TEST(GetFlows, AFilterWithoutAnAgentHasTheDefaultOneBesideItsSelector) {
  FlowKernel kernel;
  const std::string name(99, 'f');
  runCommand({"getflows", "-f", name});
  ASSERT_EQ(kernel.queries.size(), 1u);
  EXPECT_EQ(Bytes(kernel.queries[0].begin(), kernel.queries[0].begin() + 200),
            Bytes(200).text(0, "kelpco-sfw").text(100, std::string(63, 'f')).at(199, {8}));
}

TEST(GetFlows, TheAgentHasMoreRoomThanInASelector) {
  FlowKernel kernel;
  const std::string agent(40, 'a');
  const std::string name = "nic-1-eth0-" + agent + ".2";
  runCommand({"getflows", "-f", name});
  ASSERT_EQ(kernel.queries.size(), 1u);
  EXPECT_EQ(Bytes(kernel.queries[0].begin(), kernel.queries[0].begin() + 200),
            Bytes(200).text(0, agent).text(100, name).at(199, {7}));
}

TEST(GetFlows, ItsOptionsStandInBothRequests) {
  struct Row {
    std::vector<std::string> options;
    Bytes flags;  // flush, RTT, attributes
  };
  const std::vector<Row> rows = {
      {{"-F", "0"}, Bytes({1, 0, 1})}, {{"-F1"}, Bytes({0, 0, 1})},   {{"-R"}, Bytes({1, 1, 1})},
      {{"-a"}, Bytes({1, 0, 0})},      {{"-aRF1"}, Bytes({0, 1, 0})},
  };
  for (const Row& row : rows) {
    FlowKernel kernel({ipv4Flow(47)});
    EXPECT_EQ(show(row.options), (CommandResult{0, retrieved(1) + kLine, ""}));
    for (const Bytes& query : kernel.queries)
      EXPECT_EQ(Bytes(query.begin() + 201, query.begin() + 204), row.flags);
    EXPECT_EQ(kernel.queries.size(), 2u);
  }
}

TEST(GetFlows, RefusesValuesThatAreNone) {
  const FlowKernel kernel;
  const auto refused = [](const std::string& line) { return CommandResult{1, "", line}; };
  EXPECT_EQ(show({"-F", "2"}), refused("ERROR: Invalid flush value 2, expected 0 or 1\n"));
  EXPECT_EQ(show({"-F", "-1"}), refused("ERROR: Invalid flush value -1, expected 0 or 1\n"));
  EXPECT_EQ(show({"-F", "no"}), refused("ERROR: Invalid flush value no, expected 0 or 1\n"));
  EXPECT_EQ(show({"-F", "4294967296"}),
            refused("ERROR: Invalid flush value 4294967296, expected 0 or 1\n"));
  EXPECT_EQ(show({"-T", "x"}), refused("ERROR: Invalid flow type: x\n"));
  EXPECT_EQ(show({"-T", "A"}), refused("ERROR: Invalid flow type: A\n"));
  EXPECT_EQ(show({"-T", ""}), refused("ERROR: Invalid flow type: \n"));
  EXPECT_EQ(show({"-t", "soon"}), refused("ERROR: Invalid refresh interval soon\n"));
  EXPECT_EQ(show({"-t", "-1"}), refused("ERROR: Invalid refresh interval -1\n"));
  EXPECT_TRUE(kernel.queries.empty());
}

TEST(GetFlows, WithoutRecordsItWaitsTwoSeconds) {
  FlowKernel kernel;
  Sleeps::clear();
  EXPECT_EQ(show({"-n"}), (CommandResult{0, "No records found\n", ""}));
  EXPECT_EQ(Sleeps::seen(), std::vector<unsigned int>{2});
}

TEST(GetFlows, ARequestThatFailsCountsNothing) {
  FlowKernel kernel({ipv4Flow(47)});
  kernel.countErrno = EIO;
  EXPECT_EQ(show(), (CommandResult{0, "No records found\n", ""}));
  kernel.countErrno = 0;
  kernel.readErrno = EIO;
  EXPECT_EQ(show(), (CommandResult{0, retrieved(0), ""}));
}

TEST(GetFlows, DoesNotReadTheStatusOfTheFrame) {
  FlowKernel kernel({ipv4Flow(47)});
  kernel.frameStatus = 21;
  EXPECT_EQ(show(), (CommandResult{0, retrieved(1) + kLine, ""}));
}

TEST(GetFlows, PrintsNumbersOnly) {
  FlowKernel kernel;
  kernel.counted[0] = {1, 2, 3, 4};
  kernel.counted[1] = {5, 6, 7, 8};
  kernel.counted[2] = {~0u, 10, 11, 12};
  Sleeps::clear();
  EXPECT_EQ(show({"-n"}),
            (CommandResult{0,
                           "Counts retrieved from kernel:\n"
                           "      Active: numRecords = 1, totalAttr = 2, attrLen = 3, len = 4\n"
                           "      Inactive: numRecords = 5, totalAttr = 6, attrLen = 7, len = 8\n"
                           "      Drop: numRecords = 4294967295, totalAttr = 10, attrLen = 11, len "
                           "= 12\n",
                           ""}));
  EXPECT_TRUE(Sleeps::seen().empty());
}

TEST(GetFlows, ClearsWhatItDoesNotWant) {
  const Counts all[3] = {{1, 2, 3, 254}, {2, 4, 6, 508}, {3, 6, 9, 762}};
  const char* const words[3] = {"active", "i", "dropped"};
  for (std::size_t wanted = 0; wanted < 3; ++wanted) {
    FlowKernel kernel;
    std::copy(std::begin(all), std::end(all), kernel.counted);
    EXPECT_EQ(show({"-T", words[wanted]}), (CommandResult{0, retrieved(0), ""}));
    ASSERT_EQ(kernel.queries.size(), 2u);
    EXPECT_EQ(word(kernel.queries[1], 204), 32 + all[wanted].length);
    for (std::size_t kind = 0; kind < 3; ++kind) {
      const Counts sent = kind == wanted ? all[kind] : Counts{};
      EXPECT_EQ(std::memcmp(&kernel.queries[1][kKinds[kind]], &sent, sizeof sent), 0) << kind;
    }
  }
}

TEST(GetFlows, StepsByTheLengthOfARecordWithItsAttributes) {
  Bytes flow = ipv4Flow(47);
  flow.at(2, {1});
  Bytes attribute(18);
  put64(put32(attribute.at(0, {9, 0, 1}), 4, 18), 10, 77);
  flow.insert(flow.end(), attribute.begin(), attribute.end());
  put16(flow, 0, 269);
  FlowKernel kernel({flow, ipv4Flow(47)});
  std::string line = kLine;
  line.insert(line.size() - 1, " attr: 77");
  EXPECT_EQ(show(), (CommandResult{0, retrieved(2) + line + kLine, ""}));
}

TEST(GetFlows, PrintsTimesWhenItIsVerboseAndNothingElse) {
  const LogCapture log;
  const TimeZone zone("UTC0");
  FlowKernel kernel({ipv4Flow(47)});
  std::string line = kLine;
  line.insert(line.size() - 1,
              " Start: Tue, 14 Nov 2023 22:13:20 +0000, End: Tue, 14 Nov 2023 22:14:20 +0000");
  EXPECT_EQ(show({"-v"}), (CommandResult{0, retrieved(1) + line, ""}));
  unsigned int level = 99;
  FW_GetLibVerboseLevel(0, &level);
  EXPECT_EQ(level, 0u) << "the level is the command's own";
}

TEST(GetFlows, RepeatsAfterItsInterval) {
  FlowKernel kernel({ipv4Flow(47)});
  int pass = 0;
  kernel.beforeEach = [&](FlowKernel& self) {
    if (self.queries.size() % 2 == 0 && ++pass == 3) self.counted[0].records = 2;
  };
  Sleeps::clear();
  EXPECT_EQ(show({"-t", "5"}),
            (CommandResult{1, retrieved(1) + kLine + retrieved(1) + kLine,
                           "ERROR: invalid flow record count 2, totalLen = 251, attrLen = 0\n"}));
  EXPECT_EQ(Sleeps::seen(), (std::vector<unsigned int>{5, 5}));
  EXPECT_EQ(word(kernel.queries[2], 216), 0u) << "the counts are cleared for every pass";
  EXPECT_EQ(word(kernel.queries[2], 204), 0u);
}

TEST(GetFlows, RepeatsNumbersAfterItsIntervalUntilItIsEnded) {
  EXPECT_FRESH([] {
    FlowKernel kernel({ipv4Flow(47)});
    kernel.beforeEach = [](const FlowKernel& self) {
      if (self.queries.size() < 3) return;
      std::_Exit(Sleeps::seen() == std::vector<unsigned int>{5, 5, 5} ? 0 : 1);
    };
    Sleeps::clear();
    show({"-n", "-t", "5"});
    ADD_FAILURE() << "it has ended by itself";
  });
}

TEST(GetFlows, WaitsForRecordsAsLongAsItRepeats) {
  FlowKernel kernel;
  kernel.beforeEach = [](FlowKernel& self) {
    if (self.queries.size() == 2) self.counted[0] = {1, 0, 0, 0};
  };
  Sleeps::clear();
  EXPECT_EQ(show({"-t0"}),
            (CommandResult{1, "No records found\nNo records found\n",
                           "ERROR: invalid flow record count 1, totalLen = 0, attrLen = 0\n"}));
  EXPECT_EQ(Sleeps::seen(), (std::vector<unsigned int>{2, 2}));
}

// --- Kernels that lie

TEST(GetFlows, CountsThatDoNotAgreeAreRefused) {
  struct Row {
    Counts active, drop;
    const char* line;
  };
  const Row rows[] = {
      {{2, 0, 0, 251}, {}, "2, totalLen = 251, attrLen = 0"},
      {{1, 0, 0, 502}, {}, "1, totalLen = 502, attrLen = 0"},
      {{1, 1, 252, 251}, {}, "1, totalLen = 251, attrLen = 252"},
      // What is left after a wrapped subtraction would be this many.
      {{17111423, 0, 91, 0}, {}, "17111423, totalLen = 0, attrLen = 91"},
      {{~0u, 0, 0, 0}, {2, 0, 0, 251}, "1, totalLen = 251, attrLen = 0"},
      {{1, 0, 0, ~0u}, {0, 0, 0, 252}, "1, totalLen = 251, attrLen = 0"},
      {{1, 0, ~0u, 251}, {0, 0, 1, 0}, "1, totalLen = 251, attrLen = 0"},
      // These agree with each other, and the length does not fit.
      {{17111423, 0, 0, 4294967173}, {1, 0, 0, 251}, "17111424, totalLen = 128, attrLen = 0"},
      {{~0u, ~0u, ~0u, ~0u}, {}, "-1, totalLen = 4294967295, attrLen = 4294967295"},
  };
  for (const Row& row : rows) {
    FlowKernel kernel;
    kernel.counted[0] = row.active;
    kernel.counted[2] = row.drop;
    EXPECT_EQ(
        show(),
        (CommandResult{1, "", std::string("ERROR: invalid flow record count ") + row.line + "\n"}));
    EXPECT_EQ(kernel.queries.size(), 1u);
  }
}

TEST(GetFlows, ASizeThatWrapsIsRefused) {
  FlowKernel kernel;
  kernel.counted[0] = {1, 1, ~0u - 251, ~0u};
  EXPECT_EQ(show(), (CommandResult{1, "", "ERROR: invalid flow bufferSize 31\n"}));
}

TEST(GetFlows, ReportsThatThereIsNoMemory) {
  FlowKernel kernel({ipv4Flow(47)});
  kernel.beforeEach = [](FlowKernel&) { DeviceShim::failNextCalloc(); };
  EXPECT_EQ(show(),
            (CommandResult{1, "", "ERROR: no memory for getting 1 flow records (283 bytes)\n"}));
}

TEST(GetFlows, ALengthThatLeadsOutOfTheBufferEndsTheList) {
  for (const int length : {0, 1, 250, 252, 502, 65535}) {
    const LogCapture log;
    Bytes last = ipv4Flow(47);
    FlowKernel kernel({ipv4Flow(47), last});
    put16(kernel.buffer, 32 + 251, static_cast<std::uint16_t>(length));
    EXPECT_EQ(show(), (CommandResult{0, retrieved(2) + kLine, ""})) << length;
    EXPECT_TRUE(log.has(4, "flow 2 of 2 has " + std::to_string(length) + " bytes, 251 are left\n"))
        << length;
  }
}

TEST(GetFlows, ReturnedCountsBeyondTheBufferEndWithIt) {
  const LogCapture log;
  FlowKernel kernel({ipv4Flow(47)});
  for (Counts& counts : kernel.returned) counts.records = ~0u;
  EXPECT_EQ(show(), (CommandResult{0, retrieved(-1, -1, -1) + kLine, ""}));
  EXPECT_TRUE(log.has(4, "flow 2 of 12884901885 has 0 bytes, 0 are left\n"));
}
