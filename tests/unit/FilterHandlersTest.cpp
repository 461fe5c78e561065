#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "Expect.h"
#include "FilterHandlers.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "Sanitizers.h"

namespace {

using TarnFirewall::FWFilterRecord_;

/// One filter record by its offsets.
struct Record : Bytes {
  Record() : Bytes(866) {}

  Record& name(const std::string& value) { return field(0, value); }
  Record& agent(const std::string& value) { return field(204, value); }
  Record& vmUuid(const std::string& value) { return field(304, value); }
  Record& vnicIndex(int value) { return number(432, value, 4); }
  Record& flowFlags(int value) { return number(436, value, 4); }
  Record& counter(int index, long long value) {
    return number(448 + 8 * static_cast<std::size_t>(index), value, 8);
  }
  Record& rate(int index, int value) {
    return number(704 + 4 * static_cast<std::size_t>(index), value, 4);
  }
  Record& profile(const std::string& value) { return field(728, value); }
  Record& hash(int value) { return number(760, value, 2); }
  Record& slowPath(int value) { return number(762, value, 4); }
  Record& ruleConfig(int value) { return number(766, value, 4); }
  Record& vif(const std::string& value) { return field(770, value); }
  Record& lsp(const std::string& value) { return field(818, value); }

  Record& field(std::size_t offset, const std::string& value) {
    text(offset, value);
    return *this;
  }
  Record& number(std::size_t offset, long long value, std::size_t size) {
    std::memcpy(data() + offset, &value, size);
    return *this;
  }

  FWFilterRecord_ record() const {
    FWFilterRecord_ result;
    std::memcpy(&result, data(), sizeof result);
    return result;
  }
};

Record webFilter() {
  return Record()
      .name("nic-1002672-eth0-kelpco-sfw.2")
      .agent("kelpco-sfw")
      .vmUuid("50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff")
      .vnicIndex(1)
      .hash(40961)
      .ruleConfig(1);
}

const char kWebText[] =
    "\n"
    "Filter Name              : nic-1002672-eth0-kelpco-sfw.2\n"
    "VM UUID                  : 50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff\n"
    "VNIC Index               : 1\n"
    "VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.001\n"
    "Filter Rule Config       : configured\n"
    "Filter Hash              : 40961\n";

const std::string kHeader = "VM UUID" + std::string(44, ' ') + "VNIC Index" + std::string(13, ' ') +
                            "Filter Name" + std::string(22, ' ') + "SlowPathID\n" +
                            std::string(120, '-') + "\n";

std::uint32_t number32(const std::byte* at) {
  std::uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

/// Answers the two filter requests with records, and keeps what was asked.
class Kernel {
 public:
  explicit Kernel(std::vector<Record> records = {}) : records_(std::move(records)) {
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) {
      return answer(call.request, call.argument);
    });
  }
  ~Kernel() { DeviceShim::put("/dev/brq-tarn"); }
  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  // What the kernel says instead of the truth.
  std::optional<std::uint32_t> knownCount, returnedCount, returnedLength;
  std::uint32_t countStatus = 0, listStatus = 0;
  int countErrno = 0, listErrno = 0;

  struct Request {
    unsigned long number;
    Bytes frame;
    Bytes body;
  };
  std::vector<Request> requests;

 private:
  int answer(unsigned long request, void* argument) {
    auto* const frame = static_cast<std::byte*>(argument);
    std::uint64_t bodyAddress;
    std::memcpy(&bodyAddress, frame + 12, sizeof bodyAddress);
    auto* const body = reinterpret_cast<std::byte*>(bodyAddress);

    Request seen{request, Bytes(20), Bytes(number32(frame + 8))};
    std::memcpy(seen.frame.data(), frame, 20);
    std::memcpy(seen.body.data(), body, seen.body.size());
    requests.push_back(seen);

    const bool list = request == 21;
    if (const int error = list ? listErrno : countErrno; error != 0) {
      errno = error;
      return -1;
    }
    const std::uint32_t status = list ? listStatus : countStatus;
    std::memcpy(frame + 4, &status, 4);
    if (status != 0) return 0;

    const auto count = static_cast<std::uint32_t>(records_.size());
    if (!list) return put(body + 100, knownCount.value_or(count));

    std::uint64_t buffer;
    std::memcpy(&buffer, body + 108, sizeof buffer);
    std::uint32_t filled = 0;
    for (const Record& record : records_) {
      if (number32(body + 104) - filled < record.size()) break;
      std::memcpy(reinterpret_cast<std::byte*>(buffer) + filled, record.data(), record.size());
      filled += static_cast<std::uint32_t>(record.size());
    }
    put(body + 100, returnedCount.value_or(count));
    return put(body + 104, returnedLength.value_or(filled));
  }

