#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWDirectRequest.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

/// A record of five bytes, which the kernel turns round.
struct Small {
  std::uint8_t bytes[5];
};

/// What a device has received.
struct Received {
  unsigned long request = 0;
  Bytes frame{Bytes(0)};
  Bytes body{Bytes(0)};
};

std::uint64_t address(const void* at) {
  std::uint64_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

Bytes copy(std::uint64_t at, std::size_t size) {
  Bytes bytes(size);
  if (size != 0) std::memcpy(bytes.data(), reinterpret_cast<const void*>(at), size);
  return bytes;
}

/// Eight bytes of an address in the host's order.
void putAddress(Bytes& bytes, std::size_t offset, const void* pointer) {
  const std::uint64_t value = reinterpret_cast<std::uintptr_t>(pointer);
  std::memcpy(bytes.data() + offset, &value, 8);
}

/// A firewall device that keeps what it gets, writes `status` into the frame and turns the first
/// five bytes of the body round.
DeviceShim::Answer firewall(Received& received, std::uint32_t status, int result = 0) {
  return [&received, status, result](const DeviceShim::Call& call) {
    auto* const frame = static_cast<std::uint8_t*>(call.argument);
    received.request = call.request;
    received.frame = copy(reinterpret_cast<std::uintptr_t>(frame), 20);
    received.body = copy(address(frame + 12), frame[8]);
    std::memcpy(frame + 4, &status, 4);
    for (std::size_t i = 0; i < received.body.size(); ++i)
      reinterpret_cast<std::uint8_t*>(address(frame + 12))[i] = received.body[4 - i];
    errno = result != 0 ? EBUSY : 0;
    return result;
  };
}

int failing(const DeviceShim::Call&) {
  errno = EPERM;
  return -1;
}

}  // namespace

TEST(TarnFWDirectRequest, AFirewallRequestStandsInAFrameOf20Bytes) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put("/dev/brq-tarn", firewall(received, 0));
    Small record{{1, 2, 3, 4, 5}};
    EXPECT_EQ(directRequest(FirewallDevice(FW_Ioctl), 0x10203, record), 0);
    EXPECT_EQ(received.request, 0x10203u);
    Bytes frame = Bytes(20).at(0, {3, 2, 1, 0}).at(8, {5});
    putAddress(frame, 12, &record);
    EXPECT_EQ(received.frame, frame);
    EXPECT_EQ(received.body, (Bytes{1, 2, 3, 4, 5}));
    EXPECT_EQ(record.bytes[0], 5) << "the reply stands in the record";
  });
}

TEST(TarnFWDirectRequest, AFirewallRequestMayHaveNoBody) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put("/dev/brq-tarn", firewall(received, 0));
    EXPECT_EQ(directRequest(FirewallDevice(FW_Ioctl), 41, {}), 0);
    EXPECT_EQ(received.frame, Bytes(20).at(0, {41}));
  });
}

TEST(TarnFWDirectRequest, TheFramesStatusGoesBothWaysForWhoReadsIt) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put("/dev/brq-tarn", firewall(received, 0xfffffffe));
    std::uint32_t status = 0x0bad0001;
    EXPECT_EQ(directRequest(FirewallDevice(FW_Ioctl), 41, {}, &status), 0);
    EXPECT_EQ(received.frame, Bytes(20).at(0, {41}).at(4, {0x01, 0x00, 0xad, 0x0b}));
    EXPECT_EQ(status, 0xfffffffeu);
  });
}

TEST(TarnFWDirectRequest, AFailedFirewallCallLeavesErrnoAndTheStatusThatTheKernelWrote) {
  EXPECT_FRESH([] {
    const LogCapture log;
    Received received;
    DeviceShim::put("/dev/brq-tarn", firewall(received, 7, -1));
    std::uint32_t status = 3;
    Small record{};
    EXPECT_EQ(directRequest(FirewallDevice(FW_Ioctl), 20, record, &status), -1);
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(status, 7u);
    EXPECT_TRUE(
        log.has(3, "ioctl cmd 20 on device /dev/brq-tarn failed: Device or resource busy\n\n"));
  });
}

