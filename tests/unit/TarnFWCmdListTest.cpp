#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <set>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "StatusChannel.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdList.h"
#include "TarnFWLog.h"
#include "TestCmd.h"

using namespace TarnFirewall;

namespace {

class TarnFWCmdList : public testing::Test {
 protected:
  TestCmd& add(std::uint16_t number = 9, unsigned int size = 8) {
    auto command = std::make_unique<TestCmd>(number, size);
    TestCmd& result = *command;
    EXPECT_TRUE(list.addCmd(std::move(command)));
    return result;
  }
  FWStatus_t single(const dvs_port_* port = nullptr) {
    return list.evalSingleCmd(kernel.library(), port, nullptr);
  }
  FWStatus_t batch(const dvs_port_* port = nullptr) {
    return list.evalBatchCmd(kernel.library(), port, nullptr);
  }

  LogCapture log;
  FakeKernel kernel;
  CTarnFWCmdList list;
};

/// Commands in a message, by its header.
int commandCount(const FakeKernel::Message& message) {
  return message.bytes[16] + 256 * message.bytes[17];
}

}  // namespace

TEST_F(TarnFWCmdList, KeepsTheOrderOfItsCommands) {
  add(1);
  add(2);
  EXPECT_TRUE(list.insertCmd(std::make_unique<TestCmd>(3)));
  EXPECT_EQ(list.toString(), "test 3;\ntest 1;\ntest 2;\n");
  EXPECT_EQ(list.getType(), 128);
}

TEST_F(TarnFWCmdList, AMergedListIsEmpty) {
  add(1);
  CTarnFWCmdList other;
  other.addCmd(std::make_unique<TestCmd>(2));
  other.addCmd(std::make_unique<TestCmd>(3));
  EXPECT_TRUE(list.mergeCmdList(other));
  EXPECT_EQ(list.toString(), "test 1;\ntest 2;\ntest 3;\n");
  EXPECT_EQ(other.size(), 0u);
  EXPECT_TRUE(list.mergeCmdList(list));
  EXPECT_EQ(list.size(), 3u);
}

TEST_F(TarnFWCmdList, ItsSizeIsThatOfTheLargestCommand) {
  EXPECT_EQ(list.getMsgSize(), 0u);
  add(1, 10);
  add(2, 30);
  add(3, 20);
  EXPECT_EQ(list.getMsgSize(), 30u);
}

TEST_F(TarnFWCmdList, IsNotWrittenAsAMessage) {
  EXPECT_THROW_WITH(
      list.toMessage(nullptr, 0, nullptr), CUnsupportedException, 7,
      "CTarnFWCmdList::toMessage is not supported! Call CTarnFWCmd::eval method instead.");
}

TEST_F(TarnFWCmdList, AnEmptyListEvaluatesToZeroAndTouchesNoBuffer) {
  const auto bare = CTarnFWLibHandle::GetInstance();
  EXPECT_EQ(list.evalSingleCmd(*bare, nullptr, nullptr), 0u);
  EXPECT_EQ(list.evalBatchCmd(*bare, nullptr, nullptr), 0u);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarnFWCmdList, SendsEachCommandByItselfInOrder) {
  add(1);
  add(2);
  EXPECT_EQ(single(), 0u);
  ASSERT_EQ(kernel.messages().size(), 2u);
  EXPECT_EQ(kernel.messages()[0].envelope()[4], 1);
  EXPECT_EQ(kernel.messages()[1].envelope()[4], 2);
  EXPECT_EQ(single(), 0u) << "the commands stay in the list";
  EXPECT_EQ(kernel.messages().size(), 4u);
}

TEST_F(TarnFWCmdList, StopsAtTheFirstCommandThatFails) {
  add(1);
  add(2);
  add(3);
  kernel.answer(0);
  kernel.answer(28);
  EXPECT_EQ(single(), 28u);
  EXPECT_EQ(kernel.messages().size(), 2u);
}