  static int put(std::byte* at, std::uint32_t value) {
    std::memcpy(at, &value, sizeof value);
    return 0;
  }

  std::vector<Record> records_;
};

std::string printed(const Record& record, const FilterView& view = {}) {
  return captured([&] { return PrintFilter(record.record(), view), 0; }).out;
}

}  // namespace

// --- PrintFilter

TEST(PrintFilter, ShowsWhatTheRecordHolds) { EXPECT_EQ(printed(webFilter()), kWebText); }

TEST(PrintFilter, ShowsIdsAndProfileWhenThereAreAny) {
  EXPECT_EQ(printed(webFilter().vif("vif-1").lsp("lsp-9").profile("silver").ruleConfig(0)),
            "\n"
            "Filter Name              : nic-1002672-eth0-kelpco-sfw.2\n"
            "VM UUID                  : 50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff\n"
            "VNIC Index               : 1\n"
            "VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.001\n"
            "VIF ID                   : vif-1\n"
            "LSP ID                   : lsp-9\n"
            "Service Profile          : silver\n"
            "Filter Rule Config       : none\n"
            "Filter Hash              : 40961\n");
}

TEST(PrintFilter, SaysThatAVmUuidThatDoesNotScanIsBad) {
  EXPECT_EQ(printed(Record().name("x").vmUuid("50 19 4b")),
            "\n"
            "Filter Name              : x\n"
            "VM UUID                  : 50 19 4b\n"
            "VNIC Index               : 0\n"
            "VNIC UUID                : bad vnic uuid\n"
            "Filter Rule Config       : none\n"
            "Filter Hash              : 0\n");
}

TEST(PrintFilter, FlowKindsAreOffWhenTheirBitIsSetAndTheOverrideIsOn) {
  EXPECT_EQ(printed(webFilter().flowFlags(0x55)), std::string(kWebText) +
                                                      "Flow Collection Flags   \n"
                                                      "   L2 Pass Flows         : Off   \n"
                                                      "   L2 Drop Flows         : On    \n"
                                                      "   L3 Drop Flows         : Off   \n"
                                                      "   L3 Inactive Flows     : On    \n"
                                                      "   L3 Active Flows       : Off   \n"
                                                      "   All Flows             : On    \n"
                                                      "   Global override       : On    \n");
  EXPECT_EQ(printed(webFilter().flowFlags(0x2a)), std::string(kWebText) +
                                                      "Flow Collection Flags   \n"
                                                      "   L2 Pass Flows         : On    \n"
                                                      "   L2 Drop Flows         : Off   \n"
                                                      "   L3 Drop Flows         : On    \n"
                                                      "   L3 Inactive Flows     : Off   \n"
                                                      "   L3 Active Flows       : On    \n"
                                                      "   All Flows             : Off   \n"
                                                      "   Global override       : Off   \n");
}

TEST(PrintFilter, AFlagThatIsNotKnownStillBringsTheBlock) {
  EXPECT_NE(printed(webFilter().flowFlags(0x80)).find("   All Flows             : On    \n"),
            std::string::npos);
}

TEST(PrintFilter, WithoutFlagsHasNoBlockThoughEveryKindIsOn) {
  EXPECT_EQ(printed(webFilter().flowFlags(0)).find("Flow Collection"), std::string::npos);
}

