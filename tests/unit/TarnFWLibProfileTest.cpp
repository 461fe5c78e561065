// The flat functions about what a filter learns of names and of layer 7.

#include <functional>

#include "LibraryTest.h"

using namespace TarnFirewall;

namespace {

class TarnFWLibProfile : public LibraryTest {};

}  // namespace

TEST_F(TarnFWLibProfile, EveryArgumentStandsInItsPlaceOfTheRequest) {
  struct Row {
    int number;
    std::function<FWStatus_t()> call;
    Bytes body;
  };
  const Row rows[] = {
      {83, [&] { return FW_SetDnsConfigProfile(handle, &port, 0, 0x04030201); },
       Bytes(13).at(5, {1, 2, 3, 4})},
      {83, [&] { return FW_SetDnsConfigProfile(handle, &port, 1, 0); }, Bytes(13).at(4, {1})},
      {83, [&] { return FW_SetDnsConfigProfile(handle, &port, 2, 0); }, Bytes(13).at(4, {2})},
      {84, [&] { return FW_GetDnsConfigProfile(handle, &port); }, Bytes(13)},
      {85, [&] { return FW_SetL7CopyMode(handle, &port, 0); }, Bytes(4)},
      {85, [&] { return FW_SetL7CopyMode(handle, &port, 1); }, Bytes({1, 0, 0, 0})},
      {85, [&] { return FW_SetL7CopyMode(handle, &port, 256); }, Bytes({1, 0, 0, 0})},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.call(), 0u) << row.number;
    const FakeKernel::Message& message = kernel.last();
    EXPECT_EQ(message.envelope()[4], row.number);
    EXPECT_EQ(message.body(), row.body) << row.number;
    ASSERT_TRUE(message.port.has_value()) << row.number;
    EXPECT_STREQ(message.port->identifier, "nic-1") << row.number;
    kernel.answer(21);
    EXPECT_EQ(row.call(), 21u) << row.number;
  }
}

TEST_F(TarnFWLibProfile, WhatIsRefusedSendsNothing) {
  EXPECT_EQ(FW_SetDnsConfigProfile(nullptr, &port, 256, 0), 2u);
  EXPECT_EQ(FW_GetDnsConfigProfile(nullptr, &port), 2u);
  EXPECT_EQ(FW_SetL7CopyMode(nullptr, &port, 1), 2u);
  EXPECT_EQ(FW_SetDnsConfigProfile(handle, &port, 256, 0), 7u);
  EXPECT_EQ(FW_SetDnsConfigProfile(handle, &port, ~0u, 0), 7u);
  EXPECT_TRUE(kernel.messages().empty());
}

TEST_F(TarnFWLibProfile, WhatIsReadIsPrinted) {
  const Printed printed;
  kernel.answer(0, Bytes(13).at(4, {1}));
  EXPECT_EQ(FW_GetDnsConfigProfile(handle, &port), 0u);
  EXPECT_EQ(printed.text(), "Time To Live Value : Infinite\n");
}
