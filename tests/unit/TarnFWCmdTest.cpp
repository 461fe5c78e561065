#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "StatusChannel.h"
#include "TarnFWCmd.h"
#include "TarnFWFixedCmd.h"
#include "TarnFWLog.h"
#include "TestCmd.h"

using namespace TarnFirewall;

namespace {

dvs_port_ typed(std::uint8_t type, const std::string& identifier, const std::string& agent = "") {
  dvs_port_ port = filterPort(identifier);
  agent.copy(port.agent, sizeof port.agent);
  port.index[0] = 5;
  setSelectorType(port, type);
  return port;
}

class TarnFWCmd : public testing::Test {
 protected:
  TarnFWCmd() { Sleeps::clear(); }

  FWStatus_t execute(TestCmd& command, void* context = nullptr) {
    const FWStatus_t status = command.execute(&kernel.library(), &reply, &size, context);
    EXPECT_EQ(reply != nullptr, status == 0);
    if (reply != nullptr) {
      EXPECT_TRUE(CTarnFWCmd::releaseCmdBuffer(&kernel.library(), reply));
    }
    return status;
  }

  FakeKernel kernel;
  void* reply = &kernel;
  unsigned int size = 77;
};

class Fixed final : public CTarnFWFixedCmd<9, 84> {
 public:
  explicit Fixed(const dvs_port_* port) : CTarnFWFixedCmd(port) {}
  std::string toString() const override { return "fixed"; }
  std::vector<std::size_t> sizes;

 private:
  void fill(std::span<std::byte> body) const override { body[3] = std::byte{7}; }
  void read(const CTarnFWCmdReply& reply) override { sizes.push_back(reply.size()); }
};

}  // namespace

TEST_F(TarnFWCmd, SendsHeaderEnvelopeAndBody) {
  TestCmd command(9, 8);
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(size, 8u);
  ASSERT_EQ(kernel.messages().size(), 1u);
  Bytes expected(40);
  expected.text(0, "TARN").at(4, {20}).at(12, {1, 1, 0, 1, 1, 0, 0, 0});
  expected.at(20, {8, 0, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0});
  for (std::size_t i = 32; i < 40; ++i) expected.at(i, {0x11});
  EXPECT_EQ(kernel.last().bytes, expected);
}

TEST_F(TarnFWCmd, HandsTheReplyToTheCommandOnSuccess) {
  TestCmd command(9, 4);
  kernel.answer(0, Bytes({'a', 'b', 'c', 'd'}));
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(command.replies, std::vector<std::string>{"abcd"});
}

TEST_F(TarnFWCmd, PassesTheCallersContextOn) {
  TestCmd command;
  int context = 0;
  EXPECT_EQ(execute(command, &context), 0u);
  EXPECT_EQ(kernel.last().context, &context);
}

TEST_F(TarnFWCmd, AStatusOfTheKernelIsReturnedWithoutARetry) {
  LogCapture log;
  TestCmd command(9, 8);
  kernel.answer(28);
  EXPECT_EQ(execute(command), 28u);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(kernel.messages().size(), 1u);
  EXPECT_TRUE(command.replies.empty());
  EXPECT_TRUE(Sleeps::seen().empty());
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"4|tarnfw: TarnFWCmd:execute():N failed to execute command "
                                     "GetRuleSetInfo: no ruleset\n\n"});
}

TEST_F(TarnFWCmd, OnlyABusyKernelIsAskedAgain) {
  LogCapture log;
  for (FWStatus_t status = 1; status <= 75; ++status) {
    if (status == 26) continue;
    TestCmd command;
    kernel.answer(status);
    EXPECT_EQ(execute(command), status);
  }
  EXPECT_EQ(kernel.messages().size(), 74u);
  EXPECT_TRUE(Sleeps::seen().empty());
}

TEST_F(TarnFWCmd, AStatusWithoutATextIsReturnedAsItIs) {
  LogCapture log;
  TestCmd command;
  kernel.answer(0xfffffffe);
  EXPECT_EQ(execute(command), 0xfffffffeu);
}

TEST_F(TarnFWCmd, ABusyKernelCostsThreeSendsAndThreeSeconds) {
  LogCapture log;
  TestCmd command;
  for (int i = 0; i < 3; ++i) kernel.answer(26);
  EXPECT_EQ(execute(command), 26u);
  EXPECT_EQ(kernel.messages().size(), 3u);
  EXPECT_EQ(Sleeps::seen(), (std::vector<unsigned int>{1, 1, 1}));
  EXPECT_EQ(log.lines().size(), 3u);
  EXPECT_EQ(command.writes, 1) << "the buffer is sent again as it stands";
  EXPECT_EQ(kernel.messages()[1].envelope().at(8, {0}), kernel.messages()[0].envelope());
  EXPECT_EQ(kernel.messages()[1].envelope()[8], 26);
}

TEST_F(TarnFWCmd, AKernelThatIsBusyOnceSucceedsOnTheNextSend) {
  LogCapture log;
  TestCmd command;
  kernel.answer(26);
  kernel.answer(0);
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(kernel.messages().size(), 2u);
  EXPECT_EQ(Sleeps::seen(), std::vector<unsigned int>{1});
}

