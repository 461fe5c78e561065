// The handlers of the insertion data path's tables and statistics, against a scripted device.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kDevice[] = "/dev/brq-tarn-ploy";

/// The insertion device: answers a request with bytes over its output and a result.
class InsertionDevice {
 public:
  struct Request {
    unsigned long number;
    Bytes input;
    std::uint32_t outputLength;
    bool outputWasZero;
  };

  InsertionDevice() {
    DeviceShim::put(kDevice, [this](const DeviceShim::Call& call) { return answer(call); });
  }
  ~InsertionDevice() { DeviceShim::put(kDevice); }
  InsertionDevice(const InsertionDevice&) = delete;
  InsertionDevice& operator=(const InsertionDevice&) = delete;

  void on(unsigned long number, const Bytes& output, int result = 0, int error = 0) {
    answers_.push_back({number, output, result, error});
  }

  /// A table: its count, and the entries with the count in front of them.
  void table(unsigned long countRequest, std::uint64_t count, std::uint64_t head,
             const std::vector<Bytes>& entries) {
    Bytes output(16, 0xee);
    put64(output, 0, head);
    for (const Bytes& entry : entries) output.insert(output.end(), entry.begin(), entry.end());
    Bytes number(8);
    on(countRequest, put64(number, 0, count));
    on(countRequest + 1, output);
  }

  const std::vector<Request>& requests() const { return requests_; }

 private:
  struct Answer {
    unsigned long number;
    Bytes output;
    int result;
    int error;
  };

  template <typename T>
  static T at(const void* frame, std::size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const std::uint8_t*>(frame) + offset, sizeof value);
    return value;
  }

  int answer(const DeviceShim::Call& call) {
    EXPECT_EQ(at<std::uint32_t>(call.argument, 0), call.request);
    EXPECT_EQ(at<std::uint32_t>(call.argument, 4), 0u);
    Request seen{call.request, Bytes(at<std::uint32_t>(call.argument, 8)),
                 at<std::uint32_t>(call.argument, 12), true};
    auto* const input = reinterpret_cast<std::uint8_t*>(at<std::uint64_t>(call.argument, 16));
    auto* const output = reinterpret_cast<std::uint8_t*>(at<std::uint64_t>(call.argument, 24));
    std::copy_n(input, seen.input.size(), seen.input.begin());
    seen.outputWasZero =
        std::all_of(output, output + seen.outputLength, [](std::uint8_t b) { return b == 0; });
    requests_.push_back(seen);
    for (const Answer& one : answers_) {
      if (one.number != call.request) continue;
      std::copy_n(one.output.begin(), std::min<std::size_t>(one.output.size(), seen.outputLength),
                  output);
      errno = one.error;
      return one.result;
    }
    errno = ENOTTY;
    return -1;
  }

  std::vector<Answer> answers_;
  std::vector<Request> requests_;
};

CommandResult run(const std::vector<std::string>& words) {
  const LogCapture log;
  return runCommand(words);
}

/// One of the three tables, and an entry of it with its row.
struct Table {
  const char* word;
  const char* name;
  unsigned long countRequest;
  std::size_t entrySize;
  std::string (*counted)(const std::string& count);
  const char* heading;
  std::size_t width;
  const char* noMemory;
};

void PrintTo(const Table& table, std::ostream* to) { *to << table.word; }

const Table kTables[] = {
    {"getsisvctable", "service", 12, 84,
     [](const std::string& count) {
       return "Service table has " + count + " entries\nservice table count " + count + "\n";
     },
     " UUID                                | FWD SPI,SI,SCID   | FWD SERVICE MAC   "
     "| REV SPI,SI,SCID   | REV SERVICE MAC   | FAILURE POLICY|\n",
     134, "Unable to allocate memory for service table entries\n"},
    {"getsinshtable", "nsh", 14, 17,
     [](const std::string& count) { return "nsh table has " + count + " entries\n"; },
     "SPI_KEY, SI_KEY | SERVICE MAC       | SERVICE TYPE  | MODE     |\n", 83,
     "Unable to allocate memory for nsh table entries\n"},
    {"getsiproxytable", "proxy", 16, 10,
     [](const std::string& count) { return "proxy table has " + count + " entries\n"; },
     " SERVICE MAC       | SERVICE MODE   | SERVICE CAN DEC | LIVENESS SUPPORT  | COPY RED MODE  "
     "|\n",
     92, "Unable to allocate memory for proxy table entries\n"},
};

/// What a table prints, with these rows.
std::string tableText(const Table& table, const std::string& count, const std::string& rows) {
  const std::string frame = std::string(table.width, '-') + "\n";
  return table.counted(count) + frame + table.heading + frame + rows + frame;
}

