// getattrinfo and getstatedpiinfo against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const std::string kReading = "ERROR: reading dst port";

/// Numbers of the commands.
enum : unsigned int { kAttributes = 74, kInspection = 77 };

/// Answers with 3 attributes of 54 bytes, and with a state that was found.
class InfoKernel : public HandlerKernel {
 public:
  InfoKernel() {
    on(kAttributes, [this](Body& body) {
      request.assign(body.at, body.at + body.size);
      body.put32(52, 3);
      body.put32(56, 54);
      return 0;
    });
    on(kInspection, [this](Body& body) {
      request.assign(body.at, body.at + body.size);
      body.put(16, {found, state});
      return 0;
    });
  }
  Bytes request = Bytes(0);
  std::uint8_t found = 1;
  std::uint8_t state = 2;
};

CommandResult run(const std::string& command, const std::vector<std::string>& options) {
  std::vector<std::string> words{command, "-Override", "-f", kFilter};
  words.insert(words.end(), options.begin(), options.end());
  return runCommand(words);
}

CommandResult attributes(const std::vector<std::string>& options) {
  return run("getattrinfo", options);
}

CommandResult inspection(const std::vector<std::string>& options) {
  return run("getstatedpiinfo", options);
}

std::string usageOf(const std::string& command) {
  return runCommand({command, "-Override", "-h"}).out;
}

const std::string kAnswer = "Number of attributes : 3\nSerialization size : 54\n";

/// The connection from 10.0.0.1 to 10.0.0.2, by TCP and out.
Bytes byConnection() {
  return Bytes(60).at(0, {2}).at(4, {10, 0, 0, 1}).at(20, {10, 0, 0, 2}).at(40, {4, 0, 0, 6});
}

}  // namespace

TEST(GetAttrInfo, AConnectionIsOutAndTcpWithoutPortsUntilItIsSaid) {
  const InfoKernel kernel;
  EXPECT_EQ(attributes({"-S", "10.0.0.1", "-D", "10.0.0.2"}), (CommandResult{0, kAnswer, ""}));
  EXPECT_EQ(kernel.request, byConnection());
}

TEST(GetAttrInfo, EveryOptionStandsInItsPlace) {
  const InfoKernel kernel;
  EXPECT_EQ(attributes({"-S", "10.0.0.1", "-D", "10.0.0.2", "-s", "258", "-d", "772", "-p", "udp",
                        "-i", "IN"}),
            (CommandResult{0, kAnswer, kReading}));
  EXPECT_EQ(kernel.request, byConnection().at(36, {1, 2, 3, 4}).at(40, {2, 0, 0, 17}));
  EXPECT_EQ(attributes({"--srcip=10.0.0.1", "--dstip=10.0.0.2", "--sport=65535", "--dport=0",
                        "--proto=tcp", "--direction=OUT"}),
            (CommandResult{0, kAnswer, kReading}));
  EXPECT_EQ(kernel.request, byConnection().at(36, {255, 255}));
}

TEST(GetAttrInfo, BothAddressesWithAColonAreIpv6) {
  const InfoKernel kernel;
  EXPECT_EQ(attributes({"-S", "2001:db8::1", "-D", "::2"}), (CommandResult{0, kAnswer, ""}));
  EXPECT_EQ(kernel.request, Bytes(60)
                                .at(0, {2})
                                .at(4, {0x20, 0x01, 0x0d, 0xb8})
                                .at(19, {1})
                                .at(35, {2})
                                .at(40, {5, 0, 0, 6}));
}

TEST(GetAttrInfo, RefusesAddressesThatAreNone) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getattrinfo");
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"10.0.0.1", "::2"}, {"::1", "10.0.0.2"}, {"10.0.0", "10.0.0.2"}, {"10.0.0.1", ""},
      {"a", "b"},          {"::1", ":"},        {"::1%lo", "::2"},      {" 10.0.0.1", "10.0.0.2"}};
  for (const auto& [source, destination] : rows) {
    EXPECT_EQ(attributes({"-S", source, "-D", destination}),
              (CommandResult{1, usage, "ERROR: Invalid SRC/DST Address\n"}))
        << source << ' ' << destination;
  }
  for (const char* const option : {"-S", "-D"}) {
    EXPECT_EQ(attributes({option, "10.0.0.1"}),
              (CommandResult{1, usage, "ERROR: SRC or DST Addr is missing\n"}));
  }
  EXPECT_EQ(attributes({}), (CommandResult{1, usage, "ERROR: SRC or DST Addr is missing\n"}));
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetAttrInfo, AnIdentifierGoesBeforeAddressesAndInTheHostsOrder) {
  const InfoKernel kernel;
  EXPECT_EQ(attributes({"-m", "258"}), (CommandResult{0, kAnswer, ""}));
  EXPECT_EQ(kernel.request, Bytes(60).at(44, {2, 1}));
  EXPECT_EQ(attributes({"-S", "10.0.0.1", "--stateid=-1"}), (CommandResult{0, kAnswer, ""}));
  EXPECT_EQ(kernel.request, Bytes(60).at(44, {255, 255, 255, 255, 255, 255, 255, 255}));
}

