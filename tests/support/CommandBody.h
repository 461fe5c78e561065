#pragma once

/// The body of a command as a scripted kernel gets it, and over which it writes the reply. What
/// does not fit into it fails the test.

#include <cstddef>
#include <cstdint>
#include <string>

#include "FakeKernel.h"

struct CommandBody {
  std::uint8_t* at;
  std::size_t size;

  std::uint32_t word(std::size_t offset) const;

  /// The text of a field, up to its NUL.
  std::string text(std::size_t offset, std::size_t length) const;

  void put(std::size_t offset, const void* bytes, std::size_t count);
  void put(std::size_t offset, const Bytes& bytes) { put(offset, bytes.data(), bytes.size()); }
  void put32(std::size_t offset, std::uint32_t value) { put(offset, &value, sizeof value); }
  void put64(std::size_t offset, std::uint64_t value) { put(offset, &value, sizeof value); }
  void putText(std::size_t offset, const std::string& text) {
    put(offset, text.data(), text.size());
  }
};