TEST_F(TarnFWCmd, AKernelThatIsBusyUpToTheSecondAttemptSucceedsOnTheThird) {
  LogCapture log;
  TestCmd command;
  kernel.answer(26);
  kernel.answer(26);
  kernel.answer(0);
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(kernel.messages().size(), 3u);
  EXPECT_EQ(Sleeps::seen().size(), 2u);
}

TEST_F(TarnFWCmd, AnotherStatusAfterABusyOneEndsTheAttempts) {
  LogCapture log;
  TestCmd command;
  kernel.answer(26);
  kernel.answer(29);
  EXPECT_EQ(execute(command), 29u);
  EXPECT_EQ(kernel.messages().size(), 2u);
  EXPECT_EQ(Sleeps::seen().size(), 1u);
}

TEST_F(TarnFWCmd, AFailingChannelIsNotTriedAgain) {
  LogCapture log;
  TestCmd command;
  errno = 0;
  kernel.fail(25);
  EXPECT_EQ(execute(command), 19u);
  EXPECT_EQ(kernel.messages().size(), 1u);
  EXPECT_TRUE(Sleeps::seen().empty());
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_EQ(log.normalized()[0].rfind("4|tarnfw: TarnFWCmd:execute():N failed to write message to "
                                      "generic io: bad message",
                                      0),
            0u);
}

TEST_F(TarnFWCmd, AStatusOfTheChannelIsReturnedWithoutARetryEvenABusyOne) {
  LogCapture log;
  for (const FWStatus_t status : {26u, 19u}) {
    int sends = 0;
    kernel.library().setIOChannel(std::make_unique<StatusChannel>(status, sends));
    TestCmd command;
    EXPECT_EQ(execute(command), status);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(sends, 1);
    EXPECT_TRUE(command.replies.empty());
  }
  EXPECT_TRUE(Sleeps::seen().empty());
  for (const LogCapture::Line& line : log.lines()) {
    EXPECT_EQ(line.text.find("failed to execute"), std::string::npos) << line.text;
  }
}

TEST_F(TarnFWCmd, ABodyThatIsRefusedFailsTheFlushWithStatusEight) {
  LogCapture log;
  TestCmd command;
  command.refuse = true;
  EXPECT_EQ(execute(command), 8u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWCmd, AMessageThatCannotBeWrittenIsStatusNineAndNeverSent) {
  class Unwritten final : public TestCmd {
    bool toMessage(void*, unsigned int, unsigned int*) override { return false; }
  } command;
  EXPECT_EQ(execute(command), 9u);
  EXPECT_EQ(size, 0u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWCmd, ABodyOfAnotherSizeThanPromisedFailsTheFlushWithStatusEight) {
  LogCapture log;
  TestCmd command;
  command.shortBy = 1;
  EXPECT_EQ(execute(command), 8u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWCmd, ASizeThatNoMessageHoldsIsRefused) {
  LogCapture log;
  TestCmd command(9, 0xfffffff4);
  EXPECT_EQ(execute(command), 17u);
  TestCmd largest(9, 0xfffffff3);
  EXPECT_EQ(execute(largest), 8u);
}

TEST_F(TarnFWCmd, AnExceptionFromReadingTheReplyBecomesItsStatus) {
  LogCapture log;
  TestCmd command;
  command.onReply = [] { throw CUnsupportedException("no such reply"); };
  EXPECT_EQ(execute(command), 7u);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"4|tarnfw: TarnFWCmd:execute():N no such reply\n"});
  command.onReply = [] { throw std::runtime_error("other"); };
  log.clear();
  EXPECT_EQ(execute(command), 5u);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarnFWCmd, WithoutAChannelTheStatusIsOne) {
  const auto bare = CTarnFWLibHandle::GetInstance();
  TestCmd command;
  EXPECT_EQ(command.execute(bare.get(), &reply, &size, nullptr), 1u);
  EXPECT_EQ(reply, nullptr);
  EXPECT_EQ(size, 0u);
}

TEST_F(TarnFWCmd, ACommandMayBeExecutedAgain) {
  TestCmd command;
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(kernel.messages()[1].body(), kernel.messages()[0].body());
}

TEST_F(TarnFWCmd, SendsItsSelectorWhenItHasAType) {
  const dvs_port_ port = filterPort("nic-1");
  TestCmd command(9, 8, &port);
  EXPECT_EQ(execute(command), 0u);
  ASSERT_TRUE(kernel.last().port.has_value());
  EXPECT_EQ(std::memcmp(&*kernel.last().port, &port, sizeof port), 0);
}

TEST_F(TarnFWCmd, SendsNoSelectorWithoutAType) {
  dvs_port_ port = filterPort("nic-1");
  setSelectorType(port, 0);
  TestCmd command(9, 8, &port);
  EXPECT_EQ(execute(command), 0u);
  EXPECT_FALSE(kernel.last().port.has_value());
}

TEST_F(TarnFWCmd, ASelectorIsReplacedOnlyByForceWhenThereIsOneFromTheStart) {
  const dvs_port_ first = filterPort("first");
  const dvs_port_ second = filterPort("second");
  TestCmd command(9, 8, &first);
  EXPECT_TRUE(command.setDVSPort(&second, false));
  EXPECT_EQ(command.dvsportToString("for"), " for filter first");
  EXPECT_TRUE(command.setDVSPort(&second, true));
  EXPECT_EQ(command.dvsportToString("for"), " for filter second");
  EXPECT_TRUE(command.setDVSPort(nullptr, true));
  EXPECT_EQ(command.dvsportToString(nullptr), " filter second");
}

TEST_F(TarnFWCmd, ACommandWithoutASelectorTakesOneWithoutForce) {
  const dvs_port_ port = filterPort("late");
  dvs_port_ none = port;
  setSelectorType(none, 0);
  TestCmd command;
  EXPECT_FALSE(command.setDVSPort(nullptr, true));
  EXPECT_TRUE(command.setDVSPort(&port, false));
  EXPECT_EQ(command.dvsportToString("for"), " for filter late");
  EXPECT_FALSE(command.setDVSPort(&none, false)) << "the new selector has no type";
}

TEST_F(TarnFWCmd, TracesTheSelectorOfANewCommand) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  const dvs_port_ port = typed(8, "u-u-i-d");
  { const TestCmd command(9, 8, &port); }
  { const TestCmd command; }
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{
                "7|tarnfw:cmd TarnFWCmd:CTarnFWCmd():N cmd initial dvsport: [type 8, u-u-i-d:5]\n",
                "7|tarnfw:cmd TarnFWCmd:CTarnFWCmd():N cmd initial dvsport: none\n"}));
}

