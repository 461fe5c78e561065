// getlbinfo and getlbstat against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const std::string kService = "5a43ddda-c21a-632a-4ae1-00505699723f";
const std::string kEntry = "5a43ddda-c21a-632a-4ae1-005056997240";

/// Numbers of the commands.
enum : unsigned int { kConfig = 86, kConfigSize = 87, kStat = 88, kStatSize = 89, kClear = 90 };

Bytes copyOf(const Body& body, std::size_t size) {
  Bytes bytes(size);
  bytes.assign(body.at, body.at + std::min(size, body.size));
  return bytes;
}

/// One active service with 1 virtual server, 2 pools and 3 members.
class BalancerKernel : public HandlerKernel {
 public:
  BalancerKernel() {
    on(kConfigSize, [this](Body& body) {
      EXPECT_EQ(body.size, 12077u);
      request = copyOf(body, 12077);
      body.put32(0, 1);
      body.put32(77, 1);
      body.put32(81, 2);
      body.put32(85, 3);
      return 0;
    });
    on(kConfig, [this](Body& body) {
      EXPECT_EQ(body.size, 526u);
      fetch = copyOf(body, 81);
      return 0;
    });
    on(kStatSize, [this](Body& body) {
      EXPECT_EQ(body.size, 4141u);
      request = copyOf(body, 4141);
      body.put32(4, servers);
      body.put32(8, pools);
      body.put32(141, 2);
      body.at[140] = static_cast<std::uint8_t>(body.at[140] | missing);
      return 0;
    });
    on(kStat, [this](Body& body) {
      EXPECT_EQ(body.size, 4141u + 200 * servers + (49 + 2 * 183) * pools);
      return 0;
    });
    on(kClear, [this](Body& body) {
      EXPECT_EQ(body.size, 4141u);
      request = copyOf(body, 4141);
      body.at[140] = static_cast<std::uint8_t>(body.at[140] | missing);
      return 0;
    });
  }
  Bytes request = Bytes(0);
  Bytes fetch = Bytes(0);
  std::uint32_t servers = 1;
  std::uint32_t pools = 0;
  std::uint8_t missing = 0;
};

CommandResult config(std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"getlbinfo", "-f", kFilter});
  return runCommand(options);
}

/// Of the service, with these options after it.
CommandResult statistics(std::vector<std::string> options) {
  options.insert(options.begin(), {"getlbstat", "-f", kFilter, "-l", kService});
  return runCommand(options);
}

Bytes statRequest(int flags) { return Bytes(4141).text(12, kService).at(140, {flags}); }

const std::string kServers =
    "{\n"
    "    \"virtual_server_count\": 1,\n"
    "    \"pool_count\": 0,\n"
    "    \"virtual_servers\": [\n"
    "        {\n"
    "            \"index\": 0\n"
    "        }\n"
    "    ],\n"
    "    \"pools\": [\n"
    "    ]\n"
    "}\n";

}  // namespace

TEST(GetLbInfo, FetchesWhatWasCountedAndPrintsIt) {
  const BalancerKernel kernel;
  EXPECT_EQ(config(), (CommandResult{0,
                                     "{\n"
                                     "    \"active_count\": 1,\n"
                                     "    \"stale_count\": 0,\n"
                                     "    \"id\": 0,\n"
                                     "    \"uuid\": \"\",\n"
                                     "    \"flags\": 0,\n"
                                     "    \"services\": [\n"
                                     "        {\n"
                                     "            \"index\": 0,\n"
                                     "            \"state\": \"active\",\n"
                                     "            \"virtual_servers\": 1,\n"
                                     "            \"pools\": 2,\n"
                                     "            \"pool_members\": 3\n"
                                     "        }\n"
                                     "    ]\n"
                                     "}\n",
                                     ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kConfigSize, kConfig}));
  EXPECT_EQ(kernel.request, Bytes(12077));
  EXPECT_EQ(kernel.fetch, Bytes(81).at(0, {0x0e, 0x02}).at(4, {1}));
}

