#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "DeviceShim.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnSiIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

const char kDevice[] = "/dev/brq-tarn-ploy";
const char kSent[] = "6|tarnfw: TarnSiIoctl:sendIoctl():N successfully sent cmd ";

}  // namespace

TEST(TarnSiIoctl, EveryRequestIsLoggedWithItsDataAsText) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    char frame[32] = "frame";
    LogCapture log;
    EXPECT_EQ(SI_Ioctl(12, frame), 0);
    ASSERT_EQ(DeviceShim::calls().size(), 1u);
    EXPECT_EQ(DeviceShim::calls()[0].request, 12u);
    EXPECT_EQ(DeviceShim::calls()[0].argument, frame);
    EXPECT_EQ(log.normalized(), Lines{kSent + std::string("12 with data frame\n")});
    EXPECT_EQ(DeviceShim::opens(), Lines{"/dev/brq-tarn-ploy " + std::to_string(O_RDWR)});
  });
}

TEST(TarnSiIoctl, AFailedRequestSaysSuccessfullyToo) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) {
      errno = EINVAL;
      return -1;
    });
    char frame[32] = "";
    LogCapture log;
    EXPECT_EQ(SI_Ioctl(14, frame), -1);
    EXPECT_EQ(log.normalized(), (Lines{"3|tarnfw: TarnSiIoctl:sendIoctl():N ioctl cmd 14 on device "
                                       "/dev/brq-tarn-ploy failed: Invalid argument\n\n",
                                       kSent + std::string("14 with data \n")}));
    FW_RegisterLogger([](int, const char*, va_list) { errno = EDOM; }, 6);
    SI_Ioctl(14, frame);
    EXPECT_EQ(errno, EINVAL);
  });
}

TEST(TarnSiIoctl, AFrameWithoutANulIsShownUpToItsEnd) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    // On the heap, so that a sanitizer sees a read past it.
    const auto frame = std::make_unique<char[]>(32);
    std::memset(frame.get(), 'x', 32);
    LogCapture log;
    SI_Ioctl(16, frame.get());
    EXPECT_TRUE(
        log.has(LOG_INFO, "successfully sent cmd 16 with data " + std::string(32, 'x') + "\n"));
  });
}

TEST(TarnSiIoctl, NoArgumentIsShownAsNull) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    EXPECT_EQ(SI_Ioctl(11, nullptr), 0);
    EXPECT_TRUE(log.has(LOG_INFO, "successfully sent cmd 11 with data (null)\n"));
  });
}

TEST(TarnSiIoctl, WithoutTheDeviceTheWarningBeginsWithTheFunction) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing(kDevice, ENOENT);
    LogCapture log;
    EXPECT_EQ(SI_Ioctl(12, nullptr), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnSiIoctl:SI_Ioctl():N SI_Ioctl: error 12: "
                                      "cannot open device /dev/brq-tarn-ploy: 2\n"});
  });
}

TEST(TarnSiIoctl, OpeningAndClosingAreInfoLines) {
  const FreshResult result = runFresh([] {
    DeviceShim::put(kDevice);
    logToStandardError();
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
    TarnSi::CTarnSiIoctl::GetInstance();
  });
  EXPECT_EQ(result.errors,
            "6|tarnfw:io TarnSiIoctl:GetInstance():N successfully opened ioctl device: "
            "/dev/brq-tarn-ploy\n"
            "close /dev/brq-tarn-ploy\n"
            "6|tarnfw:io TarnSiIoctl:~CTarnSiIoctl():N closed ioctl device: "
            "/dev/brq-tarn-ploy\n");
}

TEST(TarnSiIoctl, ALockThatFailsGivesMinusOneAndNamesTheFunction) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    DeviceShim::failNextLock();
    EXPECT_EQ(SI_Ioctl(1, nullptr), -1);
    EXPECT_EQ(log.normalized(),
              Lines{"4|tarnfw: TarnSiIoctl:SI_Ioctl():N SI_Ioctl: encountered internal error\n"});
    EXPECT_TRUE(DeviceShim::opens().empty());
  });
}