TEST(PrintFilter, ShowsStatisticsInTheirOrder) {
  Record record = webFilter();
  for (int i = 0; i < 32; ++i) record.counter(i, 100 + i);
  record.counter(0, 1000).counter(1, 2000).counter(2, 10).counter(3, 40);
  record.counter(4, 900).counter(5, 4).counter(6, 3).counter(7, 2);
  for (int i = 0; i < 6; ++i) record.rate(i, 7 - 2 * i);
  FilterView view;
  view.withStats = true;
  EXPECT_EQ(printed(record, view), std::string(kWebText) +
                                       "Basic Stats: From Switch  To Switch\n"
                                       "   Total rx from weirgate : 108 109\n"
                                       "   Total packets         : 10 40\n"
                                       "   Total time (us)       : 1000 2000\n"
                                       "   Rate (us/pkt)         : 100 50\n"
                                       "   Rate (pkt/s)          : 10000 20000\n"
                                       "   Total punted to slowpath : 110 111\n"
                                       "   Total copied to slowpath : 112 113\n"
                                       "   Total hitting failurepolicy : 114 115\n"
                                       "   Total back from Slowpath : 3 2\n"
                                       "   Total Slow time (us)  : 900 4\n"
                                       "   Slow Rate (us/pkt)    : 300 2\n"
                                       "   Slow Rate (pkt/s)     : 3333 500000\n"
                                       "Reject Failure Stats\n"
                                       "   Bad L2                : 116\n"
                                       "   Bad Ethernet          : 117\n"
                                       "   Non IP                : 118\n"
                                       "   Short IP              : 119\n"
                                       "   Bad IPv4              : 120\n"
                                       "   Bad IPv6              : 121\n"
                                       "   Bad TCP               : 122\n"
                                       "   Bad ICMP              : 123\n"
                                       "   Rst for TCP Rst       : 124\n"
                                       "   Rate Limited          : 125\n"
                                       "   Failed Alloc          : 126\n"
                                       "   Failed Other          : 127\n"
                                       "CPS Stats\n"
                                       "   Current               : 7\n"
                                       "   Max (in window)       : 5\n"
                                       "   Avg (in window)       : 3\n"
                                       "   High Water Mark       : 1\n"
                                       "   Active Conn           : -1\n"
                                       "   High Water Mark Conn  : -3\n"
                                       "RBE Filter Stats\n"
                                       "   RBE In Pkt            : 128\n"
                                       "   RBE Out Pkt           : 129\n"
                                       "   RBE In Drop           : 130\n"
                                       "   RBE Out Drop          : 131\n");
}

TEST(PrintFilter, ADivisionByZeroIsZero) {
  FilterView view;
  view.withStats = true;
  const std::string text = printed(webFilter().counter(0, 5).counter(3, 5), view);
  EXPECT_NE(text.find("   Rate (us/pkt)         : 0 0\n"
                      "   Rate (pkt/s)          : 0 0\n"),
            std::string::npos);
  EXPECT_NE(text.find("   Slow Rate (us/pkt)    : 0 0\n"
                      "   Slow Rate (pkt/s)     : 0 0\n"),
            std::string::npos);
}

TEST(PrintFilter, CountersOfAllOnesPrintAsSigned) {
  FilterView view;
  view.withStats = true;
  EXPECT_NE(printed(webFilter().counter(16, -1), view).find("   Bad L2                : -1\n"),
            std::string::npos);
}

TEST(PrintFilter, DistributionIsOneLineForAFilterOnASlowPath) {
  FilterView view;
  view.distribution = true;
  view.withStats = true;
  EXPECT_EQ(printed(webFilter(), view), "");
  EXPECT_EQ(printed(webFilter().slowPath(3), view),
            "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        "
            "1            "
            "nic-1002672-eth0-kelpco-sfw.2              "
            "3\n");
}

TEST(PrintFilter, ASlowPathShowsItsFiltersOnlyAndNoneIsZero) {
  FilterView view;
  view.slowPathOnly = true;
  view.slowPathId = 3;
  EXPECT_EQ(printed(webFilter().slowPath(3), view), kWebText);
  EXPECT_EQ(printed(webFilter().slowPath(4), view), "");
  view.slowPathId = 0;
  EXPECT_EQ(printed(webFilter(), view), "");
}