TEST(GetLbInfo, EveryOptionStandsInItsPlace) {
  const BalancerKernel kernel;
  EXPECT_EQ(config({"-c"}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).at(76, {1}));
  EXPECT_EQ(config({"-a", "-d"}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).at(76, {6}));
  EXPECT_EQ(config({"-i", "258"}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).at(8, {2, 1}).at(76, {16}));
  EXPECT_EQ(config({"-u", kService}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).text(12, kService).at(76, {8}));
  EXPECT_EQ(config({"--id=0", "--uuid", kService, "--current", "--all", "--debug"}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).text(12, kService).at(76, {31}));
  EXPECT_EQ(kernel.fetch, Bytes(81).at(0, {0x0e, 0x02}).at(4, {1}).text(16, kService).at(80, {31}));
}

TEST(GetLbInfo, AUuidIsSentWith63CharactersAndTheLastOneCounts) {
  const BalancerKernel kernel;
  const std::string tail(40, 't');
  EXPECT_EQ(config({"-u", kService + tail}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).text(12, (kService + tail).substr(0, 63)).at(76, {8}));
  EXPECT_EQ(config({"-u", kService + tail, "-u", kEntry}).status, 0);
  EXPECT_EQ(kernel.request, Bytes(12077).text(12, kEntry).at(76, {8}));
}

