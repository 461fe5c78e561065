#include <gtest/gtest.h>

#include "DeviceShim.h"
#include "TarnFWCmdList.h"
#include "tarnfw.h"

using namespace TarnFirewall;

TEST(TarnFWLoadConfigDevice, GivesANewChannelAndAnEmptyListForADeviceStatement) {
  EXPECT_FRESH([] {
    DeviceShim::put("/dev/brq-tarn");
    fwlibhandle_* channel = nullptr;
    fwconfigfile_* config = nullptr;
    EXPECT_EQ(FW_LoadConfigString("config device \"/dev/x\";", &channel, &config), 0u);
    ASSERT_NE(config, nullptr);
    EXPECT_EQ(reinterpret_cast<CTarnFWCmdList*>(config)->size(), 0u);
    ASSERT_NE(channel, nullptr);
    EXPECT_NE(channel, FW_GetDefaultLibHandle());
    EXPECT_EQ(FW_FreeConfigFile(config), 0u);
    EXPECT_EQ(FW_Exit(channel), 0u);
  });
}
