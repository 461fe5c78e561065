#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <thread>
#include <vector>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWLog.h"
#include "TarnFWMsgBufFactory.h"
#include "TarnFWSimpleMsgBuf.h"

using namespace TarnFirewall;

namespace {

/// A buffer that gives itself back.
class Buffer {
 public:
  Buffer(CTarnFWMsgBuf& owner, unsigned int size) : owner_(owner) {
    EXPECT_TRUE(owner_.getBuffer(&body, size));
  }
  ~Buffer() {
    if (body != nullptr) owner_.releaseBuffer(body);
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  std::uint8_t* header() const { return static_cast<std::uint8_t*>(body) - 20; }
  Bytes headerBytes() const {
    Bytes bytes(20);
    std::memcpy(bytes.data(), header(), 20);
    return bytes;
  }

  void* body = nullptr;

 private:
  CTarnFWMsgBuf& owner_;
};

/// The 20 bytes from a place on.
Bytes bytesOf(const std::uint8_t* place) {
  Bytes bytes(20);
  std::memcpy(bytes.data(), place, bytes.size());
  return bytes;
}

Bytes emptyHeader() { return Bytes(20).text(0, "TARN").at(12, {1, 1, 0, 1}); }

}  // namespace

TEST(TarnFWSimpleMsgBuf, FirstHeaderIsAnEmptyRequestWithSequenceZero) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 16);
  EXPECT_EQ(buffer.headerBytes(), emptyHeader());
}

TEST(TarnFWSimpleMsgBuf, AHeaderIsClearedBeforeItIsFilled) {
  CTarnFWSimpleMsgBuf owner;
  tarn_msg_hdr_ header;
  for (int sequence = 0; sequence < 2; ++sequence) {
    std::memset(static_cast<void*>(&header), 0xa5, sizeof header);
    owner.initMsgHeader(&header);
    Bytes bytes(20);
    std::memcpy(bytes.data(), &header, 20);
    EXPECT_EQ(bytes, emptyHeader().at(8, {sequence}));
  }
}

TEST(TarnFWSimpleMsgBuf, EveryBufferTakesTheNextSequenceNumberOfItsOwner) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer first(owner, 1);
  const Buffer second(owner, 1);
  const Buffer third(owner, 1);
  CTarnFWSimpleMsgBuf other;
  const Buffer elsewhere(other, 1);
  EXPECT_EQ(second.headerBytes(), emptyHeader().at(8, {1}));
  EXPECT_EQ(third.headerBytes(), emptyHeader().at(8, {2}));
  EXPECT_EQ(elsewhere.headerBytes(), emptyHeader());
}

TEST(TarnFWSimpleMsgBuf, BodyAndTheTwentyBytesAfterItAreZero) {
  CTarnFWSimpleMsgBuf owner;
  for (const unsigned int size : {0u, 1u, 12u, 1000u, 300000u}) {
    // Dirty memory of the same size first, so that the allocator hands it out again.
    { std::vector<std::uint8_t> dirt(20 + size + 20, 0xa5); }
    const Buffer buffer(owner, size);
    const std::span<const std::uint8_t> bytes(static_cast<const std::uint8_t*>(buffer.body),
                                              size + kMsgSlack);
    for (const std::uint8_t byte : bytes) ASSERT_EQ(byte, 0) << "size " << size;
  }
}

TEST(TarnFWSimpleMsgBuf, ABufferOfTheSizeOfAReleasedOneIsAsEmptyAsTheFirst) {
  for (const unsigned int size : {0u, 1u, 1004u, 4056u, 4057u, 300000u}) {
    CTarnFWSimpleMsgBuf owner;
    for (std::uint8_t sequence = 0; sequence < 4; ++sequence) {
      const Buffer buffer(owner, size);
      ASSERT_EQ(buffer.headerBytes(), emptyHeader().at(8, {sequence})) << "size " << size;
      const std::span<std::uint8_t> bytes(static_cast<std::uint8_t*>(buffer.body),
                                          size + kMsgSlack);
      for (std::uint8_t& byte : bytes) {
        ASSERT_EQ(byte, 0) << "size " << size;
        byte = 0xa5;
      }
      owner.addCommand(buffer.body, size);
    }
  }
}

TEST(TarnFWSimpleMsgBuf, ABufferOfAnotherSizeThanTheReleasedOneHasItsOwnRoom) {
  CTarnFWSimpleMsgBuf owner;
  for (const unsigned int size : {100u, 50u, 200u, 5000u, 50u, 4056u, 100u}) {
    const Buffer buffer(owner, size);
    const std::span<std::uint8_t> bytes(static_cast<std::uint8_t*>(buffer.body), size + kMsgSlack);
    for (std::uint8_t& byte : bytes) {
      ASSERT_EQ(byte, 0) << "size " << size;
      byte = 0xa5;
    }
  }
}

