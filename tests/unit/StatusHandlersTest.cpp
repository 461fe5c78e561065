// The handlers that make direct requests, against scripted devices.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

template <typename T>
T load(const void* from, std::size_t offset) {
  T value;
  std::memcpy(&value, static_cast<const std::byte*>(from) + offset, sizeof value);
  return value;
}

/// A control device for the length of a test.
class Device {
 public:
  Device(const char* name, DeviceShim::Answer answer) : name_(name) {
    DeviceShim::put(name_, std::move(answer));
  }
  ~Device() { DeviceShim::put(name_); }
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

 private:
  const char* name_;
};

/// The table device with an include table, and what it says instead of the truth.
struct Tables {
  Bytes table = Bytes(0);
  std::optional<std::uint32_t> size = {}, filled = {};
  int sizeError = 0, readError = 0;
  std::vector<Bytes> frames = {};

  int answer(const DeviceShim::Call& call) {
    auto* const frame = static_cast<std::byte*>(call.argument);
    const bool read = call.request == 9;
    EXPECT_TRUE(read || call.request == 8) << call.request;
    Bytes seen(read ? 52 : 44);
    std::memcpy(seen.data(), frame, seen.size());
    frames.push_back(seen);
    if (const int error = read ? readError : sizeError; error != 0) {
      errno = error;
      return -1;
    }
    if (!read) {
      const std::uint32_t reported = size.value_or(static_cast<std::uint32_t>(table.size()));
      std::memcpy(frame + 40, &reported, 4);
      return 0;
    }
    const auto room = load<std::uint32_t>(frame, 48);
    auto* const entries = reinterpret_cast<std::byte*>(load<std::uint64_t>(frame, 40));
    std::memcpy(entries, table.data(), std::min<std::size_t>(table.size(), room));
    const std::uint32_t reported = filled.value_or(static_cast<std::uint32_t>(table.size()));
    std::memcpy(frame + 48, &reported, 4);
    return 0;
  }
};

CommandResult status(Tables& tables, const std::vector<std::string>& words = {"getfwstatus"}) {
  const LogCapture log;
  const Device device("/dev/weirgatetbl",
                      [&](const DeviceShim::Call& call) { return tables.answer(call); });
  return runCommand(words);
}

const CommandResult kEnabled{0, "Distributed firewall status: enabled\n", ""};
const CommandResult kDisabled{0, "Distributed firewall status: disabled\n", ""};

const Bytes kHostEntry = Bytes(15).at(0, {6, 12, 0, 2});
const Bytes kNicEntry = Bytes(32).at(0, {4, 29, 0});

Bytes operator+(const Bytes& a, const Bytes& b) {
  Bytes both(a.size() + b.size());
  std::copy(a.begin(), a.end(), both.begin());
  std::copy(b.begin(), b.end(), both.begin() + static_cast<std::ptrdiff_t>(a.size()));
  return both;
}

/// What a request of the firewall device asked for.
struct Asked {
  unsigned long number = 0;
  Bytes frame = Bytes(0);
  Bytes body = Bytes(0);
};

/// Runs a command on a firewall device that keeps the requests and answers with `reply` over their
/// bodies.
CommandResult onFirewall(std::vector<Asked>& asked, const std::vector<std::string>& words,
                         const Bytes& reply = Bytes(0), int error = 0) {
  const LogCapture log;
  const Device device("/dev/brq-tarn", [&](const DeviceShim::Call& call) {
    Asked one{call.request, Bytes(20), Bytes(load<std::uint32_t>(call.argument, 8))};
    std::memcpy(one.frame.data(), call.argument, 20);
    void* const body = reinterpret_cast<void*>(load<std::uint64_t>(call.argument, 12));
    std::memcpy(one.body.data(), body, one.body.size());
    asked.push_back(one);
    std::copy_n(reply.data(), std::min(reply.size(), one.body.size()),
                static_cast<std::uint8_t*>(body));
    std::memset(static_cast<std::byte*>(call.argument) + 4, 0x5a, 4);  // the status is not read
    errno = error;
    return error == 0 ? 0 : -1;
  });
  return runCommand(words);
}

}  // namespace

// --- getfwstatus

TEST(GetFWStatus, IsEnabledWhenTheTableHasTheHost) {
  for (const Bytes& table : {kHostEntry, kNicEntry + kHostEntry, Bytes({6, 0, 0})}) {
    Tables tables{table};
    EXPECT_EQ(status(tables), kEnabled);
    ASSERT_EQ(tables.frames.size(), 2u);
    EXPECT_EQ(tables.frames[0], Bytes(44).text(0, "kelpco-sfw"));
    std::memset(tables.frames[1].data() + 40, 0, 8);  // where the buffer is
    EXPECT_EQ(tables.frames[1],
              Bytes(52).text(0, "kelpco-sfw").at(48, {static_cast<int>(table.size())}));
  }
}