TEST(PrintFilter, TheHeaderStandsEvenInFrontOfAFilterThatIsNotShown) {
  FilterView view;
  view.header = true;
  view.distribution = true;
  EXPECT_EQ(printed(webFilter(), view), kHeader);
}

TEST(PrintFilter, WithoutAVifNotEvenTheHeaderIsShown) {
  FilterView view;
  view.header = true;
  view.vifOnly = true;
  EXPECT_EQ(printed(webFilter(), view), "");
  EXPECT_EQ(printed(webFilter().vif("v"), view).substr(0, kHeader.size()), kHeader);
}

TEST(PrintFilter, TextsThatFillTheirFieldsEndWithThem) {
  Record record;
  std::fill(record.begin(), record.end(), std::uint8_t{'x'});
  const std::string text = printed(record);
  EXPECT_EQ(text.substr(0, text.find("Flow")),
            "\n"
            "Filter Name              : " +
                std::string(99, 'x') +
                "\n"
                "VM UUID                  : " +
                std::string(128, 'x') +
                "\n"
                "VNIC Index               : 2021161080\n"
                "VNIC UUID                : bad vnic uuid\n"
                "VIF ID                   : " +
                std::string(48, 'x') +
                "\n"
                "LSP ID                   : " +
                std::string(48, 'x') +
                "\n"
                "Service Profile          : " +
                std::string(32, 'x') +
                "\n"
                "Filter Rule Config       : configured\n"
                "Filter Hash              : 30840\n");
}

TEST(PrintFilter, AnIndexOfAllOnesIsMinusOne) {
  const std::string text = printed(webFilter().vnicIndex(-1));
  EXPECT_NE(text.find("VNIC Index               : -1\n"), std::string::npos);
  EXPECT_NE(text.find("VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.-01\n"),
            std::string::npos);
}

// --- GetFilterList

TEST(GetFilterList, AsksForTheCountAndThenForTheRecords) {
  const LogCapture log;
  Kernel kernel({webFilter(), webFilter().name("second")});
  std::uint32_t count = 99, size = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, "some-agent", &count, &buffer, &size), 0);
  EXPECT_TRUE(log.normalized().empty());
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(size, 1732u);
  EXPECT_EQ(std::memcmp(buffer.get(), webFilter().data(), 866), 0);

  ASSERT_EQ(kernel.requests.size(), 2u);
  const auto& first = kernel.requests[0];
  const auto& second = kernel.requests[1];
  EXPECT_EQ(first.number, 20u);
  EXPECT_EQ(Bytes(first.frame).at(12, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(20).at(0, {20}).at(8, {116}));
  EXPECT_EQ(first.body, Bytes(116).text(0, "some-agent"));
  EXPECT_EQ(second.number, 21u);
  EXPECT_EQ(Bytes(second.frame).at(12, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(20).at(0, {21}).at(8, {116}));
  EXPECT_EQ(Bytes(second.body).at(108, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(116).text(0, "some-agent").at(100, {2}).at(104, {0xc4, 0x06}));
}

TEST(GetFilterList, NamesNoAgentForNull) {
  Kernel kernel;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(buffer, nullptr);
  ASSERT_EQ(kernel.requests.size(), 1u);
  EXPECT_EQ(kernel.requests[0].body, Bytes(116));
}

TEST(GetFilterList, ALongAgentStaysTerminated) {
  Kernel kernel;
  std::uint32_t count = 0;
  FilterBuffer buffer;
  GetFilterList(false, false, std::string(200, 'a').c_str(), &count, &buffer, nullptr);
  EXPECT_EQ(kernel.requests[0].body, Bytes(116).text(0, std::string(99, 'a')));
}

TEST(GetFilterList, OldRecordsAreSmaller) {
  Kernel kernel;
  kernel.knownCount = 3;
  std::uint32_t count = 0, size = 0;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(true, false, nullptr, &count, &buffer, &size), 0);
  EXPECT_EQ(Bytes(kernel.requests[1].body).at(108, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(116).at(100, {3}).at(104, {0x9a, 0x08}));
}

TEST(GetFilterList, MissesItsResultsUnlessItOnlyCounts) {
  Kernel kernel({webFilter()});
  std::uint32_t count = 0;
  FilterBuffer buffer;
  const CommandResult expected{1, "", "ERROR: Missing filterList argument\n"};
  EXPECT_EQ(
      captured([&] { return GetFilterList(false, false, nullptr, nullptr, &buffer, nullptr); }),
      expected);
  EXPECT_EQ(
      captured([&] { return GetFilterList(false, false, nullptr, &count, nullptr, nullptr); }),
      expected);
  EXPECT_TRUE(kernel.requests.empty());
  EXPECT_EQ(
      captured([&] { return GetFilterList(false, true, nullptr, nullptr, nullptr, nullptr); }),
      (CommandResult{0, "Total number of kernel filters: 1\n", ""}));
}

TEST(GetFilterList, GivesTheReplysCountAndLength) {
  Kernel kernel({webFilter(), webFilter(), webFilter()});
  kernel.returnedCount = 2;
  kernel.returnedLength = 1000;
  std::uint32_t count = 0, size = 0;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, &size), 0);
  EXPECT_EQ(count, 2u);
  EXPECT_EQ(size, 1000u);
}