class InsertionTables : public testing::TestWithParam<Table> {
 protected:
  const Table& table = GetParam();
  const std::string name = table.name;
};

}  // namespace

TEST_P(InsertionTables, IsAskedForInTwoSteps) {
  InsertionDevice device;
  device.table(table.countRequest, 2, 2, {});
  EXPECT_EQ(run({table.word}).status, 0);
  ASSERT_EQ(device.requests().size(), 2u);
  EXPECT_EQ(device.requests()[0].number, table.countRequest);
  EXPECT_EQ(device.requests()[0].input, Bytes(0));
  EXPECT_EQ(device.requests()[0].outputLength, 8u);
  EXPECT_EQ(device.requests()[1].number, table.countRequest + 1);
  EXPECT_EQ(device.requests()[1].input, Bytes(8).at(0, {2}));
  EXPECT_EQ(device.requests()[1].outputLength, 16 + 2 * table.entrySize);
  EXPECT_TRUE(device.requests()[1].outputWasZero);
}

TEST_P(InsertionTables, EmptyIsSaidInALine) {
  InsertionDevice device;
  device.table(table.countRequest, 0, 9, {});
  EXPECT_EQ(run({table.word}), (CommandResult{0, name + " table is empty\n", ""}));
  EXPECT_EQ(device.requests().size(), 1u);
}

TEST_P(InsertionTables, ArgumentsMeanNothing) {
  InsertionDevice device;
  device.table(table.countRequest, 0, 0, {});
  for (const char* word : {"-h", "-?", "now", "-p"})
    EXPECT_EQ(run({table.word, word}), (CommandResult{0, name + " table is empty\n", ""}));
}

TEST_P(InsertionTables, TheSmallerOfTwoCountsIsShown) {
  for (const auto& [count, head, shown] :
       std::vector<std::array<std::uint64_t, 3>>{{1, 3, 1}, {3, 1, 1}, {2, ~0ull, 2}, {2, 0, 0}}) {
    InsertionDevice device;
    device.table(table.countRequest, count, head, {});
    const LogCapture log;
    const std::string out = runCommand({table.word}).out;
    const std::string number = std::to_string(shown);
    EXPECT_EQ(out.substr(0, table.counted(number).size()), table.counted(number));
    const auto lines = static_cast<std::uint64_t>(std::count(out.begin(), out.end(), '\n'));
    const bool service = table.countRequest == 12;
    EXPECT_EQ(lines, shown + (service ? 6 : 5));
    const std::string cut = std::to_string(head) + " " + name + " entries returned for room of " +
                            std::to_string(count) + "\n";
    EXPECT_EQ(log.has(LOG_WARNING, cut), head > count);
  }
}

TEST_P(InsertionTables, FailuresGoToStandardOutput) {
  {
    InsertionDevice device;
    EXPECT_EQ(run({table.word}),
              (CommandResult{1, "Failed to get " + name + " table count, error -1\n", ""}));
    device.on(table.countRequest, Bytes(8), 5);
    EXPECT_EQ(run({table.word}),
              (CommandResult{1, "Failed to get " + name + " table count, error 5\n", ""}));
  }
  for (const int result : {-1, 5}) {
    InsertionDevice device;
    device.on(table.countRequest, Bytes(8).at(0, {1}));
    device.on(table.countRequest + 1, Bytes(0), result, EIO);
    EXPECT_EQ(run({table.word}),
              (CommandResult{1, "Failed to get " + name + " table entries\n", ""}));
  }
}

TEST_P(InsertionTables, NeedsMemory) {
  const CommandResult none{1, table.noMemory, ""};
  {
    InsertionDevice device;
    device.table(table.countRequest, 1, 1, {});
    DeviceShim::failNextCalloc();
    EXPECT_EQ(run({table.word}), none);
    EXPECT_EQ(device.requests().size(), 1u);
  }
  // Sizes above 32 bits, and those that would wrap around to a small one in 64.
  const std::uint64_t most = std::uint64_t{UINT32_MAX} / table.entrySize;
  for (const std::uint64_t count :
       {most, most + 1, std::uint64_t{1} << 32, UINT64_MAX / table.entrySize + 1, UINT64_MAX}) {
    InsertionDevice device;
    device.table(table.countRequest, count, count, {});
    EXPECT_EQ(run({table.word}), none) << count;
    EXPECT_EQ(device.requests().size(), 1u);
  }
}

INSTANTIATE_TEST_SUITE_P(All, InsertionTables, testing::ValuesIn(kTables),
                         [](const auto& table) { return std::string(table.param.name); });