TEST_F(TarnFWCmdList, WithoutASelectorAMissingPortIsSkippedUnlessItIsTheLast) {
  add(1);
  add(2);
  kernel.answer(21);
  kernel.answer(0);
  EXPECT_EQ(single(), 0u);
  EXPECT_EQ(kernel.messages().size(), 2u);
  kernel.answer(0);
  kernel.answer(21);
  EXPECT_EQ(single(), 21u);
}

TEST_F(TarnFWCmdList, WithASelectorAMissingPortStopsTheList) {
  const dvs_port_ port = filterPort("nic");
  add(1);
  add(2);
  kernel.answer(21);
  EXPECT_EQ(single(&port), 21u);
  EXPECT_EQ(kernel.messages().size(), 1u);
}

TEST_F(TarnFWCmdList, TheSelectorOfTheEvaluationReplacesThatOfEachCommand) {
  const dvs_port_ own = filterPort("own");
  const dvs_port_ given = filterPort("given");
  list.addCmd(std::make_unique<TestCmd>(1, 8, &own));
  EXPECT_EQ(single(), 0u);
  EXPECT_STREQ(kernel.last().port->identifier, "own");
  EXPECT_EQ(single(&given), 0u);
  EXPECT_STREQ(kernel.last().port->identifier, "given");
}

TEST_F(TarnFWCmdList, ABatchHoldsAsManyCommandsAsFit) {
  for (int i = 0; i < 300; ++i) add(9, 1000);
  EXPECT_EQ(batch(), 0u);
  ASSERT_EQ(kernel.messages().size(), 2u);
  EXPECT_EQ(commandCount(kernel.messages()[0]), 252);
  EXPECT_EQ(kernel.messages()[0].bytes.size(), 20u + 252 * 1012);
  EXPECT_EQ(commandCount(kernel.messages()[1]), 48);
  ASSERT_EQ(log.lines().size(), 2u);
  EXPECT_EQ(log.lines()[0].priority, 6);
  for (const auto& [line, wanted] :
       {std::pair{0u, "execute pending cmd list of 252 commands and 255024 bytes in "},
        std::pair{1u, "execute pending cmd list of 48 commands and 48576 bytes in "}}) {
    EXPECT_NE(log.lines()[line].text.find(wanted), std::string::npos) << log.lines()[line].text;
  }
  EXPECT_EQ(kernel.messages()[0].bytes[8], 0);
  EXPECT_EQ(kernel.messages()[1].bytes[8], 0) << "the buffer was reset: its sequence stays";
}

TEST_F(TarnFWCmdList, ABatchIsTheCommandsOneAfterTheOther) {
  add(1, 2);
  add(2, 3);
  EXPECT_EQ(batch(), 0u);
  ASSERT_EQ(kernel.messages().size(), 1u);
  Bytes expected(20 + 14 + 15);
  expected.text(0, "TARN").at(4, {29}).at(12, {1, 1, 0, 1, 2});
  expected.at(20, {2, 0, 0, 0, 1}).at(32, {0x11, 0x11});
  expected.at(34, {3, 0, 0, 0, 2}).at(46, {0x11, 0x11, 0x11});
  EXPECT_EQ(kernel.last().bytes, expected);
}

TEST_F(TarnFWCmdList, ACommandThatFillsTheBatchExactlyStaysInIt) {
  add(1, 128000 - 12);
  add(2, 128000 - 12);
  EXPECT_EQ(batch(), 0u);
  EXPECT_EQ(kernel.messages().size(), 1u);
  add(3, 0);
  EXPECT_EQ(batch(), 0u);
  EXPECT_EQ(kernel.messages().size(), 3u);
}

TEST_F(TarnFWCmdList, ACommandLargerThanABatchGetsABufferOfItsOwnSize) {
  add(1, 10);
  add(2, 300000);
  add(3, 10);
  EXPECT_EQ(batch(), 0u);
  ASSERT_EQ(kernel.messages().size(), 3u);
  EXPECT_EQ(kernel.messages()[0].bytes.size(), 20u + 22);
  EXPECT_EQ(kernel.messages()[1].bytes.size(), 20u + 300012);
  EXPECT_EQ(kernel.messages()[2].bytes.size(), 20u + 22);
  EXPECT_EQ(kernel.messages()[1].bytes[8], 1) << "a new buffer has the next sequence";
}