TEST(TarnFWDirectRequest, ADeviceThatIsNotThereLeavesTheStatusAndIsLogged) {
  EXPECT_FRESH([] {
    const LogCapture log;
    DeviceShim::putFailing("/dev/brq-tarn", ENOENT);
    std::uint32_t status = 5;
    Small record{};
    EXPECT_EQ(directRequest(FirewallDevice(FW_Ioctl), 20, record, &status), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(status, 5u);
    EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnFWIoctl:FW_Ioctl():N error 12: cannot open "
                                      "device /dev/brq-tarn: 2\n"});
  });
}

TEST(TarnFWDirectRequest, AnOpenDescriptorIsUsedAsItIsAndNothingIsLogged) {
  EXPECT_FRESH([] {
    const LogCapture log;
    Received received;
    DeviceShim::put("/dev/brq-tarn", firewall(received, 0));
    const int descriptor = open("/dev/brq-tarn", O_RDWR);
    Small record{{1, 2, 3, 4, 5}};
    EXPECT_EQ(directRequest(FirewallDevice(descriptor), 20, record), 0);
    Bytes frame = Bytes(20).at(0, {20}).at(8, {5});
    putAddress(frame, 12, &record);
    EXPECT_EQ(received.frame, frame);
    DeviceShim::put("/dev/brq-tarn", failing);
    EXPECT_EQ(directRequest(FirewallDevice(descriptor), 20, record), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_TRUE(log.lines().empty());
    close(descriptor);
  });
}

TEST(TarnFWDirectRequest, ATableRequestIsTheRecordItself) {
  EXPECT_FRESH([] {
    void* argument = nullptr;
    DeviceShim::put("/dev/weirgatetbl", [&](const DeviceShim::Call& call) {
      EXPECT_EQ(call.request, 6u);
      argument = call.argument;
      return 0;
    });
    Small record{};
    EXPECT_EQ(directRequest(TableDevice(WGT_Ioctl), 6, record), 0);
    EXPECT_EQ(argument, &record);

    const LogCapture log;
    DeviceShim::put("/dev/weirgatetbl", failing);
    EXPECT_EQ(directRequest(TableDevice(WGT_Ioctl), 3, record), -1);
    EXPECT_EQ(errno, EPERM);
    EXPECT_TRUE(
        log.has(3, "ioctl cmd 3 on device /dev/weirgatetbl failed: Operation not permitted\n\n"));
  });
}

TEST(TarnFWDirectRequest, AnInsertionRequestStandsInAFrameOf32Bytes) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put("/dev/brq-tarn-ploy", [&](const DeviceShim::Call& call) {
      received.request = call.request;
      received.frame = copy(reinterpret_cast<std::uintptr_t>(call.argument), 32);
      return 0x0bad0003;
    });
    const LogCapture log;
    std::uint32_t port = 67108875;
    std::uint8_t reply[160]{};
    EXPECT_EQ(directRequest(InsertionDevice(SI_Ioctl), 11, memoryOf(port), memoryOf(reply)),
              0x0bad0003);
    EXPECT_EQ(received.request, 11u);
    Bytes frame = Bytes(32).at(0, {11}).at(8, {4}).at(12, {160});
    putAddress(frame, 16, &port);
    putAddress(frame, 24, reply);
    EXPECT_EQ(received.frame, frame);

    std::uint64_t count = 0;
    directRequest(InsertionDevice(SI_Ioctl), 12, {}, memoryOf(count));
    frame = Bytes(32).at(0, {12}).at(12, {8});
    putAddress(frame, 24, &count);
    EXPECT_EQ(received.frame, frame);
  });
}

TEST(TarnFWDirectRequest, AFailedInsertionRequestLeavesErrno) {
  EXPECT_FRESH([] {
    const LogCapture log;
    DeviceShim::putFailing("/dev/brq-tarn-ploy", ENXIO);
    std::uint64_t count = 0;
    EXPECT_EQ(directRequest(InsertionDevice(SI_Ioctl), 12, {}, memoryOf(count)), -1);
    EXPECT_EQ(errno, ENXIO);
    DeviceShim::put("/dev/brq-tarn-ploy", failing);
    EXPECT_EQ(directRequest(InsertionDevice(SI_Ioctl), 12, {}, memoryOf(count)), -1);
    EXPECT_EQ(errno, EPERM);
  });
}