TEST(GetFilterList, AReplyOfMoreThanTheBufferIsCutToItAndLogged) {
  for (const std::uint32_t count21 : {2u, 3u, 0x7fffffffu, 0xffffffffu}) {
    const LogCapture log;
    Kernel kernel({webFilter()});
    kernel.returnedCount = count21;
    kernel.returnedLength = 0xffffffffu;
    std::uint32_t count = 0, size = 0;
    FilterBuffer buffer;
    EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, &size), 0);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(size, 866u);
    EXPECT_TRUE(log.has(
        4, std::to_string(count21) + " filters of 4294967295 bytes returned for room of 1\n"));
  }
}

TEST(GetFilterList, RefusesACountWhoseSizeLeaves32Bits) {
  for (const auto& [count20, printedCount] :
       {std::pair{4959547u, "4959547"}, {0x7fffffffu, "2147483647"}, {0xffffffffu, "-1"}}) {
    Kernel kernel;
    kernel.knownCount = count20;
    std::uint32_t count = 99;
    FilterBuffer buffer;
    EXPECT_EQ(
        captured([&] { return GetFilterList(false, false, nullptr, &count, &buffer, nullptr); }),
        (CommandResult{1, "", std::string("ERROR: invalid filter count: ") + printedCount + "\n"}));
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(kernel.requests.size(), 1u);
  }
}

TEST(GetFilterList, TakesTheLargestCountOf32Bits) {
  if (kMemorySanitized) {
    GTEST_SKIP() << "the sanitizers' allocators do not leave four gigabytes untouched";
  }
  Kernel kernel;
  kernel.knownCount = 4959546;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  ASSERT_EQ(kernel.requests.size(), 2u);
  EXPECT_EQ(number32(reinterpret_cast<const std::byte*>(kernel.requests[1].body.data()) + 104),
            4294966836u);
}

TEST(GetFilterList, SaysThatThereIsNoMemory) {
  Kernel kernel({webFilter(), webFilter()});
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(captured([&] {
              DeviceShim::failNextCalloc();
              return GetFilterList(false, false, nullptr, &count, &buffer, nullptr);
            }),
            (CommandResult{1, "", "ERROR: no memory for getting filters: 2\n"}));
  EXPECT_EQ(kernel.requests.size(), 1u);
}