TEST(GetFWStatus, IsDisabledOtherwise) {
  Tables empty;
  EXPECT_EQ(status(empty), kDisabled);
  EXPECT_EQ(empty.frames.size(), 1u);
  Tables other{kNicEntry + Bytes({5, 2, 0, 6, 0})};
  EXPECT_EQ(status(other), kDisabled);
  Tables none;
  none.sizeError = ENOENT;
  EXPECT_EQ(status(none), kDisabled);
}

TEST(GetFWStatus, OtherFailuresSayNothing) {
  for (const int error : {EINVAL, ENOMEM, EPERM}) {
    Tables noSize{kHostEntry};
    noSize.sizeError = error;
    EXPECT_EQ(status(noSize), (CommandResult{1, "", ""})) << error;
  }
  // The table that was there a moment ago.
  for (const int error : {ENOENT, EINVAL}) {
    Tables noTable{kHostEntry};
    noTable.readError = error;
    EXPECT_EQ(status(noTable), (CommandResult{1, "", ""})) << error;
  }
}

TEST(GetFWStatus, LeavesItsArgumentsAlone) {
  Tables tables{kHostEntry};
  EXPECT_EQ(status(tables, {"getfwstatus", "-h", "--nonesuch", "x"}), kEnabled);
}

TEST(GetFWStatus, EntriesThatAreCutAreNone) {
  const Bytes whole = kNicEntry + kHostEntry;
  for (std::uint32_t filled = 0; filled < whole.size(); ++filled) {
    Tables tables{whole};
    tables.filled = filled;
    EXPECT_EQ(status(tables), kDisabled) << filled;
  }
  Tables longValue{Bytes({6, 0xff, 0xff}) + Bytes(20)};
  EXPECT_EQ(status(longValue), kDisabled);
}

TEST(GetFWStatus, AReplyThatCountsMoreThanItsRoomIsCut) {
  for (const std::uint32_t filled : {33u, 0xffffffffu}) {
    Tables tables{kNicEntry};
    tables.filled = filled;
    EXPECT_EQ(status(tables), kDisabled) << filled;
  }
}

TEST(GetFWStatus, SaysWhenThereIsNoMemory) {
  Tables tables{kHostEntry};
  tables.size = 0xffffffff;
  const LogCapture log;
  const Device device("/dev/weirgatetbl", [&](const DeviceShim::Call& call) {
    DeviceShim::failNextCalloc();
    return tables.answer(call);
  });
  EXPECT_EQ(runCommand({"getfwstatus"}),
            (CommandResult{1, "", "ERROR: no memory for include table of size -1\n"}));
}

// --- Thresholds

TEST(GetThresholds, PrintsWhatTheKernelHas) {
  std::vector<Asked> asked;
  EXPECT_EQ(onFirewall(asked, {"getthresholds"}, Bytes({0xff, 80, 25, 0xff, 0x88, 0x13, 0, 0})),
            (CommandResult{0,
                           "CPU                             \n"
                           "Configured threshold %           : 80\n"
                           "Current usage %                  : 25\n"
                           "CPS                             \n"
                           "Configured threshold             : 5000\n",
                           ""}));
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(asked[0].number, 29u);
  EXPECT_EQ(asked[0].body, Bytes(8));
}

TEST(GetThresholds, PrintsWhateverTheKernelSays) {
  std::vector<Asked> asked;
  EXPECT_EQ(onFirewall(asked, {"getthresholds"}, Bytes(8, 0xff)),
            (CommandResult{0,
                           "CPU                             \n"
                           "Configured threshold %           : 255\n"
                           "Current usage %                  : 255\n"
                           "CPS                             \n"
                           "Configured threshold             : -1\n",
                           ""}));
}

TEST(GetThresholds, ARequestThatFailsLooksLikeNone) {
  std::vector<Asked> asked;
  const CommandResult result = onFirewall(asked, {"getthresholds"}, Bytes(0), EINVAL);
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.out.find("Current usage %                  : 0\n"), std::string::npos);
}

