#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "CallShim.h"
#include "DeviceShim.h"
#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWRevalidate.h"
#include "tarnfw.h"

namespace {

using Lines = std::vector<std::string>;

const char kTables[] = "/dev/weirgatetbl";
const char kProgram[] = "/bin/tarn_vm_list.sh";

#define UUID "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f"
#define OTHER_UUID "50 3a 9c 1e 2b 4d 6f 81-a2 b3 c4 d5 e6 f7 08 19"

/// The table device, which is asked on a descriptor, and the requests that reached it.
class Revalidate : public testing::Test {
 protected:
  Revalidate() {
    DeviceShim::put(kTables, [this](const DeviceShim::Call& call) {
      EXPECT_EQ(call.request, 10u);
      Bytes request(20);
      std::memcpy(request.data(), call.argument, request.size());
      requests_.push_back(request);
      if (requests_.size() != failing_) return 0;
      errno = ENOENT;
      return -1;
    });
    fd_ = open(kTables, O_RDWR);
    CallShim::setHostCall({}, nullptr);
  }
  ~Revalidate() override {
    close(fd_);
    DeviceShim::put(kTables);
    EXPECT_FALSE(hasChild());
  }

  /// All machines of a host whose script prints this, as a format of the shell's `printf`.
  UtilStatus_t all(const std::string& list) {
    const CallShim::Program program(kProgram, "printf '" + list + "'");
    const std::vector<int> descriptors = openDescriptors();
    const UtilStatus_t result = RevalidateAllVMs(fd_);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(program.starts(), Lines{kProgram});
    return result;
  }

  int fd_;
  std::size_t failing_ = 0;
  std::vector<Bytes> requests_;
  LogCapture log_;
};

const Bytes kFirst =
    Bytes(20).at(0, {0xe8, 3, 0, 0}).at(4, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15});
const Bytes kSecond = Bytes(20)
                          .at(0, {0x6d, 0x3b, 0x0f, 0})
                          .at(4, {0x50, 0x3a, 0x9c, 0x1e, 0x2b, 0x4d, 0x6f, 0x81, 0xa2, 0xb3, 0xc4,
                                  0xd5, 0xe6, 0xf7, 0x08, 0x19});

}  // namespace

