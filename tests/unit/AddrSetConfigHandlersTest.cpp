// The handler of the configuration of address sets, against a scripted kernel.

#include <gtest/gtest.h>

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

/// Keeps the configuration that it was sent; has one set, of these addresses.
class SetKernel : public HandlerKernel {
 public:
  SetKernel() {
    on(15, [this](Body& body) {
      body.put32(38, counted);
      body.put32(42, type);
      body.put32(46, counted * 144);
      return 0;
    });
    on(18, [this](Body& body) {
      body.put32(50, returned);
      for (std::size_t i = 0; i < records.size() && 54 + 145 * (i + 1) <= body.size; ++i)
        body.put(54 + 145 * i, records[i]);
      return 0;
    });
    on(46, [this](Body& body) {
      sent = Bytes(body.size);
      for (std::size_t i = 0; i < body.size; ++i) sent[i] = body.at[i];
      body.put32(186, first);
      body.put32(190, second);
      return 0;
    });
  }

  std::uint32_t type = 1, counted = 2, returned = 2, first = 0, second = 0;
  std::vector<Bytes> records = {Bytes(145).at(0, {1}).at(4, {10, 0, 0, 1}).at(144, {1}),
                                Bytes(145).at(0, {2}).at(4, {0x20, 1}).at(144, {0xff})};
  Bytes sent = Bytes(0);
};

CommandResult run(std::vector<std::string> options) {
  options.insert(options.begin(), {"setaddrsetcfg", "-Override", "-f", kFilter});
  return runCommand(options);
}

CommandResult failed(const std::string& line) { return {1, "", line}; }

std::string usage() { return runCommand({"setaddrsetcfg", "-Override", "-h"}).out; }

}  // namespace