TEST(GetAttrInfo, LooksAtWhatIsWantedBeforeItOpensTheLibrary) {
  const std::string usage = usageOf("getattrinfo");
  const DefaultHandle none(nullptr);
  EXPECT_EQ(attributes({"-m", "0"}), (CommandResult{1, usage, "ERROR: invalid state id\n"}));
  EXPECT_EQ(attributes({"-S", "10.0.0.1"}),
            (CommandResult{1, usage, "ERROR: SRC or DST Addr is missing\n"}));
  EXPECT_EQ(attributes({"-S", "10.0.0.1", "-D", "::2"}),
            (CommandResult{1, usage, "ERROR: Invalid SRC/DST Address\n"}));
  EXPECT_EQ(attributes({"-m", "1"}),
            (CommandResult{1, "", "ERROR: unable to open firewall library\n"}));
}

TEST(GetAttrInfo, RefusesWhatIsNoNumber) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getattrinfo");
  for (const char* const text : {"", "x", "1x", "0x10", "99999999999999999999"}) {
    EXPECT_EQ(attributes({"-m", text}), (CommandResult{1, usage, "ERROR: Invalid state id\n"}))
        << text;
  }
  EXPECT_EQ(attributes({"-m", "0"}), (CommandResult{1, usage, "ERROR: invalid state id\n"}));
  for (const char* const text : {"", "x", "65536", "-1", "1x"}) {
    EXPECT_EQ(attributes({"-s", text}),
              (CommandResult{1, usage, "ERROR: Invalid Sport Specified\n"}))
        << text;
    EXPECT_EQ(attributes({"-d", text}),
              (CommandResult{1, usage, kReading + "ERROR: Invalid Dport Specified\n"}))
        << text;
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetAttrInfo, ABadProtocolOrDirectionEndsWithZero) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getattrinfo");
  EXPECT_EQ(attributes({"-p", "nonesuch"}),
            (CommandResult{0, usage, "ERROR: Invalid Protocol Name Specified\n"}));
  EXPECT_EQ(attributes({"-p", "icmp"}),
            (CommandResult{0, usage, "ERROR: Invalid Protocol Specified\n"}));
  for (const char* const text : {"in", "out", "INOUT", "", "OUTER"}) {
    EXPECT_EQ(attributes({"-i", text}), (CommandResult{0, usage, "ERROR: Invalid Dir Specified\n"}))
        << text;
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetAttrInfo, LettersWithoutAMeaningPrintTheUsage) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getattrinfo");
  for (const char* const option : {"-a", "-x", "-C", "-U", "-t", "-o"}) {
    EXPECT_EQ(attributes({option, "1"}), (CommandResult{1, usage, ""})) << option;
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetAttrInfo, SaysWhatItAsksForAndCallsEveryProtocolTcp) {
  const LogCapture log;
  const InfoKernel kernel;
  const std::string asked = "DEBUG: SRC 10.0.0.1:7  DST 10.0.0.2:8  Dir IN Proto tcp\n";
  const std::vector<std::string> options = {"-S", "10.0.0.1", "-D", "10.0.0.2", "-s", "7",
                                            "-d", "8",        "-p", "udp",      "-i", "IN"};
  std::vector<std::string> words = options;
  words.emplace_back("-v2");
  EXPECT_EQ(attributes(words), (CommandResult{0,
                                              "verbose level : 2\nweirgate agent: kelpco-sfw\n"
                                              "weirgate vm uuid: nic-1002672-eth0-kelpco-sfw.2\n" +
                                                  asked + kAnswer,
                                              kReading}));
  // A level of 0 has no lines of its own.
  words.back() = "-v0";
  EXPECT_EQ(attributes(words), (CommandResult{0, asked + kAnswer, kReading}));
  EXPECT_EQ(attributes({"-v", "-m", "1"}).out,
            "verbose level : 1\nweirgate agent: kelpco-sfw\n"
            "weirgate vm uuid: nic-1002672-eth0-kelpco-sfw.2\n" +
                kAnswer);
}