TEST_F(TarnFWCmdList, EachCommandOfABatchGetsItsOwnReply) {
  TestCmd& first = add(1, 2);
  TestCmd& second = add(2, 3);
  kernel.answerWith([](std::uint8_t* message, unsigned int) -> FWStatus_t {
    std::memcpy(message + 32, "ab", 2);
    std::memcpy(message + 46, "cde", 3);
    return 0;
  });
  EXPECT_EQ(batch(), 0u);
  EXPECT_EQ(first.replies, std::vector<std::string>{"ab"});
  EXPECT_EQ(second.replies, std::vector<std::string>{"cde"});
}

TEST_F(TarnFWCmdList, InABatchAStatusInAnEnvelopeGoesUnreported) {
  Sleeps::clear();
  TestCmd& command = add(1, 2);
  kernel.answer(26);
  EXPECT_EQ(batch(), 0u);
  EXPECT_EQ(command.replies.size(), 1u);
  EXPECT_EQ(kernel.messages().size(), 1u);
  EXPECT_TRUE(Sleeps::seen().empty());
}

TEST_F(TarnFWCmdList, ABatchThatCannotBeSentEndsTheEvaluation) {
  for (int i = 0; i < 300; ++i) add(9, 1000);
  kernel.fail(25);
  EXPECT_THROW(batch(), CIoctlException);
  EXPECT_EQ(kernel.messages().size(), 1u);
}

TEST_F(TarnFWCmdList, ABatchTellsTheSecondsThatItsSendingTook) {
  add(1, 8);
  std::time_t asked = 0;
  kernel.answerWith([&](std::uint8_t*, unsigned int) -> FWStatus_t {
    for (asked = std::time(nullptr); std::time(nullptr) == asked;) {
    }
    return 0;
  });
  const std::time_t before = std::time(nullptr);
  EXPECT_EQ(batch(), 0u);
  const std::time_t after = std::time(nullptr);
  ASSERT_EQ(log.lines().size(), 1u);
  const std::string& text = log.lines()[0].text;
  const std::string wanted = "execute pending cmd list of 1 commands and 20 bytes in ";
  const std::size_t place = text.find(wanted);
  ASSERT_NE(place, std::string::npos) << text;
  long seconds = 0;
  char end = 0;
  ASSERT_EQ(std::sscanf(text.c_str() + place + wanted.size(), "%ld seconds%c", &seconds, &end), 2);
  EXPECT_EQ(end, '\n');
  EXPECT_GE(seconds, 1);
  EXPECT_LE(seconds, static_cast<long>(after - before));
}

TEST_F(TarnFWCmdList, AStatusOfTheChannelEndsABatchAfterItsLine) {
  int sends = 0;
  kernel.library().setIOChannel(std::make_unique<StatusChannel>(26, sends));
  log.clear();
  TestCmd& first = add(1, 250000);
  add(2, 250000);
  EXPECT_EQ(batch(), 26u);
  EXPECT_EQ(sends, 1);
  EXPECT_TRUE(first.replies.empty());
  ASSERT_EQ(log.lines().size(), 1u);
  EXPECT_NE(log.lines()[0].text.find("execute pending cmd list of 1 commands and 250012 bytes"),
            std::string::npos)
      << log.lines()[0].text;
}

