#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "Expect.h"
#include "TarnFWObject.h"

/// The wire form of an object, written into a buffer of `fill` that has exactly the room it asks
/// for. Fails the test when a byte after that room changes or the reported size is another.
inline Bytes messageOf(TarnFirewall::ITarnFWObject& object, std::uint8_t fill = 0xee) {
  const unsigned int size = object.getMsgSize();
  Bytes bytes(size + 64, fill);
  unsigned int written = ~0u;
  EXPECT_TRUE(object.toMessage(bytes.data(), size, &written));
  EXPECT_EQ(written, size);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin() + size, bytes.end()),
            std::vector<std::uint8_t>(64, fill));
  bytes.resize(size);
  return bytes;
}

/// Expects `toMessage` to be false for every size below the object's, with no byte written.
inline void expectShortBuffersRefused(TarnFirewall::ITarnFWObject& object) {
  const unsigned int needed = object.getMsgSize();
  std::vector<std::uint8_t> bytes(needed, 0xee);
  for (unsigned int size = 0; size < needed; ++size) {
    unsigned int written = 12345;
    ASSERT_FALSE(object.toMessage(bytes.data(), size, &written)) << size;
    ASSERT_EQ(written, 12345u) << size;
    ASSERT_EQ(bytes, std::vector<std::uint8_t>(needed, 0xee)) << size;
  }
}
