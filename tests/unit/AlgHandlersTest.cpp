// getalginfo against a scripted kernel.

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

/// Numbers of the commands; each counts with a body of 8 bytes.
enum : unsigned int { kAlgs = 47, kPorts = 48 };

/// What a kernel has of one kind.
struct Kind {
  std::uint32_t size;
  std::vector<Bytes> records{};
  std::uint32_t count = 0;     // in place of the number of records, if not 0
  std::uint32_t returned = 0;  // the same of the fetch
};

class AlgKernel : public HandlerKernel {
 public:
  AlgKernel() {
    on(kAlgs, [this](Body& body) { return answer(body, algs); });
    on(kPorts, [this](Body& body) { return answer(body, ports); });
  }
  Kind algs{6};
  Kind ports{40};
  std::vector<std::pair<std::uint32_t, std::uint32_t>> fetched{};  // bytes and records asked for
  std::string agent{};

 private:
  TarnFirewall::FWStatus_t answer(Body& body, const Kind& kind) {
    agent = body.port.agent;
    const auto there = static_cast<std::uint32_t>(kind.records.size());
    if (body.size == 8) {
      EXPECT_EQ(body.word(0), 0u);
      EXPECT_EQ(body.word(4), 0u);
      body.put32(0, kind.size);
      body.put32(4, kind.count != 0 ? kind.count : there);
      return 0;
    }
    fetched.emplace_back(body.word(0), body.word(4));
    EXPECT_EQ(body.word(0), body.size - 8);
    std::size_t at = 8;
    for (const Bytes& record : kind.records) {
      if (record.size() > body.size - at) break;
      body.put(at, record);
      at += record.size();
    }
    body.put32(4, kind.returned != 0 ? kind.returned : there);
    return 0;
  }
};

Bytes alg(int type, int family, int port, int direction, int protocol) {
  return Bytes(6).at(0, {type, family, port >> 8, port, direction, protocol});
}

Bytes port(int flags, int protocol, int direction, int type) {
  return Bytes(40, 0xee)
      .at(16, {0x75, 0x30, 0x00, 0x15})
      .at(20, {flags, protocol, direction, type})
      .at(24, {3, 0, 0, 0})
      .at(32, {0x5c, 0x1e, 0, 1, 0, 0, 0x10, 1});
}

CommandResult run(std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"getalginfo", "-f", kFilter});
  return runCommand(options);
}

}  // namespace

TEST(GetAlgInfo, PrintsNothingWhenThereIsNothing) {
  const AlgKernel kernel;
  EXPECT_EQ(run(), (CommandResult{0, "", ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kAlgs, kPorts}));
}

TEST(GetAlgInfo, NamesGatewaysAndPorts) {
  AlgKernel kernel;
  kernel.algs.records = {alg(0, 2, 2000, 0, 0),    alg(1, 2, 21, 1, 2),     alg(2, 28, 1521, 2, 1),
                         alg(3, 2, 111, 1, 3),     alg(4, 0, 135, 1, 2),    alg(5, 2, 69, 1, 1),
                         alg(6, 2, 65535, 1, 255), alg(255, 255, 0, 255, 2)};
  kernel.ports.records = {port(8, 17, 1, 5),       port(9, 6, 2, 1),  port(10, 0, 1, 2),
                          port(11, 17, 0, 6),      port(7, 17, 1, 3), port(12, 6, 1, 4),
                          port(255, 255, 255, 255)};
  const std::string rest = ", dport: 30000, ctrl_flowid: 5c1e000100001001, rcnt: 3\n";
  EXPECT_EQ(run(),
            (CommandResult{0,
                           "ALG: ??, IPv4 UDP/TCP port 2000, OUT\n"
                           "ALG: FTP, IPv4 TCP port 21, IN\n"
                           "ALG: ORACLE, IPv6 UDP port 1521, OUT\n"
                           "ALG: SUNRPC, IPv4 UDP/TCP port 111, IN\n"
                           "ALG: DCERPC, IPv6 TCP port 135, IN\n"
                           "ALG: TFTP, IPv4 UDP port 69, IN\n"
                           "ALG: ??, IPv4 UDP/TCP port 65535, IN\n"
                           "ALG: ??, IPv6 TCP port 0, OUT\n"
                           "\n"
                           "ALG PORT: TFTP, IPv4 UDP port 21, IN, active: 0" +
                               rest + "ALG PORT: FTP, IPv4 TCP port 21, OUT, active: 0" + rest +
                               "ALG PORT: ORACLE, IPv4 TCP port 21, IN, active: 1" + rest +
                               "ALG PORT: ??, IPv4 UDP port 21, OUT, active: 1" + rest +
                               "ALG PORT: SUNRPC, IPv6 UDP port 21, IN, active: 1" + rest +
                               "ALG PORT: DCERPC, IPv6 TCP port 21, IN, active: 0" + rest +
                               "ALG PORT: ??, IPv6 TCP port 21, OUT, active: 1" + rest,
                           ""}));
  EXPECT_EQ(kernel.fetched,
            (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{48, 8}, {280, 7}}));
}

