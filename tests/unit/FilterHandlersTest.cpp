// The list of filters, from the kernel and as getfilters shows it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "Expect.h"
#include "FilterHandlers.h"
#include "FilterRecords.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "Sanitizers.h"

using namespace FilterRecords;

// --- GetFilterList

TEST(GetFilterList, AsksForTheCountAndThenForTheRecords) {
  const LogCapture log;
  FilterKernel kernel({webFilter(), webFilter().name("second")});
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
  FilterKernel kernel;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(buffer, nullptr);
  ASSERT_EQ(kernel.requests.size(), 1u);
  EXPECT_EQ(kernel.requests[0].body, Bytes(116));
}

TEST(GetFilterList, ALongAgentStaysTerminated) {
  FilterKernel kernel;
  std::uint32_t count = 0;
  FilterBuffer buffer;
  GetFilterList(false, false, std::string(200, 'a').c_str(), &count, &buffer, nullptr);
  EXPECT_EQ(kernel.requests[0].body, Bytes(116).text(0, std::string(99, 'a')));
}

TEST(GetFilterList, OldRecordsAreSmaller) {
  FilterKernel kernel;
  kernel.knownCount = 3;
  std::uint32_t count = 0, size = 0;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(true, false, nullptr, &count, &buffer, &size), 0);
  EXPECT_EQ(Bytes(kernel.requests[1].body).at(108, {0, 0, 0, 0, 0, 0, 0, 0}),
            Bytes(116).at(100, {3}).at(104, {0x9a, 0x08}));
}

TEST(GetFilterList, MissesItsResultsUnlessItOnlyCounts) {
  FilterKernel kernel({webFilter()});
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
  FilterKernel kernel({webFilter(), webFilter(), webFilter()});
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
    FilterKernel kernel({webFilter()});
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
    FilterKernel kernel;
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
  FilterKernel kernel;
  kernel.knownCount = 4959546;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  ASSERT_EQ(kernel.requests.size(), 2u);
  EXPECT_EQ(number32(reinterpret_cast<const std::byte*>(kernel.requests[1].body.data()) + 104),
            4294966836u);
}

TEST(GetFilterList, SaysThatThereIsNoMemory) {
  FilterKernel kernel({webFilter(), webFilter()});
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
  FilterKernel kernel({webFilter()});
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
  FilterKernel kernel({webFilter()});
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
  FilterKernel kernel({webFilter()});
  kernel.listErrno = ENOMEM;
  std::uint32_t count = 99;
  FilterBuffer buffer;
  EXPECT_EQ(GetFilterList(false, false, nullptr, &count, &buffer, nullptr), 0);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(std::memcmp(buffer.get(), Bytes(866).data(), 866), 0);
}

// --- getfilters

TEST(GetFWFilters, ListsEveryAgentsFiltersInTheKernelsOrder) {
  FilterKernel kernel({webFilter(), webFilter().agent("other-fw")});
  EXPECT_EQ(runCommand({"getfilters"}), (CommandResult{0, std::string(kWebText) + kWebText, ""}));
  EXPECT_EQ(kernel.requests[0].body, Bytes(116));
}

TEST(GetFWFilters, IgnoresTheCaseOfItsWord) {
  const FilterKernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"GETFILTERS"}), (CommandResult{0, kWebText, ""}));
}

TEST(GetFWFilters, AnAgentIsAskedForAndComparedWithoutItsCase) {
  FilterKernel kernel({webFilter().agent("other-fw"), webFilter().agent("KELPCO-sfw")});
  EXPECT_EQ(runCommand({"getfilters", "-a", "Kelpco-SFW"}), (CommandResult{0, kWebText, ""}));
  EXPECT_EQ(kernel.requests[0].body, Bytes(116).text(0, "Kelpco-SFW"));
}

TEST(GetFWFilters, OnlyOtherAgentsFiltersPrintNothingAndSucceed) {
  const FilterKernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-a", "kelpco"}), (CommandResult{0, "", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-a", ""}), (CommandResult{0, "", ""}));
}

TEST(GetFWFilters, AnEmptyListIsAnError) {
  const FilterKernel kernel;
  EXPECT_EQ(runCommand({"getfilters"}),
            (CommandResult{1, "", "ERROR: there is no filter for agent \n"}));
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody"}),
            (CommandResult{1, "", "ERROR: there is no filter for agent nobody\n"}));
}

TEST(GetFWFilters, AnAgentOf99CharactersIsTakenAndOneOf100Refused) {
  FilterKernel kernel({webFilter().agent(std::string(99, 'a'))});
  EXPECT_EQ(runCommand({"getfilters", "-a", std::string(99, 'a')}),
            (CommandResult{0, kWebText, ""}));
  kernel.requests.clear();
  const std::string tooLong(100, 'a');
  EXPECT_EQ(runCommand({"getfilters", "-a", tooLong}),
            (CommandResult{1, "", "ERROR: invalid agent name " + tooLong + "\n"}));
  EXPECT_TRUE(kernel.requests.empty());
}

TEST(GetFWFilters, AnAgentThatFillsItsFieldIsComparedInsideIt) {
  const FilterKernel kernel({webFilter().agent(std::string(100, 'a')).vmUuid("aaaa")});
  EXPECT_NE(runCommand({"getfilters", "-a", std::string(99, 'a')}).out, "");
  EXPECT_EQ(runCommand({"getfilters", "-a", std::string(98, 'a')}).out, "");
}

