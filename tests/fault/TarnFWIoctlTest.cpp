#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWIoctl.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

const char kDevice[] = "/dev/brq-tarn";
const char kOldDevice[] = "/dev/tarn";

std::string readWrite(const char* device) {
  return std::string(device) + " " + std::to_string(O_RDWR);
}

void withDevices() {
  DeviceShim::put(kDevice);
  DeviceShim::put(kOldDevice);
}

}  // namespace

TEST(TarnFWIoctl, OpensItsDeviceOnceForReadingAndWriting) {
  EXPECT_FRESH([] {
    withDevices();
    CTarnFWIoctl* first = CTarnFWIoctl::GetInstance();
    EXPECT_EQ(CTarnFWIoctl::GetInstance(), first);
    EXPECT_GE(first->descriptor(), 0);
    EXPECT_EQ(DeviceShim::opens(), Lines{readWrite(kDevice)});
    EXPECT_STREQ(CTarnFWIoctl::ioctl_devname, kDevice);
  });
}

TEST(TarnFWIoctl, TheVariableChoosesTheOldDeviceWhateverItsValue) {
  for (const char* text : {"1", "", "no", "/dev/elsewhere"}) {
    EXPECT_FRESH([&] {
      withDevices();
      setenv("TARN_CONTROL_DEVICE_PATH_OLD", text, 1);
      CTarnFWIoctl::GetInstance();
      EXPECT_EQ(DeviceShim::opens(), Lines{readWrite(kOldDevice)});
      EXPECT_STREQ(CTarnFWIoctl::ioctl_devname, kOldDevice);
    });
  }
}

TEST(TarnFWIoctl, LogsTheOldNameAndTheOpening) {
  EXPECT_FRESH([] {
    withDevices();
    setenv("TARN_CONTROL_DEVICE_PATH_OLD", "", 1);
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
    CTarnFWIoctl::GetInstance();
    EXPECT_EQ(log.normalized(),
              (Lines{"7|tarnfw:io TarnFWIoctl:GetInstance():N using the old tarn device: "
                     "/dev/tarn\n",
                     "7|tarnfw:io TarnFWIoctl:GetInstance():N successfully opened ioctl device: "
                     "/dev/tarn\n"}));
  });
}

TEST(TarnFWIoctl, IsSilentAtLevelZero) {
  EXPECT_FRESH([] {
    withDevices();
    setenv("TARN_CONTROL_DEVICE_PATH_OLD", "", 1);
    LogCapture log;
    CTarnFWIoctl::GetInstance()->sendIoctl(20, nullptr);
    EXPECT_TRUE(log.lines().empty());
  });
}

TEST(TarnFWIoctl, AnAbsentDeviceIsNamedWithItsErrorAndTriedAgain) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing(kDevice, ENXIO);
    EXPECT_THROW_WITH(CTarnFWIoctl::GetInstance(), CCannotOpenDevException, 12,
                      "cannot open device /dev/brq-tarn: 6");
    DeviceShim::put(kDevice);
    EXPECT_GE(CTarnFWIoctl::GetInstance()->descriptor(), 0);
    EXPECT_EQ(DeviceShim::opens().size(), 2u);
  });
}

TEST(TarnFWIoctl, SendsTheRequestAndItsArgumentAndGivesTheResult) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) { return 0; });
    FWIoctlFrame frame{};
    EXPECT_EQ(FW_Ioctl(20, &frame), 0);
    ASSERT_EQ(DeviceShim::calls().size(), 1u);
    EXPECT_EQ(DeviceShim::calls()[0].device, kDevice);
    EXPECT_EQ(DeviceShim::calls()[0].request, 20u);
    EXPECT_EQ(DeviceShim::calls()[0].argument, &frame);
  });
}

TEST(TarnFWIoctl, AFailureIsLoggedAndLeavesErrnoAsTheIoctlLeftIt) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) {
      errno = EBUSY;
      return -1;
    });
    // A logger that spoils errno, as the system's may.
    FW_RegisterLogger([](int, const char*, va_list) { errno = EDOM; }, 6);
    EXPECT_EQ(FW_Ioctl(23, nullptr), -1);
    EXPECT_EQ(errno, EBUSY);
    LogCapture log;
    FW_Ioctl(23, nullptr);
    EXPECT_EQ(log.normalized(), Lines{"3|tarnfw: TarnFWIoctl:sendIoctl():N ioctl cmd 23 on device "
                                      "/dev/brq-tarn failed: Device or resource busy\n\n"});
  });
}

TEST(TarnFWIoctl, APositiveResultIsGivenBackAndLoggedToo) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) {
      errno = 0;
      return 7;
    });
    LogCapture log;
    EXPECT_EQ(FW_Ioctl(4, nullptr), 7);
    EXPECT_TRUE(log.has(LOG_ERR, "ioctl cmd 4 on device /dev/brq-tarn failed: Success\n\n"));
  });
}

TEST(TarnFWIoctl, WithoutTheDeviceADirectRequestGivesMinusOneAndAWarning) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing(kDevice, ENOENT);
    LogCapture log;
    EXPECT_EQ(FW_Ioctl(20, nullptr), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open "
                                      "device /dev/brq-tarn: 2\n"});
  });
}

TEST(TarnFWIoctl, TheWarningsLeaveErrnoAsTheFailureLeftIt) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing(kDevice, EACCES);
    FW_RegisterLogger([](int, const char*, va_list) { errno = EDOM; }, 6);
    EXPECT_EQ(FW_Ioctl(20, nullptr), -1);
    EXPECT_EQ(errno, EACCES);
    errno = EPERM;
    DeviceShim::failNextLock();
    EXPECT_EQ(FW_Ioctl(20, nullptr), -1);
    EXPECT_EQ(errno, EPERM);
  });
}

TEST(TarnFWIoctl, TheDeviceClosesAtTheEndOfTheProcess) {
  const FreshResult result = runFresh([] {
    withDevices();
    logToStandardError();
    CTarnFWIoctl::GetInstance();
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
  });
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors,
            "close /dev/brq-tarn\n"
            "7|tarnfw:io TarnFWIoctl:~CTarnFWIoctl():N closed ioctl device: /dev/brq-tarn\n");
}

TEST(TarnFWIoctl, ALockThatFailsGivesMinusOneAndNamesTheFunction) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    DeviceShim::failNextLock();
    EXPECT_EQ(FW_Ioctl(1, nullptr), -1);
    EXPECT_EQ(log.normalized(),
              Lines{"4|tarnfw: TarnFWIoctl:FW_Ioctl():N FW_Ioctl: encountered internal error\n"});
    EXPECT_TRUE(DeviceShim::opens().empty());
  });
}