TEST(GetFilterList, SaysWhichRequestTheKernelRefused) {
  std::uint32_t count = 99, size = 99;
  FilterBuffer buffer;
  const auto list = [&] {
    return captured([&] { return GetFilterList(false, false, nullptr, &count, &buffer, &size); });
  };
  Kernel kernel({webFilter()});
  kernel.countStatus = 7;
  EXPECT_EQ(list(), (CommandResult{1, "", "ERROR: ioctl failed to get filter count: 7\n"}));
  kernel.countStatus = 0;
  kernel.listStatus = 0xffffffffu;
  EXPECT_EQ(list(), (CommandResult{1, "", "ERROR: ioctl failed to get filters: -1\n"}));
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(buffer, nullptr);
}

TEST(GetFilterList, AFailingDeviceIsAnEmptyListSinceOnlyTheStatusCounts) {
  const LogCapture log;
  Kernel kernel({webFilter()});
  kernel.countErrno = EPERM;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(
      captured([&] { return GetFilterList(false, false, nullptr, &count, &buffer, nullptr); }),
      (CommandResult{0, "", ""}));
  EXPECT_EQ(count, 0u);
  EXPECT_TRUE(
      log.has(3, "ioctl cmd 20 on device /dev/brq-tarn failed: Operation not permitted\n\n"));
}

TEST(GetFilterList, WhenOnlyTheSecondRequestFailsTheRecordsAreEmptyOnes) {
  const LogCapture log;
  Kernel kernel({webFilter()});
  kernel.listErrno = ENOMEM;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(std::memcmp(buffer.get(), Bytes(866).data(), 866), 0);
}

// --- getfilters

TEST(GetFWFilters, ListsEveryAgentsFiltersInTheKernelsOrder) {
  Kernel kernel({webFilter(), webFilter().agent("other-fw")});
  EXPECT_EQ(runCommand({"getfilters"}), (CommandResult{0, std::string(kWebText) + kWebText, ""}));
  EXPECT_EQ(kernel.requests[0].body, Bytes(116));
}

TEST(GetFWFilters, IgnoresTheCaseOfItsWord) {
  const Kernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"GETFILTERS"}), (CommandResult{0, kWebText, ""}));
}

TEST(GetFWFilters, AnAgentIsAskedForAndComparedWithoutItsCase) {
  Kernel kernel({webFilter().agent("other-fw"), webFilter().agent("KELPCO-sfw")});
  EXPECT_EQ(runCommand({"getfilters", "-a", "Kelpco-SFW"}), (CommandResult{0, kWebText, ""}));
  EXPECT_EQ(kernel.requests[0].body, Bytes(116).text(0, "Kelpco-SFW"));
}

TEST(GetFWFilters, OnlyOtherAgentsFiltersPrintNothingAndSucceed) {
  const Kernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-a", "kelpco"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-a", ""}), (CommandResult{0, "", ""}));
}

TEST(GetFWFilters, AnEmptyListIsAnError) {
  const Kernel kernel;
  EXPECT_EQ(runCommand({"getfilters"}),
            (CommandResult{1, "", "ERROR: there is no filter for agent \n"}));
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody"}),
            (CommandResult{1, "", "ERROR: there is no filter for agent nobody\n"}));
}

TEST(GetFWFilters, AnAgentOf99CharactersIsTakenAndOneOf100Refused) {
  Kernel kernel({webFilter().agent(std::string(99, 'a'))});
  EXPECT_EQ(runCommand({"getfilters", "-a", std::string(99, 'a')}),
            (CommandResult{0, kWebText, ""}));
  kernel.requests.clear();
  const std::string tooLong(100, 'a');
  EXPECT_EQ(runCommand({"getfilters", "-a", tooLong}),
            (CommandResult{1, "", "ERROR: invalid agent name " + tooLong + "\n"}));
  EXPECT_TRUE(kernel.requests.empty());
}

TEST(GetFWFilters, AnAgentThatFillsItsFieldIsComparedInsideIt) {
  const Kernel kernel({webFilter().agent(std::string(100, 'a')).vmUuid("aaaa")});
  EXPECT_NE(runCommand({"getfilters", "-a", std::string(99, 'a')}).out, "");
  EXPECT_EQ(runCommand({"getfilters", "-a", std::string(98, 'a')}).out, "");
}