TEST(GetLbInfo, RefusesWhatIsNoIdentifier) {
  const BalancerKernel kernel;
  for (const char* const text : {"-1", "", "x", "1x", "2147483648", "99999999999999999999"}) {
    EXPECT_EQ(config({"-i", text}),
              (CommandResult{1, "", std::string("ERROR: bad lbs id ") + text + "\n"}));
  }
  for (const char* const text : {"", "x", "5a43ddda-c21a-632a-4ae1", "%s%n"}) {
    EXPECT_EQ(config({"-u", text}),
              (CommandResult{1, "", std::string("ERROR: bad uuid ") + text + "\n"}));
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetLbInfo, ReportsWhichCallFailed) {
  BalancerKernel kernel;
  kernel.fail(kConfig, 7);
  EXPECT_EQ(config(), (CommandResult{1, "", "ERROR: Failed to get LB info\n"}));
  kernel.fail(kConfigSize, 7);
  EXPECT_EQ(config(), (CommandResult{1, "", "ERROR: Failed to get LB info size\n"}));
}

TEST(GetLbInfo, SizesThatNoMessageHoldsAreNotFetched) {
  const LogCapture log;
  BalancerKernel kernel;
  const auto sized = [&](std::size_t offset, std::uint32_t value) {
    kernel.on(kConfigSize, [=](Body& body) {
      body.put32(0, 1);
      body.put32(offset, value);
      return 0;
    });
  };
  for (const std::uint32_t count : {1001u, ~0u}) {
    for (const std::size_t offset : {std::size_t{0}, std::size_t{4}}) {
      sized(offset, count);
      EXPECT_EQ(config(), (CommandResult{1, "", "ERROR: Failed to get LB info\n"})) << count;
    }
  }
  for (const std::size_t offset : {std::size_t{77}, std::size_t{81}, std::size_t{85}}) {
    sized(offset, ~0u);
    EXPECT_EQ(config(), (CommandResult{1, "", "ERROR: Failed to get LB info\n"})) << offset;
  }
  EXPECT_EQ(kernel.timesAsked(kConfig), 0u);
}

TEST(GetLbInfo, SaysItsVerbosityWithItsComponent) {
  const LogCapture log;
  const BalancerKernel kernel;
  const std::string out = config({"-v2", "-m", "cmd"}).out;
  EXPECT_EQ(out.substr(0, out.find('{')), "verbose level : 2\nweirgate agent: kelpco-sfw\n");
  EXPECT_EQ(config({"-m", "none"}), (CommandResult{1, "", "ERROR: bad component id none\n"}));
}

TEST(GetLbStat, FetchesWhatWasCountedAndPrintsIt) {
  const BalancerKernel kernel;
  EXPECT_EQ(statistics({"-s"}), (CommandResult{0, kServers, ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kStatSize, kStat}));
  EXPECT_EQ(kernel.request, statRequest(5));
}

TEST(GetLbStat, EveryOptionStandsInItsPlace) {
  const BalancerKernel kernel;
  EXPECT_EQ(statistics({"-s", "-u", kEntry}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(7).text(76, kEntry));
  EXPECT_EQ(statistics({"--pool", "--uuid", kEntry, "--debug"}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(27).text(76, kEntry));
  EXPECT_EQ(runCommand({"getlbstat", "-f", kFilter, "--lbs uuid", kService, "--vs"}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(5));
  EXPECT_EQ(runCommand({"getlbstat", "-f", kFilter, "--lbs uuid=" + kService, "--vs"}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(5));
}

TEST(GetLbStat, AnIdentifierBeforeItsKindIsNotKept) {
  const BalancerKernel kernel;
  EXPECT_EQ(statistics({"-u", kEntry, "-s"}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(5));
  EXPECT_EQ(statistics({"-u", kEntry, "-p"}).status, 0);
  EXPECT_EQ(kernel.request, statRequest(9));
}

TEST(GetLbStat, RefusesWhatIsNoIdentifierOnStandardOutput) {
  const BalancerKernel kernel;
  for (const char* const text : {"", "x", "%s%n"}) {
    const std::string line = std::string(text) + " is not valid\n";
    EXPECT_EQ(runCommand({"getlbstat", "-f", kFilter, "-l", text}),
              (CommandResult{1, "lbs " + line, ""}));
    EXPECT_EQ(statistics({"-s", "-u", text}), (CommandResult{1, "virtual server " + line, ""}));
    EXPECT_EQ(statistics({"-p", "-u", text}), (CommandResult{1, "pool " + line, ""}));
    EXPECT_EQ(statistics({"-u", text, "-s"}), (CommandResult{1, "pool " + line, ""}));
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetLbStat, SaysWhatIsMissingInItsOrder) {
  const BalancerKernel kernel;
  EXPECT_EQ(runCommand({"getlbstat", "-s", "-p"}),
            (CommandResult{1, "", "ERROR: filter is missing.\n"}));
  EXPECT_EQ(runCommand({"getlbstat", "-f", kFilter, "-s", "-p"}),
            (CommandResult{1, "", "ERROR: Please specify lbs UUID\n"}));
  EXPECT_EQ(statistics({}), (CommandResult{1, "", "ERROR: Please specify vs or pool flag\n"}));
  EXPECT_EQ(statistics({"-p", "-s"}),
            (CommandResult{1, "", "ERROR: Invalid, both vs and pool flag are set\n"}));
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetLbStat, PrintsTheCountsWhenMoreIsAskedFor) {
  BalancerKernel kernel;
  std::string out = statistics({"-s", "-d"}).out;
  EXPECT_EQ(out.substr(0, out.find('{')), "vs cnt: 1, pool cnt: 0\npm cnt: 0\n");
  EXPECT_NE(out.find("\"bytes\": \"" + std::string(400, '0') + "\"\n"), std::string::npos);
  kernel.servers = 0;
  kernel.pools = 1;
  out = statistics({"-p", "-d"}).out;
  EXPECT_EQ(out.substr(0, out.find('{')), "vs cnt: 0, pool cnt: 1\npm cnt: 2 \n");
  EXPECT_NE(out.find("\"bytes\": \"" + std::string(98, '0') + "\",\n"), std::string::npos);
  EXPECT_NE(out.find("\"bytes\": \"" + std::string(366, '0') + "\"\n"), std::string::npos);
}

TEST(GetLbStat, CountsThatNoMessageHoldsArePrintedAsFarAsTheyAreThere) {
  const LogCapture log;
  BalancerKernel kernel;
  kernel.on(kStatSize, [](Body& body) {
    body.put32(4, ~0u);
    body.put32(8, ~0u);
    return 0;
  });
  std::string members;
  for (int i = 0; i < 1000; ++i) members += "0 ";
  EXPECT_EQ(statistics({"-p", "-d"}),
            (CommandResult{1, "vs cnt: -1, pool cnt: -1\npm cnt: " + members + "\n",
                           "ERROR: Failed to get LB stat\n"}));
  EXPECT_EQ(kernel.timesAsked(kStat), 0u);
}

TEST(GetLbStat, ClearsOnRequest) {
  const BalancerKernel kernel;
  const auto cleared = [](const std::string& what) {
    return "{\n    \"result\": \"" + what +
           " stats on datapath is cleared. In rare cases some of the counters may not be cleared "
           "and when that happens please try issuing the command again\"\n}\n";
  };
  EXPECT_EQ(statistics({"-s", "-z"}), (CommandResult{0, cleared("vs"), ""}));
  EXPECT_EQ(kernel.request, statRequest(37).at(0, {0x2d, 0x10}));
  EXPECT_EQ(statistics({"-p", "--zero", "-u", kEntry}), (CommandResult{0, cleared("pool"), ""}));
  EXPECT_EQ(kernel.request, statRequest(43).at(0, {0x2d, 0x10}).text(76, kEntry));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kClear, kClear}));
}

TEST(GetLbStat, SaysWhatIsNotThereAndSucceeds) {
  BalancerKernel kernel;
  kernel.missing = 64;
  EXPECT_EQ(statistics({"-s"}), (CommandResult{0, "lbs " + kService + " is not valid\n", ""}));
  kernel.missing = 128;
  EXPECT_EQ(statistics({"-s", "-u", kEntry}),
            (CommandResult{0, "virtual server " + kEntry + " is not valid\n", ""}));
  kernel.missing = 192;
  EXPECT_EQ(statistics({"-p"}),
            (CommandResult{0, "lbs " + kService + " is not valid\npool  is not valid\n", ""}));
}

TEST(GetLbStat, WhatIsNotThereIsNamedAsItWasAskedForWhateverTheReplyHas) {
  BalancerKernel kernel;
  for (const unsigned int command : {kStat, kClear}) {
    const HandlerKernel::Answer answer = kernel.answerTo(command);
    kernel.on(command, [answer](Body& body) {
      answer(body);
      body.putText(12, "another service");
      body.putText(76, "another entry");
      body.at[140] = 192 + 8;
      return 0;
    });
  }
  const std::string lines =
      "lbs " + kService + " is not valid\nvirtual server " + kEntry + " is not valid\n";
  EXPECT_EQ(statistics({"-s", "-u", kEntry}), (CommandResult{0, lines, ""}));
  const CommandResult cleared = statistics({"-s", "-u", kEntry, "-z"});
  EXPECT_EQ(cleared.out.substr(cleared.out.find("}\n") + 2), lines);
}

TEST(GetLbStat, ReportsWhichCallFailed) {
  BalancerKernel kernel;
  kernel.missing = 64;
  kernel.fail(kStat, 7);
  EXPECT_EQ(statistics({"-s"}), (CommandResult{1, "lbs " + kService + " is not valid\n",
                                               "ERROR: Failed to get LB stat\n"}));
  kernel.fail(kStatSize, 7);
  EXPECT_EQ(statistics({"-s"}), (CommandResult{1, "", "ERROR: Failed to get LB stat size\n"}));
  kernel.fail(kClear, 7);
  EXPECT_EQ(statistics({"-s", "-z"}), (CommandResult{1, "", "ERROR: Failed to clear LB stat\n"}));
}
