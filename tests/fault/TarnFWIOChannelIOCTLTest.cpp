#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWIOChannelFactory.h"
#include "TarnFWIOChannelIOCTL.h"
#include "TarnFWIoctl.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

const char kDevice[] = "/dev/brq-tarn";

/// The frame and the block as the kernel finds them at their addresses.
struct Received {
  Bytes frame{Bytes(20)};
  Bytes block{Bytes(112)};
};

Received receive(const DeviceShim::Call& call) {
  Received received;
  std::memcpy(received.frame.data(), call.argument, 20);
  std::uint64_t address = 0;
  std::memcpy(&address, received.frame.data() + 12, 8);
  std::memcpy(received.block.data(), reinterpret_cast<const void*>(address), 112);
  return received;
}

/// Eight bytes of an address in the host's order.
void putAddress(Bytes& bytes, std::size_t offset, const void* pointer) {
  const std::uint64_t address = reinterpret_cast<std::uintptr_t>(pointer);
  std::memcpy(bytes.data() + offset, &address, 8);
}

DeviceShim::Answer failWith(int error) {
  return [error](const DeviceShim::Call&) {
    errno = error;
    return -1;
  };
}

dvs_port_ filter() {
  dvs_port_ port{};
  std::memcpy(port.identifier, "nic-7", 5);
  std::memcpy(port.agent, "kelpco-sfw", 10);
  port.index[0] = 0x34;
  port.index[1] = 0x12;
  port.type = FW_SELECTOR_FILTER;
  return port;
}

/// What a send over the channel of the singleton does when the ioctl fails with `error`.
void expectFailure(dvs_port_* port, int error, unsigned int status, const std::string& text) {
  EXPECT_FRESH([&] {
    DeviceShim::put(kDevice, failWith(error));
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    Bytes message(24);
    FWStatus_t got = 0;
    std::string said;
    try {
      got = channel->sendIOCTL(port, message.data(), 24, nullptr);
    } catch (const CTarnFWException& e) {
      got = static_cast<FWStatus_t>(e.retcode());
      said = e.what();
    }
    EXPECT_EQ(got, status);
    EXPECT_EQ(said, text);
  });
}

}  // namespace

TEST(TarnFWIOChannelIOCTL, PacksSelectorSizeAndAddressIntoTheBlock) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put(kDevice, [&](const DeviceShim::Call& call) {
      received = receive(call);
      return 0;
    });
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    Bytes message(0x0118);
    dvs_port_ port = filter();
    EXPECT_EQ(channel->sendIOCTL(&port, message.data(), 0x0118, nullptr), 0u);
    ASSERT_EQ(DeviceShim::calls().size(), 1u);
    EXPECT_EQ(DeviceShim::calls()[0].request, 15u);
    Bytes block = Bytes(112)
                      .text(0, "nic-7")
                      .text(64, "kelpco-sfw")
                      .at(96, {0x34, 0x12, 0, 7})
                      .at(100, {0x18, 0x01, 0, 0});
    putAddress(block, 104, message.data());
    EXPECT_EQ(received.block, block);
    // The address of the block is checked by its having been read.
    received.frame.at(12, {0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(received.frame, Bytes(20).at(0, {15}).at(8, {112}));
  });
}

TEST(TarnFWIOChannelIOCTL, WithoutASelectorItsHundredBytesAreZero) {
  EXPECT_FRESH([] {
    Received received;
    DeviceShim::put(kDevice, [&](const DeviceShim::Call& call) {
      received = receive(call);
      return 0;
    });
    Bytes message(32);
    create_io_channel(FW_IO_IOCTL, 0, nullptr)->sendIOCTL(nullptr, message.data(), 32, nullptr);
    Bytes block = Bytes(112).at(100, {32});
    putAddress(block, 104, message.data());
    EXPECT_EQ(received.block, block);
  });
}

TEST(TarnFWIOChannelIOCTL, TheKernelsAnswerStandsInTheMessage) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call& call) {
      std::uint64_t message = 0;
      std::memcpy(&message, receive(call).block.data() + 104, 8);
      reinterpret_cast<std::uint8_t*>(message)[28] = 26;
      return 3;
    });
    Bytes message(32);
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    EXPECT_EQ(channel->sendIOCTL(nullptr, message.data(), 32, nullptr), 0u)
        << "a positive result is success";
    EXPECT_EQ(message, Bytes(32).at(28, {26}));
  });
}

TEST(TarnFWIOChannelIOCTL, ENOENTWithASelectorIsAPortThatIsNotFound) {
  dvs_port_ port = filter();
  expectFailure(&port, ENOENT, 21, "ioctl failed because switch port is not found");
}

TEST(TarnFWIOChannelIOCTL, ENOENTWithoutASelectorIsAPlainFailure) {
  expectFailure(nullptr, ENOENT, 19, "ioctl failed, errno=2");
}

