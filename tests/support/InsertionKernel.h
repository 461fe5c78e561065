#pragma once

/// A kernel for the commands about service insertion, and what they send to it.

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DirectKernel.h"
#include "RunCommand.h"

using Words = std::vector<std::string>;

const CommandResult kSilent{0, "", ""};

/// A kernel that takes everything, and says of everything that it failed, which nobody reads.
class InsertionKernel : public DirectKernel {
 public:
  InsertionKernel() {
    for (const unsigned long number : {1u, 2u, 3u, 4u, 5u, 8u, 10u, 11u, 12u, 16u})
      on(number, [](std::uint8_t*) { return 7u; });
  }

  /// Answers a count and a list of records with these.
  void list(unsigned long countNumber, std::size_t countAt, std::vector<Bytes> records) {
    records_ = std::move(records);
    on(countNumber, [this, countAt](std::uint8_t* body) {
      store(body + countAt, known.value_or(static_cast<std::uint32_t>(records_.size())));
      return 7u;
    });
    on(countNumber + 1, [this, countAt](std::uint8_t* body) {
      std::uint32_t room;
      std::uint64_t buffer;
      std::memcpy(&room, body + countAt + 4, sizeof room);
      std::memcpy(&buffer, body + countAt + 8, sizeof buffer);
      auto* at = reinterpret_cast<std::uint8_t*>(buffer);
      for (const Bytes& record : records_) {
        if (record.size() > room) break;
        std::memcpy(at, record.data(), record.size());
        at += record.size();
        room -= static_cast<std::uint32_t>(record.size());
      }
      store(body + countAt, returned.value_or(static_cast<std::uint32_t>(records_.size())));
      return 7u;
    });
  }

  // What is said instead of the truth.
  std::optional<std::uint32_t> known = {}, returned = {};

 private:
  static void store(std::uint8_t* to, std::uint32_t value) {
    std::memcpy(to, &value, sizeof value);
  }
  std::vector<Bytes> records_;
};

/// The body of the one request that these words send.
inline Bytes sent(unsigned long number, const Words& words,
                  const CommandResult& expected = kSilent) {
  const InsertionKernel kernel;
  EXPECT_EQ(runCommand(words), expected);
  if (kernel.requests().size() != 1) {
    ADD_FAILURE() << kernel.requests().size() << " requests";
    return Bytes(0);
  }
  EXPECT_EQ(kernel.requests()[0].number, number);
  EXPECT_EQ(kernel.requests()[0].status, 0u);
  return kernel.requests()[0].body;
}

/// Nothing is sent.
inline void expectRefused(const Words& words, const CommandResult& expected) {
  const InsertionKernel kernel;
  EXPECT_EQ(runCommand(words), expected);
  EXPECT_TRUE(kernel.requests().empty());
}

inline std::string usageOf(const std::string& word, bool dangerous = true) {
  return runCommand(dangerous ? Words{word, "-Override", "-h"} : Words{word, "-h"}).out;
}