TEST(GetSISvcTable, ShowsEveryPolicy) {
  const auto service = [](const std::string& uuid, int policy) {
    return Bytes(84, 0xee)
        .text(0, uuid)
        .at(37, {0x01, 0x02, 0x03, 0x99})
        .at(41, {255, 0, 0, 0, 7, 0, 0, 0})
        .at(49, {0x00, 0x50, 0x56, 0x99, 0x2b, 0x26})
        .at(58, {0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f})
        .at(64, {0xff, 0xff, 0xff, 0x00})
        .at(68, {0xff, 0xff, 0xff, 0xff, 1, 0, 0, 0})
        .at(79, {policy});
  };
  const std::string uuid = "5a43ddda-c21a-632a-4ae1-00505699723f";
  std::vector<Bytes> entries;
  std::string rows;
  const char* words[] = {"INVALID", "DROP", "ALLOW", "DEFAULT", "UNKNOWN"};
  for (int policy = 0; policy < 5; ++policy) {
    entries.push_back(service(uuid + std::string(1, '\0'), policy));
    const std::string word = words[policy];
    rows += uuid +
            " |    66051,255,7    | 00:50:56:99:2b:26 | 16777215,4294967295,1    |"
            " 0a:0b:0c:0d:0e:0f | " +
            word + std::string(14 - word.size(), ' ') + "|\n";
  }
  // A text that fills its field; what follows it is not part of it.
  entries.push_back(service(std::string(37, 'u'), 255));
  rows += std::string(37, 'u') +
          "|    66051,255,7    | 00:50:56:99:2b:26 | 16777215,4294967295,1    |"
          " 0a:0b:0c:0d:0e:0f | UNKNOWN       |\n";
  InsertionDevice device;
  device.table(12, 6, 6, entries);
  EXPECT_EQ(run({"getsisvctable"}), (CommandResult{0, tableText(kTables[0], "6", rows), ""}));
}

TEST(GetSINshTable, ShowsEveryTypeAndMode) {
  const auto nsh = [](int spi, int si, int type, int mode) {
    return Bytes(17, 0xee)
        .at(0, {0, 0, spi, 0xff})
        .at(4, {si, 0, 0, 0})
        .at(9, {0x00, 0x50, 0x56, 0x99, 0x2b, si})
        .at(15, {type, mode});
  };
  InsertionDevice device;
  device.table(14, 4, 4,
               {nsh(1, 255, 0, 0), nsh(2, 254, 1, 1), nsh(3, 9, 2, 2), nsh(4, 8, 255, 255)});
  EXPECT_EQ(run({"getsinshtable"}),
            (CommandResult{0,
                           tableText(kTables[1], "4",
                                     "1        ,255   | 00:50:56:99:2b:ff | COMPATIBILITY | COPY   "
                                     "  |\n"
                                     "2        ,254   | 00:50:56:99:2b:fe | NATIVE        | "
                                     "REDIRECT |\n"
                                     "3        ,9     | 00:50:56:99:2b:09 | UNKNOWN       | "
                                     "UNKNOWN  |\n"
                                     "4        ,8     | 00:50:56:99:2b:08 | UNKNOWN       | "
                                     "UNKNOWN  |\n"),
                           ""}));
}

TEST(GetSIProxyTable, EachByteIsReadAsYesOrNo) {
  const auto proxy = [](int last, int native, int decrypt, int liveness, int redirect) {
    return Bytes(10).at(0,
                        {0x00, 0x50, 0x56, 0x99, 0x2b, last, native, decrypt, liveness, redirect});
  };
  InsertionDevice device;
  device.table(16, 4, 4,
               {proxy(1, 0, 0, 0, 0), proxy(2, 1, 0, 255, 0), proxy(3, 0, 2, 0, 128),
                proxy(4, 255, 255, 255, 255)});
  EXPECT_EQ(
      run({"getsiproxytable"}),
      (CommandResult{
          0,
          tableText(kTables[2], "4",
                    " 00:50:56:99:2b:01 | COMPATIBILITY  | NO              | NOT REQUIRED      "
                    "| COPY           |\n"
                    " 00:50:56:99:2b:02 | NATIVE         | NO              | REQUIRED          "
                    "| COPY           |\n"
                    " 00:50:56:99:2b:03 | COMPATIBILITY  | YES             | NOT REQUIRED      "
                    "| REDIRECT       |\n"
                    " 00:50:56:99:2b:04 | NATIVE         | YES             | REQUIRED          "
                    "| REDIRECT       |\n"),
          ""}));
}

// --- getsisvmstats

namespace {

const char kCalling[] = "calling the SI Ioctl for stats ...\n";

}  // namespace

