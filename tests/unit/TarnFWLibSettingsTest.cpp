// The flat functions about settings of a filter: what they send and hand out, and what they refuse.

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibSettings : public testing::Test {
 protected:
  LogCapture log;
  FakeKernel kernel;
  fwlibhandle_* handle = kernel.handle();
  const dvs_port_ port = filterPort("nic-1");
  FWFailPolicy_t policy{};
};

}  // namespace

TEST_F(TarnFWLibSettings, EveryArgumentStandsInItsPlaceOfTheRequest) {
  struct Row {
    int number;
    std::function<FWStatus_t(void* context)> call;
    Bytes body;
  };
  const std::vector<Row> rows = {
      {31, [&](void* c) { return FW_SetFailPolicy(handle, &port, c, FW_FAIL_CLOSE); }, Bytes({1})},
      {35, [&](void* c) { return FW_GetFailPolicy(handle, &port, c, &policy); }, Bytes(1)},
  };
  for (const Row& row : rows) {
    int context = 0;
    EXPECT_EQ(row.call(&context), 0u) << row.number;
    const FakeKernel::Message& message = kernel.last();
    EXPECT_EQ(message.envelope()[4], row.number);
    EXPECT_EQ(message.body(), row.body) << row.number;
    EXPECT_EQ(message.context, &context) << row.number;
    ASSERT_TRUE(message.port.has_value()) << row.number;
    EXPECT_STREQ(message.port->identifier, "nic-1") << row.number;
    kernel.answer(21);
    EXPECT_EQ(row.call(nullptr), 21u) << row.number;
  }
}

TEST_F(TarnFWLibSettings, ANullHandleIsStatusTwoBeforeAnythingElse) {
  EXPECT_EQ(FW_SetFailPolicy(nullptr, &port, nullptr, static_cast<FWFailPolicy_t>(2)), 2u);
  EXPECT_EQ(FW_GetFailPolicy(nullptr, &port, nullptr, nullptr), 2u);
}

TEST_F(TarnFWLibSettings, WhatIsRefusedSendsNothing) {
  EXPECT_EQ(FW_SetFailPolicy(handle, &port, nullptr, static_cast<FWFailPolicy_t>(2)), 7u);
  EXPECT_EQ(FW_GetFailPolicy(handle, &port, nullptr, nullptr), 3u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibSettings, AFailPolicyComesBackAsTheKernelHasIt) {
  for (const unsigned int answered : {0u, 1u, 255u}) {
    kernel.answer(0, Bytes(1, static_cast<std::uint8_t>(answered)));
    EXPECT_EQ(FW_GetFailPolicy(handle, &port, nullptr, &policy), 0u);
    EXPECT_EQ(policy, answered);
  }
}
