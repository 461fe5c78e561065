#include <gtest/gtest.h>

#include <cstring>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWIOChannelMemory.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

dvs_port_ filter() {
  dvs_port_ port{};
  std::memcpy(port.identifier, "nic-1", 5);
  port.type = FW_SELECTOR_FILTER;
  return port;
}

Bytes twentyBytes() {
  Bytes message(20);
  for (std::size_t i = 0; i < 20; ++i) message[i] = static_cast<std::uint8_t>(0x40 + i);
  return message;
}

}  // namespace

TEST(TarnFWIOChannelMemory, CopiesTheMessageToTheStart) {
  Bytes memory(24, 0xee);
  Bytes message = twentyBytes();
  CTarnFWIOChannelMemory channel(memory.data(), 24);
  EXPECT_EQ(channel.sendIOCTL(nullptr, message.data(), 20, nullptr), 0u);
  Bytes expected(24, 0xee);
  std::copy(message.begin(), message.end(), expected.begin());
  EXPECT_EQ(memory, expected);
}

TEST(TarnFWIOChannelMemory, PutsTheSelectorInFront) {
  Bytes memory(120, 0xee);
  Bytes message = twentyBytes();
  dvs_port_ port = filter();
  CTarnFWIOChannelMemory channel(memory.data(), 120);
  EXPECT_EQ(channel.sendIOCTL(&port, message.data(), 20, nullptr), 0u);
  Bytes expected = Bytes(120).text(0, "nic-1").at(99, {7});
  std::copy(message.begin(), message.end(), expected.begin() + 100);
  EXPECT_EQ(memory, expected);
}

TEST(TarnFWIOChannelMemory, EverySendOverwritesTheOneBefore) {
  Bytes memory(20);
  Bytes first = twentyBytes();
  Bytes second(20, 0x11);
  CTarnFWIOChannelMemory channel(memory.data(), 20);
  channel.sendIOCTL(nullptr, first.data(), 20, nullptr);
  channel.sendIOCTL(nullptr, second.data(), 20, nullptr);
  EXPECT_EQ(memory, second);
}

TEST(TarnFWIOChannelMemory, TooLittleMemoryThrowsAndStaysUntouched) {
  Bytes memory(19, 0xee);
  Bytes message = twentyBytes();
  CTarnFWIOChannelMemory channel(memory.data(), 19);
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 20, nullptr), COutOfMemoryException,
                    8, "out of memory while trying to alloc 20 bytes memory");
  EXPECT_EQ(memory, Bytes(19, 0xee));
}

TEST(TarnFWIOChannelMemory, TheSelectorCountsTowardsTheSpace) {
  Bytes memory(119, 0xee);
  Bytes message = twentyBytes();
  dvs_port_ port = filter();
  CTarnFWIOChannelMemory channel(memory.data(), 119);
  EXPECT_THROW_WITH(channel.sendIOCTL(&port, message.data(), 20, nullptr), COutOfMemoryException, 8,
                    "out of memory while trying to alloc 120 bytes memory");
  EXPECT_EQ(memory, Bytes(119, 0xee));
}

TEST(TarnFWIOChannelMemory, SelectorAndSizeDoNotWrapAround) {
  Bytes memory(200, 0xee);
  dvs_port_ port = filter();
  CTarnFWIOChannelMemory channel(memory.data(), 200);
  Bytes message = twentyBytes();
  EXPECT_THROW(channel.sendIOCTL(&port, message.data(), 4294967295u, nullptr),
               COutOfMemoryException);
  EXPECT_EQ(memory, Bytes(200, 0xee));
}

TEST(TarnFWIOChannelMemory, DescribesWhatItCopies) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_IO].level = 2;
  Bytes memory(20);
  Bytes message = twentyBytes();
  CTarnFWIOChannelMemory(memory.data(), 20).sendIOCTL(nullptr, message.data(), 20, nullptr);
  EXPECT_TRUE(log.has(LOG_DEBUG, "Validating message\n"));
}