TEST_F(Revalidate, OneSendsItsRecord) {
  const std::uint8_t uuid[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  EXPECT_EQ(RevalidateOneVM(fd_, 1000, uuid), 1);
  EXPECT_EQ(requests_, std::vector<Bytes>{kFirst});
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Revalidate, OneThatFailsIsLoggedByOneLine) {
  failing_ = 1;
  const std::uint8_t uuid[16] = {};
  EXPECT_EQ(RevalidateOneVM(fd_, 4294967295u, uuid), 0);
  EXPECT_EQ(RevalidateOneVM(-1, 7, uuid), 0);
  EXPECT_EQ(log_.normalized(),
            (Lines{"3|tarnfw: TarnFWUtil:RevalidateOneVM():N Failed to revalidate vm of world id "
                   "-1: No such file or directory\n\n",
                   "3|tarnfw: TarnFWUtil:RevalidateOneVM():N Failed to revalidate vm of world id "
                   "7: Bad file descriptor\n\n"}));
}

TEST_F(Revalidate, AllSendsARecordForEveryMachine) {
  EXPECT_EQ(all("1000:" UUID "\\n998253:" OTHER_UUID "\\n"), 1);
  EXPECT_EQ(requests_, (std::vector<Bytes>{kFirst, kSecond}));
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Revalidate, AnEmptyListIsASuccess) {
  for (const char* list : {"", "\\n\\n", "no machine runs\\n", UUID "\\n"})
    EXPECT_EQ(all(list), 1) << list;
  EXPECT_TRUE(requests_.empty());
  EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Revalidate, LinesWithoutAColonAreSkippedAndTheLastNeedsNoEnd) {
  EXPECT_EQ(all("machines\\n 1000:" UUID " and more:x\\n\\nend"), 1);
  EXPECT_EQ(all("998253:" OTHER_UUID), 1);
  EXPECT_EQ(requests_, (std::vector<Bytes>{kFirst, kSecond}));
}

TEST_F(Revalidate, ABadLineEndsItAfterTheMachinesBefore) {
  const Lines worlds = {"x:" UUID, "1000x:" UUID, "99999999999999999999:" UUID,
                        ":",       "1000 :" UUID, "0x10:" UUID,
                        ":" UUID};
  const Lines uuids = {"1000:", "1000::", "1000:x", "1000:00 01 02",
                       "1000:" + std::string(47, 'g')};
  for (const auto& [lines, text] : {std::pair{worlds, "Failed to get world id for vm\n\n"},
                                    std::pair{uuids, "Failed to get vm uuid\n\n"}}) {
    for (const std::string& line : lines) {
      requests_.clear();
      log_.clear();
      EXPECT_EQ(all("1000:" UUID "\\n" + line + "\\n998253:" OTHER_UUID "\\n"), 0) << line;
      EXPECT_EQ(requests_, std::vector<Bytes>{kFirst}) << line;
      EXPECT_EQ(log_.normalized(),
                Lines{"3|tarnfw: TarnFWUtil:RevalidateAllVMs():N " + std::string(text)})
          << line;
    }
  }
}

TEST_F(Revalidate, ARequestThatFailsEndsIt) {
  failing_ = 2;
  EXPECT_EQ(all("1000:" UUID "\\n998253:" OTHER_UUID "\\n1000:" UUID "\\n"), 0);
  EXPECT_EQ(requests_.size(), 2u);
  EXPECT_EQ(log_.normalized(),
            Lines{"3|tarnfw: TarnFWUtil:RevalidateAllVMs():N Failed to revalidate vm " OTHER_UUID
                  " of world 998253: No such file or directory\n\n"});
}

TEST_F(Revalidate, TheScriptsEndAndItsOtherOutputDoNotCount) {
  for (const char* tail : {"; exit 3", "; kill -9 $$", "; head -c 200000 /dev/zero >&2",
                           "; exec >&-; sleep 0.2", "; cat"}) {
    requests_.clear();
    const CallShim::Program program(kProgram, "echo '1000:" UUID "'" + std::string(tail));
    EXPECT_EQ(RevalidateAllVMs(fd_), 1) << tail;
    EXPECT_EQ(requests_, std::vector<Bytes>{kFirst}) << tail;
  }
}

TEST_F(Revalidate, ALongListIsReadUpTo32766Characters) {
  // A line of a machine and filling up to `length` characters, then a colon at the very end.
  const auto run = [this](unsigned int filling) {
    requests_.clear();
    const CallShim::Program program(kProgram, "head -c " + std::to_string(filling) +
                                                  " /dev/zero | tr '\\0' '\\n'; printf '1000:" UUID
                                                  "'; head -c 100000 /dev/zero | tr '\\0' x");
    return RevalidateAllVMs(fd_);
  };
  constexpr unsigned int kLine = 52;
  EXPECT_EQ(run(32766 - kLine), 1);
  EXPECT_EQ(requests_.size(), 1u);
  // The last digit is cut off: what is left is read as one.
  EXPECT_EQ(run(32766 - kLine + 1), 1);
  ASSERT_EQ(requests_.size(), 1u);
  EXPECT_EQ(requests_[0], Bytes(kFirst).at(19, {0}));
  // Both are: the identifier is not whole.
  EXPECT_EQ(run(32766 - kLine + 2), 0);
  EXPECT_TRUE(requests_.empty());
}

TEST_F(Revalidate, WithoutTheScriptThereIsNoList) {
  const CallShim::Failing failing(0, ENOENT, "posix_spawn");
  EXPECT_EQ(RevalidateAllVMs(fd_), 0);
  EXPECT_EQ(log_.normalized(),
            (Lines{"3|tarnfw: TarnFWUtil:RunCommandWithTimeout():N "
                   "Failed to fork child process (/bin/tarn_vm_list.sh), status: 2\n\n",
                   "3|tarnfw: TarnFWUtil:RevalidateAllVMs():N Failed to get vm list: 32767\n\n"}));
}

TEST_F(Revalidate, WithoutMemoryThereIsNoList) {
  DeviceShim::failNextCalloc();
  EXPECT_EQ(RevalidateAllVMs(fd_), 0);
  EXPECT_EQ(log_.normalized(),
            Lines{"3|tarnfw: TarnFWUtil:RevalidateAllVMs():N Out of memory to get vm list\n\n"});
}
