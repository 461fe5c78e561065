#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "DeviceShim.h"
#include "DirectKernel.h"
#include "LogCapture.h"
#include "tarnfw.h"

namespace {

using Lines = std::vector<std::string>;

FWFilterConfiguration_ configuration() {
  FWFilterConfiguration_ record{};
  std::memcpy(record.agent, "my-agent", 8);
  record.parameterCount = 1;
  record.failPolicy = 1;
  record.parameters[0].number = 0;
  std::memcpy(record.parameters[0].text, "text", 4);
  return record;
}

}  // namespace

TEST(FW_AddRemoveFilter, SendsOneRecord) {
  EXPECT_FRESH([] {
    DirectKernel kernel;
    kernel.on(1000, [](std::uint8_t*) { return 0u; });
    const FWFilterConfiguration_ record = configuration();
    const std::string longest(64, 'v');
    EXPECT_EQ(FW_AddRemoveFilter(&record, 0x01020304, 0x05060708, "vnic", 1), 0u);
    EXPECT_EQ(FW_AddRemoveFilter(&record, 0, 0, longest.c_str(), 0), 0u);
    ASSERT_EQ(kernel.requests().size(), 2u);
    Bytes bytes = Bytes(4284)
                      .text(0, "my-agent")
                      .at(40, {1, 0, 0, 0, 1})
                      .text(52, "text")
                      .at(4208, {4, 3, 2, 1, 8, 7, 6, 5})
                      .text(4216, "vnic")
                      .at(4280, {1});
    EXPECT_EQ(kernel.requests()[0].body, bytes);
    bytes.at(4208, {0, 0, 0, 0, 0, 0, 0, 0}).text(4216, longest.substr(0, 63)).at(4280, {0});
    EXPECT_EQ(kernel.requests()[1].body, bytes);
  });
}

TEST(FW_AddRemoveFilter, GivesTheFramesStatus) {
  EXPECT_FRESH([] {
    DirectKernel kernel;
    kernel.on(1000, [](std::uint8_t*) { return 26u; });
    const FWFilterConfiguration_ record = configuration();
    EXPECT_EQ(FW_AddRemoveFilter(&record, 1, 2, "vnic", 1), 26u);
  });
}

TEST(FW_AddRemoveFilter, AKernelWithoutTheRequestHasRefusedIt) {
  EXPECT_FRESH([] {
    DirectKernel kernel;
    const FWFilterConfiguration_ record = configuration();
    {
      LogCapture log;
      EXPECT_EQ(FW_AddRemoveFilter(&record, 1, 2, "vnic", 1), 19u);
      EXPECT_EQ(log.normalized(),
                (Lines{"3|tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 1000 on device "
                       "/dev/brq-tarn failed: Inappropriate ioctl for device\n\n",
                       "4|tarnfw: TarnFWLibMain:FW_AddRemoveFilter():N error 19: ioctl failed, "
                       "errno=25\n"}));
    }
    kernel.fail(1000, ENOMEM);
    LogCapture log;
    EXPECT_EQ(FW_AddRemoveFilter(&record, 1, 2, "vnic", 1), 65u);
  });
}

TEST(FW_AddRemoveFilter, WithoutTheDeviceNothingIsSent) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing("/dev/brq-tarn", ENOENT);
    const FWFilterConfiguration_ record = configuration();
    LogCapture log;
    EXPECT_EQ(FW_AddRemoveFilter(&record, 1, 2, "vnic", 1), 12u);
  });
}

TEST(FW_AddRemoveFilter, NeedsAConfigurationAndANic) {
  const FWFilterConfiguration_ record = configuration();
  EXPECT_EQ(FW_AddRemoveFilter(nullptr, 1, 2, "vnic", 1), 3u);
  EXPECT_EQ(FW_AddRemoveFilter(&record, 1, 2, nullptr, 1), 3u);
}
