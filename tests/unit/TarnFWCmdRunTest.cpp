#include <gtest/gtest.h>

#include <stdexcept>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "TarnFWCmdRun.h"
#include "TarnFWLog.h"
#include "TestCmd.h"

using namespace TarnFirewall;

namespace {

/// What a flat function looks like.
FWStatus_t FW_Sample(fwlibhandle_* handle, void* context, std::uint32_t* value) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (value == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    TestCmd command(9, 4);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *value = reply.word(0); });
  });
}

}  // namespace

TEST(TarnFWCmdRun, CopiesTheReplyOut) {
  FakeKernel kernel;
  kernel.answer(0, Bytes({1, 2, 0, 0}));
  std::uint32_t value = 0;
  int context = 0;
  EXPECT_EQ(FW_Sample(kernel.handle(), &context, &value), 0u);
  EXPECT_EQ(value, 0x201u);
  EXPECT_EQ(kernel.last().context, &context);
}

TEST(TarnFWCmdRun, AFailureLeavesTheResultAlone) {
  LogCapture log;
  FakeKernel kernel;
  kernel.answer(28, Bytes({1, 2, 0, 0}));
  std::uint32_t value = 77;
  EXPECT_EQ(FW_Sample(kernel.handle(), nullptr, &value), 28u);
  EXPECT_EQ(value, 77u);
}

TEST(TarnFWCmdRun, ANullHandleIsStatusTwoAndANullResultStatusThree) {
  FakeKernel kernel;
  std::uint32_t value = 0;
  EXPECT_EQ(FW_Sample(nullptr, nullptr, &value), 2u);
  EXPECT_EQ(FW_Sample(nullptr, nullptr, nullptr), 2u);
  EXPECT_EQ(FW_Sample(kernel.handle(), nullptr, nullptr), 3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST(TarnFWCmdRun, AReaderMayReturnAStatus) {
  FakeKernel kernel;
  TestCmd command;
  EXPECT_EQ(run(kernel.library(), command, nullptr,
                [](const CTarnFWCmdReply&) -> FWStatus_t { return 64; }),
            64u);
  EXPECT_EQ(run(kernel.library(), command, nullptr), 0u);
}

TEST(TarnFWCmdRun, AReaderThatGoesPastTheReplyEndsInAStatus) {
  LogCapture log;
  FakeKernel kernel;
  const FWStatus_t status =
      callLibrary("FW_Past", kernel.handle(), [&](CTarnFWLibHandle& library) -> FWStatus_t {
        TestCmd command(9, 4);
        return run(library, command, nullptr,
                   [](const CTarnFWCmdReply& reply) { (void)reply.word(1); });
      });
  EXPECT_EQ(status, 9u);
  EXPECT_TRUE(log.has(4, "error 9: expect 5 byte in message buffer, but only get 4 bytes\n"));
}

TEST(TarnFWCmdRun, TracesOnlyWhenTheApiLevelIsUp) {
  LogCapture log;
  FakeKernel kernel;
  std::uint32_t value = 0;
  EXPECT_EQ(FW_Sample(kernel.handle(), nullptr, &value), 0u);
  EXPECT_TRUE(log.lines().empty());
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  EXPECT_EQ(FW_Sample(kernel.handle(), nullptr, &value), 0u);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{"7|tarnfw:api TarnFWLibMain:FW_Sample():N FW_Sample.\n",
                                      "7|tarnfw:api TarnFWLibMain:FW_Sample():N FW_Sample: ok\n"}));
}
