// Handlers of export versions, against a scripted kernel.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "DeviceShim.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const char kFirst[] = "nic-1-eth0-kelpco-sfw.2";
const char kSecond[] = "nic-2-eth0-kelpco-inspect.4";
const char kThird[] = "nic-3-eth0-kelpco-sfw.2";

/// Keeps a version for each filter, and lists filters of the size that was asked for.
class ExportKernel : public HandlerKernel {
 public:
  explicit ExportKernel(std::vector<std::string> names = {}) : names_(std::move(names)) {
    on(54, [this](Body& body) {
      const std::string name = body.port.identifier;
      if (stubborn.count(name) != 0) return 7;
      versions[name] = body.word(0);
      return 0;
    });
    on(55, [this](Body& body) {
      const std::string name = body.port.identifier;
      agents.push_back(body.port.agent);
      types.push_back(body.port.type);
      if (silent.count(name) != 0) return 21;
      body.put32(0, versions[name]);
      return 0;
    });
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) { return list(call); });
  }
  ~ExportKernel() { DeviceShim::put("/dev/brq-tarn"); }

  std::map<std::string, std::uint32_t> versions;
  std::set<std::string> silent, stubborn;  // filters whose version can't be read, or set
  std::vector<std::string> agents, listed;
  std::vector<unsigned int> types;
  std::size_t recordSize = 0;
  std::uint32_t status = 0;

 private:
  int list(const DeviceShim::Call& call) {
    auto* const frame = static_cast<std::byte*>(call.argument);
    std::byte* body;
    std::memcpy(&body, frame + 12, sizeof body);
    std::memcpy(frame + 4, &status, 4);
    if (status != 0) return 0;
    const auto count = static_cast<std::uint32_t>(names_.size());
    std::memcpy(body + 100, &count, 4);
    listed.emplace_back(reinterpret_cast<const char*>(body));
    if (call.request == 20) return 0;
    std::uint32_t length;
    std::memcpy(&length, body + 104, 4);
    recordSize = length / count;
    char* records;
    std::memcpy(&records, body + 108, sizeof records);
    for (std::size_t i = 0; i < names_.size(); ++i) {
      std::strcpy(records + i * recordSize, names_[i].c_str());
      std::strcpy(records + i * recordSize + 204, "kelpco-agent");
    }
    return 0;
  }

  std::vector<std::string> names_;
};

}  // namespace

TEST(GetSkifferExportVersion, PrintsWhatTheKernelHas) {
  ExportKernel kernel;
  for (const std::uint32_t version : {0u, 1000u, 0xffffffffu}) {
    kernel.versions[kFilter] = version;
    EXPECT_EQ(runCommand({"getexportversion", "-f", kFilter}),
              (CommandResult{0, "Current export version: " + std::to_string(version) + "\n", ""}));
  }
  kernel.silent = {kFilter};
  EXPECT_EQ(runCommand({"getexportversion", "--filter", kFilter}),
            (CommandResult{1, "",
                           std::string("ERROR: Failed to get skiffer export version for filter ") +
                               kFilter + "\n"}));
}

TEST(SetSkifferExportVersion, SendsTheVersion) {
  ExportKernel kernel;
  for (const char* const version : {"0", "1000", "2147483647"}) {
    EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter, "-e", version}),
              (CommandResult{0, "", ""}));
    EXPECT_EQ(std::to_string(kernel.versions[kFilter]), version);
  }
  EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter, "--export=5", "-e7"}),
            (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.versions[kFilter], 7u);
}

TEST(SetSkifferExportVersion, SaysTheVersionWhenItIsVerbose) {
  const LogCapture log;
  ExportKernel kernel;
  EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter, "-e", "3", "-v"}),
            (CommandResult{0, "verbose level : 1\nweirgate agent: kelpco-sfw\nexport version : 3\n",
                           ""}));
  EXPECT_EQ(kernel.versions[kFilter], 3u);
}

TEST(SetSkifferExportVersion, SaysWhatIsMissingAndWhatFails) {
  ExportKernel kernel;
  const std::string usage = runCommand({"setexportversion", "-h"}).out;
  EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter}),
            (CommandResult{1, usage, "ERROR: Export version is not specified\n"}));
  for (const char* const bad : {"-1", "x", "", "1x", "2147483648", "4294967296"}) {
    EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter, "-e", bad}),
              (CommandResult{1, usage, ""}));
  }
  EXPECT_TRUE(kernel.asked().empty());
  kernel.stubborn = {kFilter};
  EXPECT_EQ(runCommand({"setexportversion", "-f", kFilter, "-e1"}),
            (CommandResult{1, "",
                           std::string("ERROR: Failed to set export version for filter ") +
                               kFilter + ": " + FW_StatusToString(7) + "\n"}));
}