TEST(GetFWFilters, TheLastOfRepeatedOptionsCounts) {
  const Kernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody", "-a", "kelpco-sfw", "-c", "1", "-c", "2"}),
            (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, CountsOnly) {
  Kernel kernel({webFilter(), webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-n"}),
            (CommandResult{0, "Total number of kernel filters: 2\n", ""}));
  EXPECT_EQ(kernel.requests.size(), 1u);
  kernel.knownCount = 0xffffffffu;
  EXPECT_EQ(runCommand({"getfilters", "-n", "-s", "-d"}),
            (CommandResult{0, "Total number of kernel filters: 4294967295\n", ""}));
  kernel.countStatus = 3;
  EXPECT_EQ(runCommand({"getfilters", "-n"}),
            (CommandResult{1, "", "ERROR: ioctl failed to get filter count: 3\n"}));
}

TEST(GetFWFilters, CountingNoneSucceeds) {
  const Kernel kernel;
  EXPECT_EQ(runCommand({"getfilters", "-n"}),
            (CommandResult{0, "Total number of kernel filters: 0\n", ""}));
}

TEST(GetFWFilters, DistributionWithoutASlowPathIsTheHeaderOnly) {
  const Kernel kernel({webFilter(), webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-d"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, DistributionHasOneHeaderInFrontOfItsLines) {
  const Kernel kernel({webFilter(), webFilter().slowPath(3), webFilter().slowPath(4)});
  const std::string line =
      "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        1            "
      "nic-1002672-eth0-kelpco-sfw.2              ";
  EXPECT_EQ(runCommand({"getfilters", "-d"}),
            (CommandResult{0, kHeader + line + "3\n" + line + "4\n", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-d", "-c", "4"}),
            (CommandResult{0, kHeader + line + "4\n", ""}));
}

TEST(GetFWFilters, TheHeaderGoesWithTheFirstFilterOfTheAgent) {
  const Kernel kernel({webFilter().agent("other-fw").slowPath(1), webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-d", "-a", "kelpco-sfw"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, AFirstFilterWithoutAVifTakesTheHeaderWithIt) {
  const Kernel kernel({webFilter().slowPath(1), webFilter().slowPath(1).vif("v")});
  const CommandResult result = runCommand({"getfilters", "-d", "-i"});
  EXPECT_EQ(result,
            (CommandResult{0,
                           "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        1            "
                           "nic-1002672-eth0-kelpco-sfw.2              1\n",
                           ""}));
}

TEST(GetFWFilters, ASlowPathShowsItsFiltersAfterTheHeader) {
  const Kernel kernel({webFilter(), webFilter().slowPath(7)});
  EXPECT_EQ(runCommand({"getfilters", "-c", "7"}), (CommandResult{0, kHeader + kWebText, ""}));
  EXPECT_EQ(runCommand({"getfilters", "-c", "0"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, ASlowPathThatIsNoNumberShowsTheUsage) {
  Kernel kernel({webFilter().slowPath(7)});
  const std::string usage = runCommand({"getfilters", "-h"}).out;
  for (const char* text : {"", "x", "7x", "0x7", "99999999999"})
    EXPECT_EQ(runCommand({"getfilters", "-c", text}), (CommandResult{1, usage, ""}));
  EXPECT_TRUE(kernel.requests.empty());
}

TEST(GetFWFilters, VifOnlyShowsFiltersWithAVif) {
  const Kernel kernel({webFilter(), webFilter().vif("v")});
  EXPECT_EQ(runCommand({"getfilters", "-i"}).out, printed(webFilter().vif("v")));
}

TEST(GetFWFilters, StatisticsStandAfterEachFilter) {
  const Kernel kernel({webFilter()});
  FilterView view;
  view.withStats = true;
  EXPECT_EQ(runCommand({"getfilters", "-s"}), (CommandResult{0, printed(webFilter(), view), ""}));
}

TEST(GetFWFilters, AReplyOfMoreThanItsBufferShowsWhatTheBufferHolds) {
  const LogCapture log;
  Kernel kernel({webFilter(), webFilter()});
  kernel.returnedCount = 0xffffffffu;
  EXPECT_EQ(runCommand({"getfilters"}), (CommandResult{0, std::string(kWebText) + kWebText, ""}));
}

// --- GetFilterDetailList

namespace {

/// A descriptor of the device, closed at the end.
class Descriptor {
 public:
  Descriptor() : fd_(open("/dev/brq-tarn", O_RDWR)) {}
  ~Descriptor() { close(fd_); }
  operator int() const { return fd_; }

 private:
  int fd_;
};

/// The log lines of a failing list.
std::vector<std::string> failingDetailList(const char* agent) {
  const LogCapture log;
  const Descriptor fd;
  std::uint32_t count = 99;
  EXPECT_EQ(GetFilterDetailList(fd, agent, &count), nullptr);
  EXPECT_EQ(count, 0u);
  return log.normalized();
}

const std::string kPlace = "3|tarnfw: TarnFWUtil:GetFilterDetailList():N ";

}  // namespace

TEST(GetFilterDetailList, GivesTheRecordsOfAnAgent) {
  Kernel kernel({webFilter(), webFilter().name("second")});
  const Descriptor fd;
  std::uint32_t count = 0;
  const auto records = GetFilterDetailList(fd, std::string(200, 'a').c_str(), &count);
  ASSERT_EQ(count, 2u);
  EXPECT_EQ(std::memcmp(records.get(), webFilter().data(), 866), 0);
  EXPECT_EQ(std::string(records[1].name), "second02672-eth0-kelpco-sfw.2");

  ASSERT_EQ(kernel.requests.size(), 2u);
  EXPECT_EQ(Bytes(kernel.requests[0].frame).at(12, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(20).at(0, {20}).at(8, {116}));
  EXPECT_EQ(kernel.requests[0].body, Bytes(116).text(0, std::string(98, 'a')));
  EXPECT_EQ(Bytes(kernel.requests[1].frame).at(12, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(20).at(0, {21}).at(8, {116}));
  EXPECT_EQ(Bytes(kernel.requests[1].body).at(108, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(116).text(0, std::string(98, 'a')).at(100, {2}).at(104, {0xc4, 0x06}));
}

TEST(GetFilterDetailList, LogsAFailedRequest) {
  Kernel kernel({webFilter()});
  kernel.countErrno = EPERM;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed: Operation not permitted\n\n"});
  kernel.countErrno = 0;
  kernel.listErrno = ENOMEM;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed: Cannot allocate memory\n\n"});
}

TEST(GetFilterDetailList, LogsARefusedRequest) {
  Kernel kernel({webFilter()});
  kernel.countStatus = 5;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed to get filter count: 5\n\n"});
  kernel.countStatus = 0;
  kernel.listStatus = 6;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed to get filters: 6\n\n"});
}

TEST(GetFilterDetailList, LogsThatThereIsNone) {
  const Kernel kernel;
  EXPECT_EQ(failingDetailList("nobody"),
            std::vector<std::string>{kPlace + "there is no filter for agent nobody\n\n"});
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "there is no filter for agent \n\n"});
}

TEST(GetFilterDetailList, LogsACountWhoseSizeLeaves32Bits) {
  Kernel kernel;
  kernel.knownCount = 4959547;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "invalid filter count: 4959547\n\n"});
}

TEST(GetFilterDetailList, LogsThatThereIsNoMemory) {
  const Kernel kernel({webFilter()});
  DeviceShim::failNextCalloc();
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "no memory for getting filters: 1\n\n"});
}

TEST(GetFilterDetailList, AReplyOfMoreThanTheArrayIsCutToItAndLogged) {
  const LogCapture log;
  Kernel kernel({webFilter()});
  kernel.returnedCount = 0xffffffffu;
  const Descriptor fd;
  std::uint32_t count = 0;
  EXPECT_NE(GetFilterDetailList(fd, nullptr, &count), nullptr);
  EXPECT_EQ(count, 1u);
  EXPECT_TRUE(log.has(4, "4294967295 filters returned for room of 1\n"));
}
