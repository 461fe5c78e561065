#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "LogCapture.h"
#include "TarnFWException.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

/// What the channel below saw; it outlives the channel.
struct Seen {
  int alive = 0;
  int sends = 0;
  dvs_port_* port = nullptr;
  const void* message = nullptr;
  unsigned int size = 0;
  void* context = nullptr;
  FWStatus_t answer = 0;
  bool throws = false;
};

class Channel final : public CTarnFWIOChannel {
 public:
  explicit Channel(Seen& seen) : seen_(seen) { ++seen_.alive; }
  ~Channel() override { --seen_.alive; }
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override {
    ++seen_.sends;
    seen_.port = port;
    seen_.message = message;
    seen_.size = size;
    seen_.context = context;
    if (seen_.throws) throw CIoctlException("gone", 5);
    return seen_.answer;
  }

 private:
  Seen& seen_;
};

class TarnFWLibHandle : public testing::Test {
 protected:
  void connect() { library_->setIOChannel(std::make_unique<Channel>(seen_)); }

  void* buffer(unsigned int size) {
    void* body = nullptr;
    EXPECT_EQ(library_->getCommandBuffer(&body, size), 0u);
    return body;
  }

  Seen seen_;
  std::unique_ptr<CTarnFWLibHandle> library_ = CTarnFWLibHandle::GetInstance();
};

}  // namespace

TEST_F(TarnFWLibHandle, EveryGetInstanceMakesANewHandle) {
  EXPECT_NE(CTarnFWLibHandle::GetInstance(), CTarnFWLibHandle::GetInstance());
}

TEST_F(TarnFWLibHandle, AFlushHandsTheWholeMessageToTheChannel) {
  connect();
  void* body = buffer(40);
  EXPECT_TRUE(library_->addCommand(body, 40));
  dvs_port_ port{};
  int context = 0;
  seen_.answer = 28;
  EXPECT_EQ(library_->flushCommandBuffer(body, 40, &port, &context), 28u);
  EXPECT_EQ(seen_.sends, 1);
  EXPECT_EQ(seen_.port, &port);
  EXPECT_EQ(seen_.message, static_cast<std::uint8_t*>(body) - 20);
  EXPECT_EQ(seen_.size, 60u);
  EXPECT_EQ(seen_.context, &context);
  EXPECT_EQ(library_->releaseCommandBuffer(body), 0u);
}

TEST_F(TarnFWLibHandle, WithoutAContextTheHandlesOwnIsUsedWhichIsNull) {
  connect();
  void* body = buffer(12);
  library_->addCommand(body, 12);
  seen_.context = &seen_;
  EXPECT_EQ(library_->flushCommandBuffer(body, 12, nullptr, nullptr), 0u);
  EXPECT_EQ(seen_.context, nullptr);
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, AFlushWithoutAChannelIsNotInitialized) {
  void* body = buffer(12);
  library_->addCommand(body, 12);
  EXPECT_EQ(library_->flushCommandBuffer(body, 12, nullptr, nullptr), 1u);
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, AMessageOfAnotherSizeIsNeverSentAndGivesEight) {
  connect();
  void* body = buffer(40);
  library_->addCommand(body, 39);
  EXPECT_EQ(library_->flushCommandBuffer(body, 40, nullptr, nullptr), 8u);
  EXPECT_EQ(seen_.sends, 0);
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, ABrokenHeaderIsNeverSentAndGivesEight) {
  connect();
  void* body = buffer(40);
  library_->addCommand(body, 40);
  auto* category = static_cast<std::uint8_t*>(body) - 5;
  *category = 2;
  EXPECT_EQ(library_->flushCommandBuffer(body, 40, nullptr, nullptr), 8u);
  EXPECT_EQ(seen_.sends, 0);
  *category = 1;
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, TheChannelsExceptionsPass) {
  connect();
  void* body = buffer(12);
  library_->addCommand(body, 12);
  seen_.throws = true;
  EXPECT_THROW(library_->flushCommandBuffer(body, 12, nullptr, nullptr), CIoctlException);
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, ABufferThatCannotBeHadGivesEight) {
  void* body = nullptr;
  EXPECT_EQ(library_->getCommandBuffer(&body, 4294967276u), 8u);
  EXPECT_EQ(library_->getCommandBuffer(nullptr, 12), 8u);
  EXPECT_EQ(body, nullptr);
}

TEST_F(TarnFWLibHandle, AResetBufferTakesItsCommandsAnew) {
  connect();
  void* body = buffer(40);
  library_->addCommand(body, 40);
  EXPECT_EQ(library_->resetCommandBuffer(body), 0u);
  library_->addCommand(body, 12);
  EXPECT_EQ(library_->flushCommandBuffer(body, 12, nullptr, nullptr), 0u);
  library_->releaseCommandBuffer(body);
}

TEST_F(TarnFWLibHandle, RefusedBuffersGiveThree) {
  LogCapture log;
  EXPECT_EQ(library_->releaseCommandBuffer(nullptr), 3u);
  EXPECT_EQ(library_->resetCommandBuffer(nullptr), 3u);
}

TEST_F(TarnFWLibHandle, ASecondChannelDeletesTheFirst) {
  connect();
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_LIBRARY].level = 1;
  Seen second;
  EXPECT_EQ(library_->setIOChannel(std::make_unique<Channel>(second)), 0u);
  EXPECT_EQ(seen_.alive, 0);
  EXPECT_EQ(second.alive, 1);
  EXPECT_EQ(log.normalized(),
            (std::vector<std::string>{
                "6|tarnfw: TarnFWLibHandle:setIOChannel():N IOChannel has already been "
                "initialized\n",
                "7|tarnfw:library TarnFWLibHandle:setIOChannel():N Set IOChannel to lib\n"}));
  library_.reset();
  EXPECT_EQ(second.alive, 0);
}

TEST_F(TarnFWLibHandle, TheSequenceRunsForTheWholeLifeOfAHandle) {
  for (std::uint32_t expected = 0; expected < 3; ++expected) {
    void* body = buffer(12);
    std::uint32_t sequence = 99;
    std::memcpy(&sequence, static_cast<std::uint8_t*>(body) - 12, 4);
    EXPECT_EQ(sequence, expected);
    library_->releaseCommandBuffer(body);
  }
}