TEST_F(TarnFWCmdList, NothingOfAnEarlierMessageIsLeftInABufferThatIsUsedAgain) {
  // A command that says nothing of its body, in what the first message has filled, at its end and
  // after it; the kernel's answers dirty the buffer as well.
  add(1, 200000);
  add(2, 100000);
  for (int i = 0; i < 2000; ++i) list.addCmd(std::make_unique<CTarnFWCmdGetRootRuleSet>(nullptr));
  kernel.answerAllWith([](std::uint8_t* message, unsigned int size) -> FWStatus_t {
    std::fill(message + 32, message + size, std::uint8_t{0xa5});
    return 0;
  });
  EXPECT_EQ(batch(), 0u);
  ASSERT_EQ(kernel.messages().size(), 3u);
  int roots = 0;
  for (const FakeKernel::Message& message : kernel.messages()) {
    for (std::size_t at = 20; at + 12 + 132 <= message.bytes.size();) {
      const Bytes envelope = message.part(at, 12);
      const std::size_t size =
          static_cast<std::size_t>(envelope[0] + 256 * envelope[1] + 65536 * envelope[2]);
      if (envelope[4] == 4) {
        ++roots;
        ASSERT_EQ(size, 132u);
        ASSERT_EQ(message.part(at + 12, size), Bytes(size)) << "at " << at;
      }
      at += 12 + size;
    }
  }
  EXPECT_EQ(roots, 2000);
}

TEST_F(TarnFWCmdList, FurtherEvaluationsBuildTheirMessagesInTheMemoryOfTheFirst) {
  add(1, 200000);
  add(2, 300);
  std::set<const std::uint8_t*> places;
  kernel.answerAllWith([&](std::uint8_t* message, unsigned int size) -> FWStatus_t {
    places.insert(message);
    std::fill(message + 32, message + size, std::uint8_t{0xa5});
    return 0;
  });
  for (int i = 0; i < 3; ++i) EXPECT_EQ(single(), 0u);
  EXPECT_EQ(places.size(), 1u);
  ASSERT_EQ(kernel.messages().size(), 6u);
  for (const std::size_t i : {2u, 4u}) {
    EXPECT_EQ(kernel.messages()[i].body(), kernel.messages()[0].body());
    EXPECT_EQ(kernel.messages()[i + 1].body(), kernel.messages()[1].body());
    EXPECT_EQ(kernel.messages()[i].bytes[8], i) << "the sequence number goes on";
  }
}

TEST_F(TarnFWCmdList, NothingOfAnEarlierEvaluationIsLeftInItsMemory) {
  list.addCmd(std::make_unique<CTarnFWCmdGetRootRuleSet>(nullptr));
  add(1, 100000);
  list.addCmd(std::make_unique<CTarnFWCmdGetRootRuleSet>(nullptr));
  kernel.answerAllWith([](std::uint8_t* message, unsigned int size) -> FWStatus_t {
    std::fill(message + 32, message + size, std::uint8_t{0xa5});
    return 0;
  });
  EXPECT_EQ(single(), 0u);
  EXPECT_EQ(single(), 0u);
  ASSERT_EQ(kernel.messages().size(), 6u);
  for (const std::size_t i : {0u, 2u, 3u, 5u})
    EXPECT_EQ(kernel.messages()[i].body(), Bytes(132)) << "message " << i;
}

TEST_F(TarnFWCmdList, AnExceptionFromReadingAReplyEndsTheBatch) {
  TestCmd& first = add(1, 250000);
  TestCmd& second = add(2, 250000);
  first.onReply = [] { throw CUnsupportedException("no such reply"); };
  EXPECT_THROW_WITH(batch(), CUnsupportedException, 7, "no such reply");
  EXPECT_EQ(first.replies.size(), 1u);
  EXPECT_TRUE(second.replies.empty());
  EXPECT_EQ(kernel.messages().size(), 1u);
}

TEST_F(TarnFWCmdList, ABatchWhoseHeaderWasSpoiledIsNotFilledAgain) {
  add(1, 250000);
  add(2, 250000);
  std::uint8_t* header = nullptr;
  kernel.answerWith([&](std::uint8_t* message, unsigned int) -> FWStatus_t {
    header = message;
    message[0] = 'X';
    return 0;
  });
  EXPECT_EQ(batch(), 3u);
  EXPECT_EQ(kernel.messages().size(), 1u);
  EXPECT_TRUE(log.has(4, "message buffer [0] has a bad signature\n"));
  // A buffer that is not recognised is kept. It is given back here.
  header[0] = 'T';
  EXPECT_EQ(kernel.library().releaseCommandBuffer(header + 20), 0u);
}