TEST(GetAttrInfo, LevelsAddUpAndAnAgentThatIsNotInTheNameIsTheUsualOne) {
  const LogCapture log;
  const InfoKernel kernel;
  const std::string level =
      "verbose level : 5\nweirgate agent: kelpco-sfw\nweirgate vm uuid: nic-1\n";
  for (const char* const command : {"getattrinfo", "getstatedpiinfo"}) {
    const std::string out =
        runCommand({command, "-Override", "-f", "nic-1", "-v2", "-v-4", "-v", "-v2"}).out;
    EXPECT_EQ(out.substr(0, level.size()), level) << command;
  }
}

TEST(GetAttrInfo, AFailureHasAStatusAndNoText) {
  InfoKernel kernel;
  kernel.fail(kAttributes, 3);
  EXPECT_EQ(attributes({"-m", "1"}), (CommandResult{1, "", ""}));
  EXPECT_EQ(attributes({"-S", "10.0.0.1", "-D", "10.0.0.2"}), (CommandResult{1, "", ""}));
}

TEST(GetStateDpiInfo, SendsTheIdentifierInNetworkOrder) {
  const InfoKernel kernel;
  EXPECT_EQ(inspection({"-s", "0102030405060708"}),
            (CommandResult{0,
                           "oaks: stateid: 578437695752307201\n"
                           "oaks: stateid: 807060504030201\n"
                           "state id : 807060504030201\n"
                           "DPI State : " +
                               std::string(FW_DPIStateToString(2)) + "\n",
                           ""}));
  EXPECT_EQ(kernel.request, Bytes(24).at(0, {1}).at(8, {1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(GetStateDpiInfo, OnlyOneSaysThatAStateWasFound) {
  InfoKernel kernel;
  for (const std::uint8_t found : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{255}}) {
    kernel.found = found;
    EXPECT_EQ(inspection({}), (CommandResult{0, "state id : 0\nfailed to find state\n", ""}));
  }
  kernel.found = 1;
  kernel.state = 255;
  EXPECT_EQ(inspection({}), (CommandResult{0, "state id : 0\nDPI State : UNKNOWN\n", ""}));
}

TEST(GetStateDpiInfo, TheIdentifierIsThatOfTheReply) {
  InfoKernel kernel;
  kernel.on(kInspection, [](Body& body) {
    body.put64(8, 0xfedcba9876543210);
    return 0;
  });
  EXPECT_EQ(inspection({"-s", "0"}).out,
            "oaks: stateid: 0\noaks: stateid: 0\n"
            "state id : fedcba9876543210\nfailed to find state\n");
  // A count without an entry, and one of more entries than were asked for.
  for (const std::uint32_t count : {0u, 2u, ~0u}) {
    const LogCapture log;
    kernel.on(kInspection, [count](Body& body) {
      body.put32(0, count);
      body.put64(8, 5);
      return 0;
    });
    EXPECT_EQ(inspection({}), (CommandResult{0,
                                             count == 0 ? "state id : 0\nfailed to find state\n"
                                                        : "state id : 5\nfailed to find state\n",
                                             ""}));
  }
}

TEST(GetStateDpiInfo, ARequestThatFailsHasFoundNoState) {
  InfoKernel kernel;
  kernel.fail(kInspection, 7);
  EXPECT_EQ(inspection({}), (CommandResult{0, "state id : 0\nfailed to find state\n", ""}));
}

TEST(GetStateDpiInfo, RefusesWhatIsNoNumber) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getstatedpiinfo");
  for (const char* const text : {"", "x", "1g", "10000000000000000"}) {
    EXPECT_EQ(inspection({"-s", text}),
              (CommandResult{1, usage, std::string("ERROR: Invalid state id ") + text + "\n"}));
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetStateDpiInfo, TwoOfItsLongWordsPrintTheUsage) {
  const InfoKernel kernel;
  const std::string usage = usageOf("getstatedpiinfo");
  EXPECT_EQ(inspection({"--stateid=1"}), (CommandResult{1, usage, ""}));
  EXPECT_EQ(inspection({"--byteorder"}), (CommandResult{1, usage, ""}));
  EXPECT_TRUE(kernel.asked().empty());
}
