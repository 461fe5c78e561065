#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "DeviceShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnWGTIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

const char kDevice[] = "/dev/weirgatetbl";

}  // namespace

TEST(TarnWGTIoctl, RequestAndDescriptorAreOfTheTableDevice) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    int argument = 0;
    EXPECT_EQ(WGT_Ioctl(11, &argument), 0);
    ASSERT_EQ(DeviceShim::calls().size(), 1u);
    EXPECT_EQ(DeviceShim::calls()[0].device, kDevice);
    EXPECT_EQ(DeviceShim::calls()[0].request, 11u);
    EXPECT_EQ(DeviceShim::calls()[0].argument, &argument);
    EXPECT_EQ(WGT_GetFd(), CTarnWGTIoctl::GetInstance()->descriptor());
    EXPECT_EQ(DeviceShim::opens(), Lines{"/dev/weirgatetbl " + std::to_string(O_RDWR)});
  });
}

TEST(TarnWGTIoctl, AFailureLeavesErrnoAsTheIoctlLeftIt) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) {
      errno = ENODEV;
      return -1;
    });
    LogCapture log;
    EXPECT_EQ(WGT_Ioctl(3, nullptr), -1);
    EXPECT_EQ(errno, ENODEV);
    EXPECT_TRUE(
        log.has(LOG_ERR, "ioctl cmd 3 on device /dev/weirgatetbl failed: No such device\n\n"));
  });
}

TEST(TarnWGTIoctl, WithoutTheDeviceRequestAndDescriptorAreMinusOne) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing(kDevice, EACCES);
    LogCapture log;
    EXPECT_EQ(WGT_Ioctl(1, nullptr), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(WGT_GetFd(), -1);
    const std::string text = "error 12: cannot open device /dev/weirgatetbl: 13\n";
    EXPECT_EQ(log.normalized(), (Lines{"4|tarnfw: TarnWGTIoctl:WGT_Ioctl():N " + text,
                                       "4|tarnfw: TarnWGTIoctl:WGT_GetFd():N " + text}));
  });
}

TEST(TarnWGTIoctl, OpeningAndClosingAreDebugLines) {
  const FreshResult result = runFresh([] {
    DeviceShim::put(kDevice);
    logToStandardError();
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
    WGT_GetFd();
  });
  EXPECT_EQ(result.errors,
            "7|tarnfw:io TarnWGTIoctl:GetInstance():N successfully opened ioctl device: "
            "/dev/weirgatetbl\n"
            "close /dev/weirgatetbl\n"
            "7|tarnfw:io TarnWGTIoctl:~CTarnWGTIoctl():N closed ioctl device: /dev/weirgatetbl\n");
}

TEST(TarnWGTIoctl, ALockThatFailsGivesMinusOneAndNamesTheFunction) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    DeviceShim::failNextLock();
    EXPECT_EQ(WGT_Ioctl(1, nullptr), -1);
    EXPECT_EQ(
        log.normalized(),
        Lines{"4|tarnfw: TarnWGTIoctl:WGT_Ioctl():N WGT_Ioctl: encountered internal error\n"});
    EXPECT_TRUE(DeviceShim::opens().empty());
  });
}