TEST_F(TarnFWCmdList, ABatchWithoutAChannelIsRefused) {
  const auto bare = CTarnFWLibHandle::GetInstance();
  TestCmd& command = add(1);
  EXPECT_EQ(list.evalBatchCmd(*bare, nullptr, nullptr), 1u);
  EXPECT_TRUE(command.replies.empty());
}

TEST_F(TarnFWCmdList, ABodyThatIsRefusedFailsTheBatchWithoutSendingForeignBytes) {
  add(1, 4).refuse = true;
  EXPECT_EQ(batch(), 0u) << "only the result of sending counts";
  EXPECT_EQ(kernel.last().bytes[20], 0xff) << "a length that no receiver accepts";
  EXPECT_EQ(kernel.last().body(), Bytes(4));
}

TEST_F(TarnFWCmdList, ABatchGoesToTheSelectorOfTheEvaluation) {
  const dvs_port_ own = filterPort("own");
  const dvs_port_ given = filterPort("given");
  list.addCmd(std::make_unique<TestCmd>(1, 8, &own));
  EXPECT_EQ(batch(), 0u);
  EXPECT_FALSE(kernel.last().port.has_value()) << "a command's own selector is not looked at";
  EXPECT_STREQ(list.at(0).currentPort().identifier, "own");
  EXPECT_EQ(batch(&given), 0u);
  EXPECT_STREQ(kernel.last().port->identifier, "given");
  EXPECT_STREQ(list.at(0).currentPort().identifier, "given") << "the commands have it as well";
}

TEST_F(TarnFWCmdList, NoBatchHoldsMoreCommandsThanTheHeaderCounts) {
  add(1, 2000000);
  for (int i = 0; i < 70000; ++i) add(2, 0);
  EXPECT_EQ(batch(), 0u);
  ASSERT_EQ(kernel.messages().size(), 3u);
  EXPECT_EQ(commandCount(kernel.messages()[1]), 65535);
  EXPECT_EQ(commandCount(kernel.messages()[2]), 4465);
}

TEST_F(TarnFWCmdList, TracesWhatABatchDelays) {
  add(31, 1);
  g_tarnfw_verbose[FW_COMPONENT_CMD].level = 1;
  EXPECT_EQ(batch(), 0u);
  EXPECT_TRUE(log.has(7, "delay executing command SetFailPolicy\n"));
}

TEST_F(TarnFWCmdList, ANullHandleIsRefused) { EXPECT_EQ(list.eval(nullptr, nullptr, nullptr), 2u); }

namespace {

/// Messages that an evaluation of two commands takes, in a process of its own, since the setting is
/// read once.
int messagesOfEval(const char* setting) {
  if (setting != nullptr) setenv("tarnfwlib_exec_batch_cmd", setting, 1);
  FakeKernel kernel;
  CTarnFWCmdList list;
  list.addCmd(std::make_unique<TestCmd>(1));
  list.addCmd(std::make_unique<TestCmd>(2));
  if (list.eval(kernel.handle(), nullptr, nullptr) != 0) return 99;
  const int first = static_cast<int>(kernel.messages().size());
  setenv("tarnfwlib_exec_batch_cmd", first == 1 ? "false" : "true", 1);
  if (list.eval(kernel.handle(), nullptr, nullptr) != 0) return 99;
  if (static_cast<int>(kernel.messages().size()) != 2 * first) return 98;
  return first;
}

}  // namespace

TEST(TarnFWCmdListSetting, TheEnvironmentTurnsBatchesOnOncePerProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::exit(messagesOfEval("TRUE")), testing::ExitedWithCode(1), "");
  EXPECT_EXIT(std::exit(messagesOfEval("yes")), testing::ExitedWithCode(2), "");
  EXPECT_EXIT(std::exit(messagesOfEval(nullptr)), testing::ExitedWithCode(2), "");
}