TEST(TarnFWSimpleMsgBuf, AMessageStandsInTheMemoryOfAnEarlierOneIfThatIsLargeEnough) {
  CTarnFWSimpleMsgBuf owner;
  CTarnFWMessageMemory memory;
  void* first = nullptr;
  bool fresh = false;
  ASSERT_TRUE(owner.getBuffer(&first, 5000, &memory, &fresh));
  EXPECT_TRUE(fresh);
  auto* const bytes = static_cast<std::uint8_t*>(first);
  EXPECT_TRUE(std::all_of(bytes, bytes + 5020, [](int byte) { return byte == 0; }));
  std::memset(bytes, 0xa5, 5000);
  owner.addCommand(first, 5000);
  EXPECT_TRUE(owner.releaseBuffer(first, &memory));

  void* second = nullptr;
  ASSERT_TRUE(owner.getBuffer(&second, 4000, &memory, &fresh));
  EXPECT_FALSE(fresh);
  ASSERT_EQ(second, first);
  EXPECT_EQ(bytesOf(bytes - 20), emptyHeader().at(8, {1}));
  EXPECT_EQ(bytesOf(bytes + 4000), Bytes(20)) << "the slack is zero";
  EXPECT_TRUE(owner.releaseBuffer(second, &memory));

  void* third = nullptr;
  ASSERT_TRUE(owner.getBuffer(&third, 6000, &memory, &fresh));
  EXPECT_TRUE(fresh);
  const auto* const others = static_cast<const std::uint8_t*>(third);
  EXPECT_TRUE(std::all_of(others, others + 6020, [](int byte) { return byte == 0; }));
  EXPECT_TRUE(owner.releaseBuffer(third, &memory));
}

TEST(TarnFWSimpleMsgBuf, BuffersThatAreHeldAtOnceAreApart) {
  CTarnFWSimpleMsgBuf owner;
  { const Buffer released(owner, 64); }
  const Buffer first(owner, 64);
  const Buffer second(owner, 64);
  std::memset(first.body, 0xa5, 64 + kMsgSlack);
  EXPECT_EQ(second.headerBytes(), emptyHeader().at(8, {2}));
  EXPECT_EQ(*static_cast<std::uint8_t*>(second.body), 0);
}

TEST(TarnFWSimpleMsgBuf, NullResultIsRefusedWithoutALine) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_MSGBUF].level = 3;
  CTarnFWSimpleMsgBuf owner;
  EXPECT_FALSE(owner.getBuffer(nullptr, 8));
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWSimpleMsgBuf, SizesThatOverflowWithTheHeaderAreTooLarge) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_MSGBUF].level = 1;
  CTarnFWSimpleMsgBuf owner;
  void* body = nullptr;
  EXPECT_FALSE(owner.getBuffer(&body, 4294967276u));
  EXPECT_FALSE(owner.getBuffer(&body, 4294967295u));
  EXPECT_EQ(body, nullptr);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{"7|tarnfw:msgbuf TarnFWSimpleMsgBuf:getBuffer():N requested "
                                      "buffer size 4294967276 is too large\n\n",
                                      "7|tarnfw:msgbuf TarnFWSimpleMsgBuf:getBuffer():N requested "
                                      "buffer size 4294967295 is too large\n\n"}));
}

TEST(TarnFWSimpleMsgBuf, TooLargeIsNotLoggedAtLevelZero) {
  LogCapture log;
  CTarnFWSimpleMsgBuf owner;
  void* body = nullptr;
  EXPECT_FALSE(owner.getBuffer(&body, 4294967276u));
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWSimpleMsgBuf, AddedCommandsAreCountedAndSummed) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 300);
  EXPECT_TRUE(owner.addCommand(buffer.body, 0x21));
  EXPECT_TRUE(owner.addCommand(buffer.body, 0x0102));
  EXPECT_EQ(buffer.headerBytes(), emptyHeader().at(4, {0x23, 0x01, 0, 0}).at(16, {2, 0}));
}

TEST(TarnFWSimpleMsgBuf, ResetTakesCommandsBackAndKeepsSequenceAndBody) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer first(owner, 8);
  const Buffer second(owner, 8);
  std::memset(second.body, 0x77, 8);
  owner.addCommand(second.body, 8);
  EXPECT_TRUE(owner.resetBuffer(second.body));
  EXPECT_EQ(second.headerBytes(), emptyHeader().at(8, {1}));
  EXPECT_EQ(static_cast<std::uint8_t*>(second.body)[7], 0x77);
  const Buffer third(owner, 8);
  EXPECT_EQ(third.headerBytes(), emptyHeader().at(8, {2}));
}

TEST(TarnFWSimpleMsgBuf, MessageIsTheHeaderAndWhatWasAdded) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 64);
  owner.addCommand(buffer.body, 40);
  void* message = nullptr;
  unsigned int size = 0;
  EXPECT_TRUE(owner.getMessage(buffer.body, 40, &message, &size));
  EXPECT_EQ(message, buffer.header());
  EXPECT_EQ(size, 60u);
}