TEST(GetFWFilters, TheLastOfRepeatedOptionsCounts) {
  const FilterKernel kernel({webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-a", "nobody", "-a", "kelpco-sfw", "-c", "1", "-c", "2"}),
            (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, CountsOnly) {
  FilterKernel kernel({webFilter(), webFilter()});
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
  const FilterKernel kernel;
  EXPECT_EQ(runCommand({"getfilters", "-n"}),
            (CommandResult{0, "Total number of kernel filters: 0\n", ""}));
}

TEST(GetFWFilters, DistributionWithoutASlowPathIsTheHeaderOnly) {
  const FilterKernel kernel({webFilter(), webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-d"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, DistributionHasOneHeaderInFrontOfItsLines) {
  const FilterKernel kernel({webFilter(), webFilter().slowPath(3), webFilter().slowPath(4)});
  const std::string line =
      "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        1            "
      "nic-1002672-eth0-kelpco-sfw.2              ";
  EXPECT_EQ(runCommand({"getfilters", "-d"}),
            (CommandResult{0, kHeader + line + "3\n" + line + "4\n", ""}));
  EXPECT_EQ(runCommand({"getfilters", "-d", "-c", "4"}),
            (CommandResult{0, kHeader + line + "4\n", ""}));
}

TEST(GetFWFilters, TheHeaderGoesWithTheFirstFilterOfTheAgent) {
  const FilterKernel kernel({webFilter().agent("other-fw").slowPath(1), webFilter()});
  EXPECT_EQ(runCommand({"getfilters", "-d", "-a", "kelpco-sfw"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, AFirstFilterWithoutAVifTakesTheHeaderWithIt) {
  const FilterKernel kernel({webFilter().slowPath(1), webFilter().slowPath(1).vif("v")});
  const CommandResult result = runCommand({"getfilters", "-d", "-i"});
  EXPECT_EQ(result,
            (CommandResult{0,
                           "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        1            "
                           "nic-1002672-eth0-kelpco-sfw.2              1\n",
                           ""}));
}

TEST(GetFWFilters, ASlowPathShowsItsFiltersAfterTheHeader) {
  const FilterKernel kernel({webFilter(), webFilter().slowPath(7)});
  EXPECT_EQ(runCommand({"getfilters", "-c", "7"}), (CommandResult{0, kHeader + kWebText, ""}));
  EXPECT_EQ(runCommand({"getfilters", "-c", "0"}), (CommandResult{0, kHeader, ""}));
}

TEST(GetFWFilters, ASlowPathThatIsNoNumberShowsTheUsage) {
  FilterKernel kernel({webFilter().slowPath(7)});
  const std::string usage = runCommand({"getfilters", "-h"}).out;
  for (const char* text : {"", "x", "7x", "0x7", "99999999999"})
    EXPECT_EQ(runCommand({"getfilters", "-c", text}), (CommandResult{1, usage, ""}));
  EXPECT_TRUE(kernel.requests.empty());
}

TEST(GetFWFilters, VifOnlyShowsFiltersWithAVif) {
  const FilterKernel kernel({webFilter(), webFilter().vif("v")});
  EXPECT_EQ(runCommand({"getfilters", "-i"}).out, printed(webFilter().vif("v")));
}

TEST(GetFWFilters, StatisticsStandAfterEachFilter) {
  const FilterKernel kernel({webFilter()});
  FilterView view;
  view.withStats = true;
  EXPECT_EQ(runCommand({"getfilters", "-s"}), (CommandResult{0, printed(webFilter(), view), ""}));
}

TEST(GetFWFilters, AReplyOfMoreThanItsBufferShowsWhatTheBufferHolds) {
  const LogCapture log;
  FilterKernel kernel({webFilter(), webFilter()});
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
  FilterKernel kernel({webFilter(), webFilter().name("second")});
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
  FilterKernel kernel({webFilter()});
  kernel.countErrno = EPERM;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed: Operation not permitted\n\n"});
  kernel.countErrno = 0;
  kernel.listErrno = ENOMEM;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed: Cannot allocate memory\n\n"});
}

TEST(GetFilterDetailList, LogsARefusedRequest) {
  FilterKernel kernel({webFilter()});
  kernel.countStatus = 5;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed to get filter count: 5\n\n"});
  kernel.countStatus = 0;
  kernel.listStatus = 6;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "ioctl failed to get filters: 6\n\n"});
}

TEST(GetFilterDetailList, LogsThatThereIsNone) {
  const FilterKernel kernel;
  EXPECT_EQ(failingDetailList("nobody"),
            std::vector<std::string>{kPlace + "there is no filter for agent nobody\n\n"});
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "there is no filter for agent \n\n"});
}

TEST(GetFilterDetailList, LogsACountWhoseSizeLeaves32Bits) {
  FilterKernel kernel;
  kernel.knownCount = 4959547;
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "invalid filter count: 4959547\n\n"});
}

TEST(GetFilterDetailList, LogsThatThereIsNoMemory) {
  const FilterKernel kernel({webFilter()});
  DeviceShim::failNextCalloc();
  EXPECT_EQ(failingDetailList(nullptr),
            std::vector<std::string>{kPlace + "no memory for getting filters: 1\n\n"});
}

TEST(GetFilterDetailList, AReplyOfMoreThanTheArrayIsCutToItAndLogged) {
  const LogCapture log;
  FilterKernel kernel({webFilter()});
  kernel.returnedCount = 0xffffffffu;
  const Descriptor fd;
  std::uint32_t count = 0;
  EXPECT_NE(GetFilterDetailList(fd, nullptr, &count), nullptr);
  EXPECT_EQ(count, 1u);
  EXPECT_TRUE(log.has(4, "4294967295 filters returned for room of 1\n"));
}
