#include <gtest/gtest.h>

#include "RunCommand.h"

TEST(Number2Uuid, TakesTheNumbersInNetworkOrder) {
  EXPECT_EQ(runCommand({"number2uuid", "1,2"}),
            (CommandResult{0, "1,2: 00000000-0000-0001-0000-000000000002\n", ""}));
  EXPECT_EQ(
      runCommand({"num2uuid", "6504286218482246442,5395594173616845375"}),
      (CommandResult{
          0, "6504286218482246442,5395594173616845375: 5a43ddda-c21a-632a-4ae1-00505699723f\n",
          ""}));
}

TEST(Number2Uuid, BTakesTheirBytesAsTheHostHasThem) {
  const CommandResult expected{0, "1,2: 01000000-0000-0000-0200-000000000000\n", ""};
  EXPECT_EQ(runCommand({"number2uuid", "-b", "1,2"}), expected);
  EXPECT_EQ(runCommand({"number2uuid", "1,2", "--byteorder"}), expected);
  EXPECT_EQ(runCommand({"number2uuid", "-bb", "1,2", "-b"}), expected);
}

TEST(Number2Uuid, GoesThroughItsOperandsUpToTheFirstThatIsNoPair) {
  EXPECT_EQ(runCommand({"number2uuid", "0,0", "7", "1,2"}),
            (CommandResult{1,
                           "0,0: 00000000-0000-0000-0000-000000000000\n"
                           "cannot recognize uuid number pair 7\n",
                           ""}));
  for (const std::string text : {"", ",", "1,", ",2", "1;2", "1 ,2", "a,b", "0x1,2"})
    EXPECT_EQ(runCommand({"number2uuid", text}),
              (CommandResult{1, "cannot recognize uuid number pair " + text + "\n", ""}));
}

TEST(Number2Uuid, AcceptsWhatStandsAfterTheSecondNumber) {
  EXPECT_EQ(runCommand({"number2uuid", "1, 2x"}),
            (CommandResult{0, "1, 2x: 00000000-0000-0001-0000-000000000002\n", ""}));
}

TEST(Number2Uuid, TakesTheLargestNumbers) {
  EXPECT_EQ(runCommand({"number2uuid", "18446744073709551615,18446744073709551614"}),
            (CommandResult{0,
                           "18446744073709551615,18446744073709551614: "
                           "ffffffff-ffff-ffff-ffff-fffffffffffe\n",
                           ""}));
}

TEST(Number2Uuid, WithoutAnOperandSucceedsSilently) {
  EXPECT_EQ(runCommand({"number2uuid"}), (CommandResult{0, "", ""}));
}

TEST(Uuid2Number, ReadsTheHalvesInNetworkOrder) {
  EXPECT_EQ(runCommand({"uuid2number", "00000000-0000-0001-0000-000000000002"}),
            (CommandResult{0, "00000000-0000-0001-0000-000000000002: 1,2\n", ""}));
  EXPECT_EQ(runCommand({"uuid2num", "ffffffff-ffff-ffff-FFFF-fffffffffffe"}),
            (CommandResult{0,
                           "ffffffff-ffff-ffff-FFFF-fffffffffffe: "
                           "18446744073709551615,18446744073709551614\n",
                           ""}));
}

TEST(Uuid2Number, BReadsThemAsTheHostHasThem) {
  const CommandResult expected{0, "01000000-0000-0000-0200-000000000000: 1,2\n", ""};
  EXPECT_EQ(runCommand({"uuid2number", "-b", "01000000-0000-0000-0200-000000000000"}), expected);
  EXPECT_EQ(
      runCommand({"uuid2number", "01000000-0000-0000-0200-000000000000", "--byteorder", "-b"}),
      expected);
}

TEST(Uuid2Number, GoesThroughItsOperandsUpToTheFirstThatIsNone) {
  EXPECT_EQ(runCommand({"uuid2number", "00000000-0000-0000-0000-000000000001 and more", "nonsense",
                        "00000000-0000-0000-0000-000000000001"}),
            (CommandResult{1,
                           "00000000-0000-0000-0000-000000000001 and more: 0,1\n"
                           "cannot recognize uuid: nonsense\n",
                           ""}));
  for (const std::string text : {"", "-", "00000000-0000-0000-0000-0000000000"})
    EXPECT_EQ(runCommand({"uuid2number", "--", text}),
              (CommandResult{1, "cannot recognize uuid: " + text + "\n", ""}));
}

TEST(Uuid2Number, IsTheReverseOfTheOther) {
  for (const char* option : {"--", "-b"}) {
    const std::string out =
        runCommand({"uuid2num", option, "5a43ddda-c21a-632a-4ae1-00505699723f"}).out;
    const std::string pair = out.substr(out.find(": ") + 2, out.size() - out.find(": ") - 3);
    EXPECT_EQ(runCommand({"num2uuid", option, pair}).out,
              pair + ": 5a43ddda-c21a-632a-4ae1-00505699723f\n");
  }
}
