#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Expect.h"
#include "TarnFWIOChannelFile.h"

using namespace TarnFirewall;

namespace {

class TarnFWIOChannelFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarnfw.XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    name_ = folder_ / "messages";
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  Bytes content() const {
    std::ifstream file(name_, std::ios::binary);
    Bytes bytes(0);
    for (std::istreambuf_iterator<char> c(file), end; c != end; ++c) {
      bytes.push_back(static_cast<std::uint8_t>(*c));
    }
    return bytes;
  }

  std::filesystem::path folder_;
  std::filesystem::path name_;
};

/// The lowest descriptor that is free: the same before and after when nothing was lost.
int nextDescriptor() {
  const int descriptor = open("/dev/null", O_RDONLY);
  close(descriptor);
  return descriptor;
}

}  // namespace

TEST_F(TarnFWIOChannelFile, MessagesFollowEachOtherWithoutSeparator) {
  Bytes first = {1, 2, 3};
  Bytes second = {4, 5};
  {
    CTarnFWIOChannelFile channel(name_.c_str());
    EXPECT_EQ(channel.sendIOCTL(nullptr, first.data(), 3, nullptr), 0u);
    EXPECT_EQ(channel.sendIOCTL(nullptr, second.data(), 2, nullptr), 0u);
  }
  EXPECT_EQ(content(), (Bytes{1, 2, 3, 4, 5}));
}

TEST_F(TarnFWIOChannelFile, TheSelectorsHundredBytesStandInFrontOfItsMessage) {
  dvs_port_ port{};
  std::memcpy(port.identifier, "nic", 3);
  port.type = FW_SELECTOR_FILTER;
  Bytes message = {9, 8};
  CTarnFWIOChannelFile(name_.c_str()).sendIOCTL(&port, message.data(), 2, nullptr);
  EXPECT_EQ(content(), Bytes(102).text(0, "nic").at(99, {7, 9, 8}));
}

TEST_F(TarnFWIOChannelFile, AnExistingFileIsEmptiedWhenTheChannelIsMade) {
  std::ofstream(name_) << "old content";
  const CTarnFWIOChannelFile channel(name_.c_str());
  EXPECT_TRUE(std::filesystem::exists(name_));
  EXPECT_EQ(std::filesystem::file_size(name_), 0u);
}

TEST_F(TarnFWIOChannelFile, ANewFileIsReadableByAllAndWritableByItsOwner) {
  const mode_t old = umask(0);
  const CTarnFWIOChannelFile channel(name_.c_str());
  umask(old);
  struct stat status {};
  ASSERT_EQ(stat(name_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777u, 0644u);
}

TEST_F(TarnFWIOChannelFile, WritesAtTheEndAlsoWhenAnotherWriterCameBetween) {
  Bytes message = {7};
  CTarnFWIOChannelFile channel(name_.c_str());
  channel.sendIOCTL(nullptr, message.data(), 1, nullptr);
  std::ofstream(name_, std::ios::app) << '\x08';
  channel.sendIOCTL(nullptr, message.data(), 1, nullptr);
  EXPECT_EQ(content(), (Bytes{7, 8, 7}));
}

TEST_F(TarnFWIOChannelFile, AFileThatCannotBeMadeIsNamedWithTheReason) {
  const std::string name = (folder_ / "absent" / "messages").string();
  EXPECT_THROW_WITH(CTarnFWIOChannelFile{name.c_str()}, CCannotOpenFileException, 12,
                    name + " : No such file or directory");
}

TEST_F(TarnFWIOChannelFile, AFailingWriteIsAFailedIoctlWithTheSystemsText) {
  Bytes message = {1};
  CTarnFWIOChannelFile channel("/dev/full");
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 1, nullptr), CIoctlException, 19,
                    "No space left on device");
}

TEST_F(TarnFWIOChannelFile, TheMessageIsLeftAsItWas) {
  Bytes message = {1, 2, 3, 4};
  CTarnFWIOChannelFile(name_.c_str()).sendIOCTL(nullptr, message.data(), 4, nullptr);
  EXPECT_EQ(message, (Bytes{1, 2, 3, 4}));
}

TEST_F(TarnFWIOChannelFile, TheDescriptorIsClosedWithTheChannel) {
  const int before = nextDescriptor();
  { const CTarnFWIOChannelFile channel(name_.c_str()); }
  EXPECT_EQ(nextDescriptor(), before);
}