TEST(GetSISVMProxyStats, ShowsAllWordsButTheFifth) {
  InsertionDevice device;
  Bytes output(160);
  for (std::size_t i = 0; i < 20; ++i) put64(output, 8 * i, 1000 + i);
  put64(output, 152, ~0ull);
  device.on(11, output);
  const char* names[] = {"rx_from_svm",
                         "rx_from_iochain",
                         "to_svm_liveness_pkts",
                         "from_svm_liveness_pkts",
                         nullptr,
                         "native_length_patch_fail",
                         "bad_eth_hdr",
                         "quench",
                         "get_nsh_fail",
                         "ingress_inject_fail",
                         "copy_fail",
                         "nsh_ttl_expired",
                         "zero_si",
                         "unknown_next_hop",
                         "set_nsh_fail",
                         "push_headroom_fail",
                         "insufficient_decap_bytes",
                         "insufficient_spf_bytes",
                         "insufficient_map_bytes",
                         "partial_copy"};
  const auto padded = [](std::string text) { return text.append(30 - text.size(), ' '); };
  std::string expected = kCalling + padded("Statistic name") + "|  " + padded("Statistic value") +
                         "\n" + std::string(60, '-') + "\n";
  for (std::size_t i = 0; i < 20; ++i) {
    if (names[i] == nullptr) continue;
    const std::string value = i == 19 ? "18446744073709551615" : std::to_string(1000 + i);
    expected += padded(names[i]) + "|  " + padded(value) + "\n";
  }
  EXPECT_EQ(run({"getsisvmstats", "-p", "67108875"}), (CommandResult{0, expected, ""}));
  ASSERT_EQ(device.requests().size(), 1u);
  EXPECT_EQ(device.requests()[0].input, Bytes({0x0b, 0, 0, 4}));
  EXPECT_EQ(device.requests()[0].outputLength, 160u);
  EXPECT_TRUE(device.requests()[0].outputWasZero);
}

TEST(GetSISVMProxyStats, SaysWhatItDoesBeforeItAsks) {
  // The request may hang: what is being waited for has to be there by then.
  const LogCapture log;
  off_t written = -1;
  DeviceShim::put(kDevice, [&](const DeviceShim::Call&) {
    struct stat output {};
    if (fstat(STDOUT_FILENO, &output) == 0) written = output.st_size;
    return 0xbad0003;
  });
  runCommand({"getsisvmstats", "-p", "7"});
  DeviceShim::put(kDevice);
  EXPECT_EQ(written, static_cast<off_t>(std::strlen(kCalling)));
}

TEST(GetSISVMProxyStats, TenCharactersOfThePortAreKept) {
  const struct {
    const char* text;
    Bytes input;
  } ports[] = {{"4294967295", {255, 255, 255, 255}},
               {"00000000123", {12, 0, 0, 0}},
               {"9999999999", {255, 255, 255, 255}},
               {"12x", {12, 0, 0, 0}},
               {"port", {0, 0, 0, 0}},
               {"", {0, 0, 0, 0}}};
  for (const auto& port : ports) {
    InsertionDevice device;
    device.on(11, Bytes(160));
    EXPECT_EQ(run({"getsisvmstats", "-p", port.text}).status, 0) << port.text;
    ASSERT_EQ(device.requests().size(), 1u);
    EXPECT_EQ(device.requests()[0].input, port.input) << port.text;
  }
}

TEST(GetSISVMProxyStats, NeedsThePort) {
  const InsertionDevice device;
  EXPECT_EQ(run({"getsisvmstats"}),
            (CommandResult{1,
                           "port number not specified. Please use -p option" +
                               runCommand({"getsisvmstats", "-h"}).out,
                           ""}));
  EXPECT_TRUE(device.requests().empty());
}

TEST(GetSISVMProxyStats, SaysWhatFailed) {
  {
    InsertionDevice device;
    device.on(11, Bytes(0), 0xbad0003);
    EXPECT_EQ(
        run({"getsisvmstats", "-p", "4294967295"}),
        (CommandResult{1,
                       std::string(kCalling) +
                           "Proxy stats not found, please check if port 4294967295 is GVM port",
                       ""}));
  }
  const struct {
    int result, error;
    const char* text;
  } failures[] = {{-1, EIO, "4294967295 error code 5"}, {0xbad0002, 0, "195887106 error code 0"}};
  for (const auto& [result, error, text] : failures) {
    InsertionDevice device;
    device.on(11, Bytes(0), result, error);
    EXPECT_EQ(
        run({"getsisvmstats", "-p", "7"}),
        (CommandResult{
            1, std::string(kCalling) + "Failed to get the port stats error " + text + "\n", ""}));
  }
}