TEST(SetAddrSetCfg, EveryWordHasItsNumber) {
  const std::vector<std::pair<const char*, int>> rows = {
      {"enablestats", 1}, {"disablestats", 2}, {"unsetstats", 3}};
  for (const auto& [word, number] : rows) {
    SetKernel kernel;
    EXPECT_EQ(run({word}), (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.sent, Bytes(194).at(0, {number}));
    EXPECT_EQ(run({"-a", "web", word}), (CommandResult{0, "", ""}));
    EXPECT_EQ(kernel.sent, Bytes(194).at(0, {number}).text(4, "web"));
  }
}

TEST(SetAddrSetCfg, ShowsTheStateOfTheFilterAndOfASet) {
  SetKernel kernel;
  const std::vector<std::pair<std::uint32_t, std::string>> filters = {
      {0, "disabled"}, {1, "enabled"}, {2, "disabled"}, {0xffffffff, "disabled"}};
  const std::vector<std::pair<std::uint32_t, std::string>> sets = {
      {0, "unset"}, {1, "enabled"}, {2, "disabled"}, {0xffffffff, "disabled"}};
  for (const auto& [filter, ofFilter] : filters) {
    for (const auto& [set, ofSet] : sets) {
      kernel.first = filter;
      kernel.second = set;
      EXPECT_EQ(run({"display"}), (CommandResult{0, "kif stats = " + ofFilter + "\n", ""}));
      EXPECT_EQ(kernel.sent, Bytes(194).at(0, {4}));
      EXPECT_EQ(run({"-a", "web", "display"}),
                (CommandResult{
                    0, "kif stats = " + ofFilter + ", addrset web stats = " + ofSet + "\n", ""}));
    }
  }
}

TEST(SetAddrSetCfg, MarksAnAddress) {
  SetKernel kernel;
  kernel.first = 0;
  kernel.second = 0xfffffffe;
  const CommandResult changed{0, "kentry valid field changed from 0x0 to 0xfffffffe\n", ""};
  const std::string longest(37, 's');
  EXPECT_EQ(run({"-a", longest, "-i", "10.0.0.1", "setvalid"}), changed);
  EXPECT_EQ(kernel.sent, Bytes(194).at(0, {5}).text(4, longest).at(42, {1}).at(46, {10, 0, 0, 1}));
  EXPECT_EQ(run({"-a", "web", "-i", "2001:db8::ff", "clearvalid"}), changed);
  EXPECT_EQ(kernel.sent, Bytes(194)
                             .at(0, {6})
                             .text(4, "web")
                             .at(42, {2})
                             .at(46, {0x20, 1, 0x0d, 0xb8})
                             .at(61, {0xff}));
}

TEST(SetAddrSetCfg, WhatIsRefusedIsNotSent) {
  SetKernel kernel;
  const std::string both =
      "ERROR: must specify an addrset and ipaddress when setting or clearing valid flag\n";
  for (const char* const word : {"setvalid", "clearvalid"}) {
    EXPECT_EQ(run({word}), failed(both));
    EXPECT_EQ(run({"-a", "web", word}), failed(both));
    EXPECT_EQ(run({"-i", "10.0.0.1", word}), failed(both));
    for (const char* const bad :
         {"10.0.0", "10.0.0.1/8", "10.0.0.256", "x", "", "2001:db8::g", ":", "::1%eth0"}) {
      EXPECT_EQ(run({"-a", "web", "-i", bad, word}), failed("ERROR: invalid ip address.\n"));
    }
  }
  EXPECT_EQ(run({"getvalid"}), failed("ERROR: must specify an addrset to read valid flags\n"));
  EXPECT_EQ(run({"-a", std::string(38, 's'), "display"}),
            failed("ERROR: invalid addrset name " + std::string(38, 's') + "\n"));
  EXPECT_EQ(run({"-i", std::string(47, '1'), "display"}),
            failed("ERROR: invalid ipaddr " + std::string(47, '1') + "\n"));
  EXPECT_EQ(run({"-a", "web", "-i", std::string(46, '1'), "setvalid"}),
            failed("ERROR: invalid ip address.\n"));
  EXPECT_EQ(run({}), (CommandResult{1, usage(), "ERROR: command is missing.\n"}));
  for (const char* const word : {"Display", "displa", "displays", "", "7"})
    EXPECT_EQ(run({word}), (CommandResult{1, usage(), ""})) << word;
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(SetAddrSetCfg, TheWordIsTheLastArgument) {
  SetKernel kernel;
  EXPECT_EQ(run({"enablestats", "display"}), (CommandResult{0, "kif stats = disabled\n", ""}));
  EXPECT_EQ(run({"display", "other"}), (CommandResult{1, usage(), ""}));
  EXPECT_EQ(run({"display", "-a", "web"}), (CommandResult{1, usage(), ""}));
  EXPECT_EQ(run({"--", "display"}), (CommandResult{0, "kif stats = disabled\n", ""}));
}

TEST(SetAddrSetCfg, ReportsWhatTheKernelRefuses) {
  SetKernel kernel;
  kernel.fail(46, 29);
  for (const char* const word : {"enablestats", "display"}) {
    EXPECT_EQ(run({word}), failed(std::string("ERROR: Failed to set addrset config for filter ") +
                                  kFilter + ".\n"));
  }
}

TEST(SetAddrSetCfg, ShowsTheMarksOfASetWithStatusOne) {
  SetKernel kernel;
  EXPECT_EQ(run({"-a", "web", "getvalid"}), (CommandResult{1,
                                                           "addrset web {\n"
                                                           "ip 10.0.0.1   dlb_valid_cnt = 0x01,\n"
                                                           "ip 2001::   dlb_valid_cnt = 0xff,\n"
                                                           "}\n",
                                                           ""}));
  EXPECT_EQ(kernel.timesAsked(46), 0u);

  // An address without a text is left out.
  kernel.records[0] = Bytes(145).at(0, {99});
  EXPECT_EQ(run({"-a", "web", "getvalid"}).out,
            "addrset web {\nip 2001::   dlb_valid_cnt = 0xff,\n}\n");
  kernel.counted = 0;
  EXPECT_EQ(run({"-a", "web", "getvalid"}), (CommandResult{1, "addrset web {\n}\n", ""}));
  kernel.type = 2;
  EXPECT_EQ(run({"-a", "web", "getvalid"}), failed(""));
}

TEST(SetAddrSetCfg, AReplyWithoutMarksIsSaid) {
  SetKernel kernel;
  kernel.returned = 0;
  EXPECT_EQ(run({"-a", "web", "getvalid"}),
            (CommandResult{1, "there is no address in addrset web.\n", ""}));
}

TEST(SetAddrSetCfg, AReplyThatCountsMoreThanWereAskedForIsCut) {
  for (const std::uint32_t returned : {3u, 0xffffffffu}) {
    const LogCapture log;
    SetKernel kernel;
    kernel.returned = returned;
    const CommandResult result = run({"-a", "web", "getvalid"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out.find("0x01,\n"), result.out.rfind("0x01,\n"));
    EXPECT_EQ(result.err, "");
  }
}

TEST(SetAddrSetCfg, ReportsEveryCallThatFails) {
  const LogCapture log;
  {
    SetKernel kernel;
    kernel.fail(15, 29);
    EXPECT_EQ(run({"-a", "web", "getvalid"}),
              failed("ERROR: failed to get size of addrset web: no addrset\n"));
  }
  {
    SetKernel kernel;
    kernel.fail(18, 29);
    EXPECT_EQ(run({"-a", "web", "getvalid"}),
              failed("ERROR: failed to get addrv of addrset web: no addrset\n"));
  }
  {
    SetKernel kernel;
    const auto answer = kernel.answerTo(15);
    kernel.on(15, [&](Body& body) {
      DeviceShim::failNextCalloc();
      return answer(body);
    });
    EXPECT_EQ(run({"-a", "web", "getvalid"}), failed("ERROR: no memory for addrset web\n"));
  }
  {
    SetKernel kernel;
    kernel.counted = 0xffffffff;  // 145 times this wraps 32 bits
    EXPECT_EQ(run({"-a", "web", "getvalid"}).status, 1);
    EXPECT_EQ(kernel.timesAsked(18), 0u);
  }
}