TEST(SetSkifferExportVersionAllFilters, UpgradesEveryFilter) {
  ExportKernel kernel({kFirst, kSecond, kThird});
  kernel.versions = {{kFirst, 1000}, {kSecond, 1100}, {kThird, 0xffffffff}};
  EXPECT_EQ(runCommand({"setexportversionall", "-e", "1100"}),
            (CommandResult{0,
                           "Filter nic-1-eth0-kelpco-sfw.2 - upgrading from 1000 to version 1100 "
                           "- OK\n"
                           "Filter nic-2-eth0-kelpco-inspect.4 - already set to version 1100\n"
                           "Filter nic-3-eth0-kelpco-sfw.2 - upgrading from -1 to version 1100 - "
                           "OK\n",
                           ""}));
  EXPECT_EQ(kernel.versions, (std::map<std::string, std::uint32_t>{
                                 {kFirst, 1100}, {kSecond, 1100}, {kThird, 1100}}));
  EXPECT_EQ(kernel.agents,
            (std::vector<std::string>{"kelpco-sfw", "kelpco-inspect", "kelpco-sfw"}));
  EXPECT_EQ(kernel.types, (std::vector<unsigned int>{7, 7, 7}));
  EXPECT_EQ(kernel.listed, (std::vector<std::string>{"", ""}));
  EXPECT_EQ(kernel.recordSize, 866u);
}

TEST(SetSkifferExportVersionAllFilters, ReadsOnlyWithTheOption) {
  ExportKernel kernel({kFirst, kSecond});
  kernel.versions = {{kFirst, 7}, {kSecond, 8}};
  EXPECT_EQ(runCommand({"setexportversionall", "-r", "-e9", "-x", "-a", "kelpco-agent"}),
            (CommandResult{0,
                           "Filter nic-1-eth0-kelpco-sfw.2 - version 7\n"
                           "Filter nic-2-eth0-kelpco-inspect.4 - version 8\n",
                           ""}));
  EXPECT_EQ(kernel.timesAsked(54), 0u);
  EXPECT_EQ(kernel.recordSize, 734u);
  EXPECT_EQ(kernel.listed, (std::vector<std::string>{"kelpco-agent", "kelpco-agent"}));
}

TEST(SetSkifferExportVersionAllFilters, AFilterThatCannotBeReadIsTriedAgainInThePlaceOfTheLast) {
  ExportKernel kernel({kFirst, kSecond, kThird});
  kernel.silent = {kSecond};
  const std::string failed =
      "Filter nic-2-eth0-kelpco-inspect.4 - failed to get version.  Skipping.\n";
  EXPECT_EQ(
      runCommand({"setexportversionall", "-r"}),
      (CommandResult{1, "Filter nic-1-eth0-kelpco-sfw.2 - version 0\n" + failed + failed, ""}));

  ExportKernel nameless({"nic-4", kFirst});
  const std::string line = "Filter nic-4 - unable to get agent\n";
  EXPECT_EQ(runCommand({"setexportversionall", "-r"}), (CommandResult{1, line + line, ""}));
  EXPECT_TRUE(nameless.asked().empty());
}

TEST(SetSkifferExportVersionAllFilters, AFilterThatCannotBeSetIsAnErrorAndTheNextOneFollows) {
  ExportKernel kernel({kFirst, kSecond});
  kernel.stubborn = {kFirst};
  EXPECT_EQ(
      runCommand({"setexportversionall", "-e1"}),
      (CommandResult{1,
                     "Filter nic-1-eth0-kelpco-sfw.2 - upgrading from 0 to version 1 - FAILED\n"
                     "Filter nic-2-eth0-kelpco-inspect.4 - upgrading from 0 to version 1 - OK\n",
                     ""}));
}

TEST(SetSkifferExportVersionAllFilters, ListsTheFiltersWhenItIsVerbose) {
  const LogCapture log;
  const ExportKernel kernel({kFirst, kThird});
  EXPECT_EQ(runCommand({"setexportversionall", "-r", "-v"}),
            (CommandResult{0,
                           "verbose level : 1\nweirgate agent: \n"
                           "Total number of kernel filters: 2\n"
                           "kelpco-agent : nic-1-eth0-kelpco-sfw.2\n"
                           "kelpco-agent : nic-3-eth0-kelpco-sfw.2\n"
                           "Filter nic-1-eth0-kelpco-sfw.2 - version 0\n"
                           "Filter nic-3-eth0-kelpco-sfw.2 - version 0\n",
                           ""}));
}

TEST(SetSkifferExportVersionAllFilters, SaysWhenThereIsNothingToDo) {
  ExportKernel kernel;
  EXPECT_EQ(runCommand({"setexportversionall", "-e1"}),
            (CommandResult{0, "there are no filters for agent \n", ""}));
  EXPECT_EQ(runCommand({"setexportversionall", "-e1", "-a", "nobody"}),
            (CommandResult{0, "there are no filters for agent nobody\n", ""}));
  const std::string longest(99, 'a');
  EXPECT_EQ(runCommand({"setexportversionall", "-e1", "-a", longest}),
            (CommandResult{0, "there are no filters for agent " + longest + "\n", ""}));
  kernel.status = 5;
  EXPECT_EQ(runCommand({"setexportversionall", "-r"}),
            (CommandResult{1, "", "ERROR: ioctl failed to get filter count: 5\n"}));
  const std::string usage = runCommand({"setexportversionall", "-h"}).out;
  EXPECT_EQ(runCommand({"setexportversionall"}),
            (CommandResult{1, usage, "ERROR: Export version is not specified\n"}));
  EXPECT_EQ(runCommand({"setexportversionall", "-e", "x"}), (CommandResult{1, usage, ""}));
  EXPECT_EQ(runCommand({"setexportversionall", "-r", "-a", longest + "a"}),
            (CommandResult{1, "", "ERROR: invalid agent name " + longest + "a\n"}));
}
