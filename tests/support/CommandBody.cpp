#include "CommandBody.h"

#include <gtest/gtest.h>

#include <cstring>

std::uint32_t CommandBody::word(std::size_t offset) const {
  EXPECT_LE(offset + 4, size);
  std::uint32_t value = 0;
  std::memcpy(&value, at + offset, sizeof value);
  return value;
}

std::string CommandBody::text(std::size_t offset, std::size_t length) const {
  EXPECT_LE(offset + length, size);
  const char* const field = reinterpret_cast<const char*>(at + offset);
  return std::string(field, strnlen(field, length));
}

void CommandBody::put(std::size_t offset, const void* bytes, std::size_t count) {
  ASSERT_LE(offset + count, size);
  if (count != 0) std::memcpy(at + offset, bytes, count);
}