TEST(GetAlgInfo, ChoicesHaveNoEffect) {
  AlgKernel kernel;
  kernel.algs.records = {alg(1, 2, 21, 1, 2)};
  kernel.ports.records = {port(8, 17, 1, 5)};
  const CommandResult all = run();
  for (const char* const value : {"0", "1", "", "neither"}) {
    EXPECT_EQ(run({"-c", value, "-d", value}), all);
  }
}

TEST(GetAlgInfo, TheAgentAlwaysComesFromTheBuffer) {
  const AlgKernel kernel;
  EXPECT_EQ(runCommand({"getalginfo", "-f", "nic-1-eth0-an-agent.2"}).status, 0);
  EXPECT_EQ(kernel.agent, "an-agent");
  EXPECT_EQ(runCommand({"getalginfo", "-f", "nic-1"}).status, 0);
  EXPECT_EQ(kernel.agent, "kelpco-sfw");
}

TEST(GetAlgInfo, OfTwoCountsTheSmallerIsPrinted) {
  AlgKernel kernel;
  kernel.algs.records = {alg(1, 2, 21, 1, 2), alg(5, 2, 69, 1, 1)};
  const std::string first = "ALG: FTP, IPv4 TCP port 21, IN\n";
  const std::string second = "ALG: TFTP, IPv4 UDP port 69, IN\n";
  for (const std::uint32_t returned : {3u, ~0u}) {
    const LogCapture log;
    kernel.algs.returned = returned;
    EXPECT_EQ(run(), (CommandResult{0, first + second, ""}));
    EXPECT_EQ(log.lines().size(), 1u);
  }
  kernel.algs.returned = 1;
  EXPECT_EQ(run(), (CommandResult{0, first, ""}));
  // More than there are: what was not written is zero.
  kernel.algs.returned = 3;
  kernel.algs.count = 3;
  EXPECT_EQ(run(), (CommandResult{0, first + second + "ALG: ??, IPv6 UDP/TCP port 0, OUT\n", ""}));
}

TEST(GetAlgInfo, ARecordOfAnotherSizeIsNotFetched) {
  for (const std::uint32_t size : {0u, 5u, 7u, ~0u}) {
    AlgKernel kernel;
    kernel.algs.records = {alg(1, 2, 21, 1, 2)};
    kernel.algs.size = size;
    EXPECT_EQ(run(), (CommandResult{0, "",
                                    "ERROR: alg record size mismatch (" +
                                        std::to_string(static_cast<int>(size)) + " != 6)\n"}));
    EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{kAlgs}));
    kernel.algs.records.clear();
    kernel.ports.records = {port(8, 17, 1, 5)};
    kernel.ports.size = size;
    EXPECT_EQ(run(), (CommandResult{0, "",
                                    "ERROR: alg port record size mismatch (" +
                                        std::to_string(static_cast<int>(size)) + " != 40)\n"}))
        << "without records the size of a gateway does not count";
  }
}

TEST(GetAlgInfo, MoreRecordsThanAMessageHoldsHaveNoMemory) {
  AlgKernel kernel;
  for (const std::uint32_t count : {715827883u, ~0u}) {  // 6 times as many have 33 bits
    kernel.algs.count = count;
    EXPECT_EQ(run(),
              (CommandResult{0, "",
                             "ERROR: no memory for getting " +
                                 std::to_string(static_cast<int>(count)) + " alg records\n"}));
  }
  kernel.algs.count = 0;
  kernel.ports.count = 107374183;  // 40 times as many
  EXPECT_EQ(run(), (CommandResult{0, "", "ERROR: no memory for getting 107374183 alg records\n"}));
  EXPECT_TRUE(kernel.fetched.empty());
}

TEST(GetAlgInfo, ReportsEachCallThatFails) {
  AlgKernel kernel;
  kernel.algs.records = {alg(1, 2, 21, 1, 2), alg(5, 2, 69, 1, 1)};
  kernel.ports.records = {port(8, 17, 1, 5)};
  const std::string algs = "ALG: FTP, IPv4 TCP port 21, IN\nALG: TFTP, IPv4 UDP port 69, IN\n";
  const HandlerKernel::Answer answers[] = {kernel.answerTo(kAlgs), kernel.answerTo(kPorts)};
  const auto failing = [&](unsigned int command, int nth) {
    kernel.on(kAlgs, answers[0]);
    kernel.on(kPorts, answers[1]);
    kernel.fail(command, 7, nth);
    return run();
  };
  EXPECT_EQ(failing(kAlgs, 1),
            (CommandResult{1, "", "ERROR: Failed to get alg structure count\n"}));
  EXPECT_EQ(failing(kAlgs, 2), (CommandResult{1, "", "ERROR: Failed to get 2 alg records\n"}));
  EXPECT_EQ(failing(kPorts, 1),
            (CommandResult{1, algs, "ERROR: Failed to get alg port structure count\n"}));
  EXPECT_EQ(failing(kPorts, 2),
            (CommandResult{1, algs, "ERROR: Failed to get 1 alg port records\n"}));
}
