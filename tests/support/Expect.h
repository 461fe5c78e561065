#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "TarnFWException.h"

/// Expects `statement` to throw exactly `type`, with this status and this whole text.
#define EXPECT_THROW_WITH(statement, type, code, text)                          \
  do {                                                                          \
    bool thrown = false;                                                        \
    try {                                                                       \
      statement;                                                                \
    } catch (const ::TarnFirewall::CTarnFWException& e) {                       \
      thrown = true;                                                            \
      EXPECT_TRUE(typeid(e) == typeid(type)) << "thrown: " << typeid(e).name(); \
      EXPECT_EQ(e.retcode(), (code));                                           \
      EXPECT_STREQ(e.what(), std::string(text).c_str());                        \
    }                                                                           \
    EXPECT_TRUE(thrown) << "nothing was thrown by " #statement;                 \
  } while (false)

/// Bytes of a record for golden tests: `Bytes(892).at(12, {1, 0})` is 892 zero bytes with two set.
class Bytes : public std::vector<std::uint8_t> {
 public:
  explicit Bytes(std::size_t size, std::uint8_t fill = 0) : std::vector<std::uint8_t>(size, fill) {}
  Bytes(const_iterator first, const_iterator last) : std::vector<std::uint8_t>(first, last) {}
  Bytes(std::initializer_list<std::uint8_t> bytes) : std::vector<std::uint8_t>(bytes) {}

  Bytes& at(std::size_t offset, std::initializer_list<int> bytes) {
    for (const int b : bytes)
      (*this).std::vector<std::uint8_t>::at(offset++) = static_cast<std::uint8_t>(b);
    return *this;
  }
  Bytes& text(std::size_t offset, const std::string& characters) {
    for (const char c : characters)
      (*this).std::vector<std::uint8_t>::at(offset++) = static_cast<std::uint8_t>(c);
    return *this;
  }
};
