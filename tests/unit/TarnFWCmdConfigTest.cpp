#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Loopback.h"
#include "TarnFWCmdConfig.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

in_addr address(const char* text) {
  in_addr result{};
  EXPECT_EQ(inet_pton(AF_INET, text, &result), 1);
  return result;
}

}  // namespace

TEST(TarnFWCmdConfig, PrintsItsStatement) {
  EXPECT_EQ(CTarnFWCmdConfig(true, "/dev/x", nullptr).toString(), "config device /dev/x");
  EXPECT_EQ(CTarnFWCmdConfig(false, "/tmp/y", "/tmp/z").toString(), "config file /tmp/y");
  EXPECT_EQ(CTarnFWCmdConfig(true, address("10.0.0.1"), 65535, nullptr).toString(),
            "config socket 10.0.0.1:65535");
  EXPECT_EQ(CTarnFWCmdConfig(false, address("255.255.255.255"), 0, "").toString(),
            "config ribs 255.255.255.255:0");
}

TEST(TarnFWCmdConfig, KeepsItsTypeAndTheFurtherText) {
  const CTarnFWCmdConfig device(true, "d", "saved");
  EXPECT_EQ(device.getIOType(), FW_IO_IOCTL);
  EXPECT_EQ(device.getExtra(), "saved");
  EXPECT_EQ(CTarnFWCmdConfig(false, "f", nullptr).getIOType(), FW_IO_FILE);
  EXPECT_EQ(CTarnFWCmdConfig(true, in_addr{}, 1, nullptr).getIOType(), FW_IO_SOCKET);
  EXPECT_EQ(CTarnFWCmdConfig(false, in_addr{}, 1, nullptr).getIOType(), FW_IO_RIBS);
  EXPECT_EQ(CTarnFWCmdConfig(false, in_addr{}, 1, nullptr).getExtra(), "");
}

TEST(TarnFWCmdConfig, NeverGoesToTheKernel) {
  CTarnFWCmdConfig command(false, "/tmp/y", nullptr);
  EXPECT_EQ(command.getMsgSize(), 0u);
  EXPECT_EQ(command.getCommand(), 0);
  EXPECT_EQ(command.getType(), 23);
  unsigned int written = 0;
  EXPECT_FALSE(command.writeCmdBody(nullptr, 100, &written, 0));
}

TEST(TarnFWCmdConfig, ANullResultIsRefused) {
  EXPECT_EQ(CTarnFWCmdConfig(false, "/tmp/y", nullptr).eval(nullptr), 3u);
}

TEST(TarnFWCmdConfig, MakesAHandleOnAFile) {
  char name[] = "/tmp/tarnfw-config-XXXXXX";
  const int descriptor = mkstemp(name);
  ASSERT_NE(descriptor, -1);
  ::close(descriptor);
  fwlibhandle_* handle = nullptr;
  EXPECT_EQ(CTarnFWCmdConfig(false, name, nullptr).eval(&handle), 0u);
  ASSERT_NE(handle, nullptr);
  delete fromLibHandle(handle);
  ::unlink(name);
}

TEST(TarnFWCmdConfig, MakesAHandleOnASocketAndNoneOnRibs) {
  const LoopbackListener listener;
  const auto port = static_cast<unsigned short>(std::stoi(listener.port()));
  fwlibhandle_* handle = nullptr;
  EXPECT_EQ(CTarnFWCmdConfig(true, address("127.0.0.1"), port, nullptr).eval(&handle), 0u);
  ASSERT_NE(handle, nullptr);
  delete fromLibHandle(handle);
  EXPECT_EQ(CTarnFWCmdConfig(false, address("127.0.0.1"), port, nullptr).eval(&handle), 11u);
  EXPECT_EQ(handle, nullptr);
}