TEST_F(TarnFWCmd, TracesTheCommandAboveLevelOne) {
  LogCapture log;
  const dvs_port_ port = typed(7, "nic", "kelpco-sfw");
  TestCmd command(31, 8, &port);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(execute(command), 0u);
  EXPECT_TRUE(log.lines().empty());
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 2;
  EXPECT_EQ(execute(command), 0u);
  EXPECT_EQ(log.normalized(),
            std::vector<std::string>{"7|tarnfw:cmd TarnFWCmd:execute():N command SetFailPolicy "
                                     "[agent kelpco-sfw, type 7, uuid nic, idx 5]\n"});
}

TEST_F(TarnFWCmd, ARoomWithoutAnEnvelopeIsRefusedUntouched) {
  TestCmd command;
  for (unsigned int room = 0; room < 12; ++room) {
    Bytes bytes(12, 0xcd);
    unsigned int written = 99;
    EXPECT_FALSE(command.toMessage(bytes.data(), room, &written));
    EXPECT_EQ(bytes, Bytes(12, 0xcd));
    EXPECT_EQ(written, 99u);
  }
}

TEST_F(TarnFWCmd, ABodyThatWasNotWrittenIsClearedAndMarked) {
  TestCmd command(9, 8);
  Bytes bytes(24, 0xcd);
  unsigned int written = 0;
  EXPECT_TRUE(command.toMessage(bytes.data(), 16, &written));
  EXPECT_EQ(written, 11u) << "the marked length and the envelope wrap around";
  Bytes expected(24);
  expected.at(0, {0xff, 0xff, 0xff, 0xff, 9});
  for (std::size_t i = 16; i < 24; ++i) expected.at(i, {0xcd});
  EXPECT_EQ(bytes, expected);
}

TEST_F(TarnFWCmd, GivingBackABrokenReplyIsReported) {
  LogCapture log;
  Bytes memory(64);
  EXPECT_FALSE(CTarnFWCmd::releaseCmdBuffer(&kernel.library(), memory.data() + 32));
}

TEST_F(TarnFWCmd, AFixedCommandClearsItsBodyFillsItAndBoundsItsReply) {
  Fixed command(nullptr);
  EXPECT_EQ(command.getMsgSize(), 84u);
  EXPECT_EQ(command.getCommand(), 9);
  EXPECT_EQ(command.getType(), 32);
  EXPECT_EQ(requestOf(command), Bytes(84).at(3, {7}));
  const Bytes bytes(200);
  command.checkCmdReply(bytes.data(), 200);
  command.checkCmdReply(bytes.data(), 10);
  EXPECT_EQ(command.sizes, (std::vector<std::size_t>{84, 10}));
}

TEST_F(TarnFWCmd, CountedSizesEndAtThirtyTwoBits) {
  EXPECT_EQ(countedSize(80, 68, 0, "x"), 80u);
  EXPECT_EQ(countedSize(80, 68, 63161282, "x"), 4294967256u);
  EXPECT_THROW_WITH((void)countedSize(80, 68, 63161283, "integer overflow"),
                    CIntegerOverflowException, 17, "integer overflow: 63161283");
  EXPECT_THROW_WITH((void)countedSize(80, 68, 0xffffffff, "integer overflow"),
                    CIntegerOverflowException, 17, "integer overflow: -1");
}