TEST(TarnFWSimpleMsgBuf, MessageOfAnotherSizeThanAddedIsRefused) {
  LogCapture log;
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 64);
  owner.addCommand(buffer.body, 40);
  void* message = nullptr;
  unsigned int size = 7;
  EXPECT_FALSE(owner.getMessage(buffer.body, 39, &message, &size));
  EXPECT_FALSE(owner.getMessage(buffer.body, 41, &message, &size));
  EXPECT_EQ(message, nullptr);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{"4|tarnfw: TarnFWSimpleMsgBuf:validateBuffer():N message "
                                      "buffer [39] has a bad size\n",
                                      "4|tarnfw: TarnFWSimpleMsgBuf:validateBuffer():N message "
                                      "buffer [41] has a bad size\n"}));
}

TEST(TarnFWSimpleMsgBuf, SizeZeroPassesWhateverTheBodyLength) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 64);
  owner.addCommand(buffer.body, 40);
  EXPECT_TRUE(owner.validateBuffer(buffer.body, 0));
  void* message = nullptr;
  unsigned int size = 0;
  EXPECT_TRUE(owner.getMessage(buffer.body, 0, &message, &size));
  EXPECT_EQ(size, 20u);
}

TEST(TarnFWSimpleMsgBuf, MinorVersionTypeAndPaddingAreNotLookedAt) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 8);
  buffer.header()[13] = 7;
  buffer.header()[14] = 1;
  buffer.header()[18] = 0xff;
  EXPECT_TRUE(owner.validateBuffer(buffer.body, 0));
}

TEST(TarnFWSimpleMsgBuf, SignatureMajorVersionAndCategoryMustMatch) {
  CTarnFWSimpleMsgBuf owner;
  const Buffer buffer(owner, 8);
  for (const std::size_t offset : {0u, 1u, 2u, 3u, 12u, 15u}) {
    LogCapture log;
    const std::uint8_t kept = buffer.header()[offset];
    buffer.header()[offset] = static_cast<std::uint8_t>(kept + 1);
    EXPECT_FALSE(owner.validateBuffer(buffer.body, 5)) << "offset " << offset;
    EXPECT_TRUE(log.has(LOG_WARNING, "message buffer [5] has a bad signature\n"));
    buffer.header()[offset] = kept;
  }
  EXPECT_TRUE(owner.validateBuffer(buffer.body, 0));
}

TEST(TarnFWSimpleMsgBuf, NullBodyIsRefusedWithAWarning) {
  LogCapture log;
  CTarnFWSimpleMsgBuf owner;
  void* message = nullptr;
  unsigned int size = 0;
  EXPECT_FALSE(owner.validateBuffer(nullptr, 0));
  EXPECT_FALSE(owner.releaseBuffer(nullptr));
  EXPECT_FALSE(owner.resetBuffer(nullptr));
  EXPECT_FALSE(owner.getMessage(nullptr, 0, &message, &size));
  const std::string line =
      "4|tarnfw: TarnFWSimpleMsgBuf:validateBuffer():N attempt to validate a null message "
      "buffer\n";
  EXPECT_EQ(log.normalized(), std::vector<std::string>(4, line));
}

TEST(TarnFWSimpleMsgBuf, ABufferWithABrokenSignatureIsNeitherFreedNorReset) {
  LogCapture log;
  CTarnFWSimpleMsgBuf owner;
  void* body = nullptr;
  ASSERT_TRUE(owner.getBuffer(&body, 8));
  auto* header = static_cast<std::uint8_t*>(body) - 20;
  owner.addCommand(body, 8);
  header[0] = 'X';
  EXPECT_FALSE(owner.releaseBuffer(body));
  EXPECT_FALSE(owner.resetBuffer(body));
  EXPECT_EQ(header[4], 8) << "the memory is still ours, and untouched";
  header[0] = 'T';
  EXPECT_TRUE(owner.releaseBuffer(body));
}

TEST(TarnFWSimpleMsgBuf, ThreadsNeverShareASequenceNumber) {
  CTarnFWSimpleMsgBuf owner;
  constexpr unsigned int kPerThread = 500;
  std::vector<std::uint32_t> seen(2 * kPerThread);
  const auto take = [&](unsigned int first) {
    for (unsigned int i = 0; i < kPerThread; ++i) {
      void* body = nullptr;
      if (!owner.getBuffer(&body, 4)) return;
      std::memcpy(&seen[first + i], static_cast<std::uint8_t*>(body) - 12, 4);
      owner.releaseBuffer(body);
    }
  };
  std::thread one(take, 0u);
  std::thread two(take, kPerThread);
  one.join();
  two.join();
  std::sort(seen.begin(), seen.end());
  for (std::uint32_t i = 0; i < seen.size(); ++i) ASSERT_EQ(seen[i], i);
}

TEST(TarnFWMsgBufFactory, TypeZeroIsTheHeapBuffer) {
  const auto owner = CTarnFWMsgBufFactory::newMsgBuf(FW_MSGBUF_SIMPLE);
  EXPECT_NE(dynamic_cast<CTarnFWSimpleMsgBuf*>(owner.get()), nullptr);
}

TEST(TarnFWMsgBufFactory, AnyOtherTypeIsAnInvalidArgument) {
  EXPECT_THROW_WITH(CTarnFWMsgBufFactory::newMsgBuf(static_cast<FWMsgBufType_t>(1)),
                    CUnknownMsgBufTypeException, 3, "unknown message buffer type: 1");
}