TEST(TarnFWIOChannelIOCTL, ENOENTWithASelectorOfTypeNoneIsAPlainFailure) {
  dvs_port_ port = filter();
  port.type = 0xf0;  // the high nibble is no type
  expectFailure(&port, ENOENT, 19, "ioctl failed, errno=2");
}

TEST(TarnFWIOChannelIOCTL, ENOMEMIsTheKernelOutOfMemoryWithAndWithoutASelector) {
  dvs_port_ port = filter();
  expectFailure(&port, ENOMEM, 65, "ioctl failed, errno=12");
  expectFailure(nullptr, ENOMEM, 65, "ioctl failed, errno=12");
}

TEST(TarnFWIOChannelIOCTL, AnyOtherErrorIsAFailedIoctl) {
  dvs_port_ port = filter();
  expectFailure(&port, EPERM, 19, "ioctl failed, errno=1");
}

TEST(TarnFWIOChannelIOCTL, AStaleErrnoIsNotTakenForTheIoctls) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, [](const DeviceShim::Call&) { return -1; });
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    Bytes message(24);
    errno = ENOMEM;
    EXPECT_THROW_WITH(channel->sendIOCTL(nullptr, message.data(), 24, nullptr), CIoctlException, 19,
                      "ioctl failed, errno=0");
  });
}

TEST(TarnFWIOChannelIOCTL, ALineInBetweenDoesNotSpoilErrno) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice, failWith(ENOMEM));
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    Bytes message(24);
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 2;
    FW_RegisterLogger([](int, const char*, va_list) { errno = ENOENT; }, 6);
    dvs_port_ port = filter();
    EXPECT_THROW_WITH(channel->sendIOCTL(&port, message.data(), 24, nullptr), CIoctlException, 65,
                      "ioctl failed, errno=12");
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 0;
  });
}

TEST(TarnFWIOChannelIOCTL, DescribesTheCallAboveLevelOne) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    const auto channel = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    Bytes message(24);
    dvs_port_ port = filter();
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 1;
    channel->sendIOCTL(&port, message.data(), 24, nullptr);
    EXPECT_TRUE(log.lines().empty());
    g_tarnfw_verbose[FW_COMPONENT_IO].level = 2;
    channel->sendIOCTL(&port, message.data(), 24, nullptr);
    std::memset(port.identifier, 'u', sizeof port.identifier);
    channel->sendIOCTL(&port, message.data(), 24, nullptr);
    const std::string place = "7|tarnfw:io TarnFWIOChannelIOCTL:sendIOCTL():N called ioctl ";
    EXPECT_EQ(log.normalized(),
              (Lines{place + "[type 7 uuid nic-7 idx 4660]: 0\n",
                     place + "[type 7 uuid " + std::string(64, 'u') + " idx 4660]: 0\n"}));
  });
}

TEST(TarnFWIOChannelIOCTL, ADeviceNameHasNoEffectOnTheDeviceOpened) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    const char* items[] = {"FWIODeviceName", "/dev/there/is/no/such"};
    const auto channel = create_io_channel(FW_IO_IOCTL, 2, items);
    Bytes message(24);
    EXPECT_EQ(channel->sendIOCTL(nullptr, message.data(), 24, nullptr), 0u);
    ASSERT_EQ(DeviceShim::calls().size(), 1u);
    EXPECT_EQ(DeviceShim::calls()[0].device, kDevice);
  });
}

TEST(TarnFWIOChannelIOCTL, AChannelOnTheSingletonsDescriptorDoesNotCloseIt) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    create_io_channel(FW_IO_IOCTL, 0, nullptr).reset();
    EXPECT_TRUE(DeviceShim::closes().empty());
    Bytes message(24);
    const auto again = create_io_channel(FW_IO_IOCTL, 0, nullptr);
    EXPECT_EQ(again->sendIOCTL(nullptr, message.data(), 24, nullptr), 0u);
    EXPECT_EQ(DeviceShim::opens().size(), 1u);
  });
}

TEST(TarnFWIOChannelIOCTL, AChannelThatOpenedADeviceClosesIt) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    DeviceShim::put("/dev/other");
    { const CTarnFWIOChannelIOCTL named("/dev/other"); }
    { const CTarnFWIOChannelIOCTL standard; }
    EXPECT_EQ(DeviceShim::closes(), (Lines{"/dev/other", kDevice}));
  });
}

TEST(TarnFWIOChannelIOCTL, ADeviceThatCannotBeOpenedIsNamed) {
  EXPECT_FRESH([] {
    DeviceShim::putFailing("/dev/other", EACCES);
    EXPECT_THROW_WITH(CTarnFWIOChannelIOCTL("/dev/other"), CCannotOpenDevException, 12,
                      "cannot open device /dev/other: 13");
  });
}
