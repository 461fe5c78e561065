#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

#include "DeviceShim.h"
#include "Expect.h"
#include "TarnFWIOChannelFile.h"

using namespace TarnFirewall;

namespace {

class TarnFWIOChannelFileFault : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarnfw.XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    name_ = (folder_ / "messages").string();
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path folder_;
  std::string name_;
};

}  // namespace

TEST_F(TarnFWIOChannelFileFault, ASelectorThatCannotBeWrittenKeepsItsMessageOut) {
  CTarnFWIOChannelFile channel(name_.c_str());
  dvs_port_ port{};
  Bytes message = {1, 2, 3};
  DeviceShim::failNextWrite(EINTR);
  EXPECT_THROW_WITH(channel.sendIOCTL(&port, message.data(), 3, nullptr), CIoctlException, 19,
                    "Interrupted system call");
  EXPECT_EQ(std::filesystem::file_size(name_), 0u);
}

TEST_F(TarnFWIOChannelFileFault, AWriteWithoutMemoryIsTheKernelOutOfMemory) {
  CTarnFWIOChannelFile channel(name_.c_str());
  Bytes message = {1, 2, 3};
  DeviceShim::failNextWrite(ENOMEM);
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 3, nullptr), CIoctlException, 65,
                    "Cannot allocate memory");
}

TEST_F(TarnFWIOChannelFileFault, AShortWriteCountsAsDoneAndIsNotFollowedUp) {
  // A file that may hold 10 bytes takes 10 of 24 and refuses whatever comes after them.
  CTarnFWIOChannelFile channel(name_.c_str());
  rlimit kept{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &kept), 0);
  const rlimit ten{10, kept.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &ten), 0);
  Bytes message(24, 0x5a);
  EXPECT_EQ(channel.sendIOCTL(nullptr, message.data(), 24, nullptr), 0u);
  EXPECT_EQ(std::filesystem::file_size(name_), 10u);
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 24, nullptr), CIoctlException, 19,
                    "File too large");
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &kept), 0);
  std::signal(SIGXFSZ, handler);
}