TEST(SetThresholds, SendsWhatIsGiven) {
  const std::vector<std::pair<std::vector<std::string>, Bytes>> rows = {
      {{"-c", "0"}, Bytes({1, 0, 0, 0, 0, 0, 0, 0})},
      {{"-c", "100"}, Bytes({1, 100, 0, 0, 0, 0, 0, 0})},
      {{"-p", "0"}, Bytes({2, 0, 0, 0, 0, 0, 0, 0})},
      {{"-p", "100000"}, Bytes({2, 0, 0, 0, 0xa0, 0x86, 1, 0})},
      {{"-c", "7", "-p", "258"}, Bytes({3, 7, 0, 0, 2, 1, 0, 0})},
      {{"-c", "7", "-c", " +8x"}, Bytes({1, 8, 0, 0, 0, 0, 0, 0})},
  };
  for (const auto& [options, body] : rows) {
    std::vector<std::string> words{"setthresholds"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<Asked> asked;
    EXPECT_EQ(onFirewall(asked, words), (CommandResult{0, "", ""}));
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].number, 28u);
    EXPECT_EQ(asked[0].body, body);
  }
}

TEST(SetThresholds, WhatIsRefusedIsNotSent) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> rows = {
      {{}, "ERROR: CPU or CPS threshold value not provided.\n"},
      {{"x"}, "ERROR: CPU or CPS threshold value not provided.\n"},
      {{"-c", "abc"}, "ERROR: No digits were found\n"},
      {{"-p", ""}, "ERROR: No digits were found\n"},
      {{"-c", "101"}, "ERROR: Invalid entry 101.\n"},
      {{"-c", "-1"}, "ERROR: Invalid entry -1.\n"},
      {{"-p", "100001"}, "ERROR: Invalid entry 100001. Try 0 to 100000\n"},
      {{"-p", "-1"}, "ERROR: Invalid entry -1. Try 0 to 100000\n"},
      {{"-c", "256"}, "ERROR: Invalid entry 256.\n"},
      {{"-p", "4294967296"}, "ERROR: Invalid entry 4294967296. Try 0 to 100000\n"},
      {{"-c", "9223372036854775808"}, "strtol: Numerical result out of range\n"},
      {{"-p", "-9223372036854775809"}, "strtol: Numerical result out of range\n"},
      {{"-c", "5", "-p", "abc"}, "ERROR: No digits were found\n"},
  };
  for (const auto& [options, line] : rows) {
    std::vector<std::string> words{"setthresholds"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<Asked> asked;
    EXPECT_EQ(onFirewall(asked, words), (CommandResult{1, "", line}));
    EXPECT_TRUE(asked.empty()) << line;
  }
}

// --- setfilterflags

TEST(SetFilterFlags, SendsABitForEveryOption) {
  const std::vector<std::pair<std::vector<std::string>, int>> rows = {
      {{}, 0},      {{"-p"}, 1},  {{"-d"}, 2},  {{"-D"}, 4},         {{"-I"}, 8},
      {{"-A"}, 16}, {{"-a"}, 32}, {{"-G"}, 64}, {{"-pdDIAaG"}, 127}, {{"-p", "-p", "-a"}, 33},
  };
  for (const auto& [options, flags] : rows) {
    std::vector<std::string> words{"setfilterflags", "-Override", "-f", kFilter};
    words.insert(words.end(), options.begin(), options.end());
    const LogCapture log;
    Bytes list(116);
    Bytes record(866);
    const Device device("/dev/brq-tarn", [&](const DeviceShim::Call& call) {
      EXPECT_EQ(call.request, 27u);
      const auto* const body = reinterpret_cast<std::byte*>(load<std::uint64_t>(call.argument, 12));
      std::memcpy(list.data(), body, 116);
      std::memcpy(record.data(), reinterpret_cast<void*>(load<std::uint64_t>(body, 108)), 866);
      return 0;
    });
    EXPECT_EQ(runCommand(words), (CommandResult{0, "", ""}));
    std::memset(list.data() + 108, 0, 8);
    EXPECT_EQ(list, Bytes(116).text(0, "kelpco-sfw").at(104, {0x62, 3}));
    EXPECT_EQ(record, Bytes(866).text(0, kFilter).at(436, {flags}));
  }
}

TEST(SetFilterFlags, AFilterWithoutAnAgentOfItsOwnIsOfTheDefaultOne) {
  std::vector<Asked> asked;
  EXPECT_EQ(onFirewall(asked, {"setfilterflags", "-Override", "-f", "8d0c7a10", "-a"}),
            (CommandResult{0, "", ""}));
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(load<std::uint64_t>(asked[0].body.data(), 0), load<std::uint64_t>("kelpco-sfw", 0));
}

TEST(SetFilterFlags, WhatTheKernelSaysIsNotRead) {
  std::vector<Asked> asked;
  EXPECT_EQ(onFirewall(asked, {"setfilterflags", "-Override", "-f", kFilter}, Bytes(0), EPERM),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(asked.size(), 1u);
}
