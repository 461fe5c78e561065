#pragma once

/// Short-lived memory of one parse: the texts of tokens and the plain values that are too large for
/// the parser's value stack. Freed from its end, or all at once; nothing in it has a destructor.
///
/// A token's text lives here instead of in an allocation of its own, so that a rule of a large
/// configuration costs no call of the allocator for its words. Marks are taken where a rule begins
/// and released where it ends; everything goes at the end of a statement.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace TarnFirewall {

class CTarnFWParserArena {
 public:
  /// A place in the arena. The zero mark is its beginning.
  struct Mark {
    std::uint32_t block;
    std::uint32_t used;
  };

  static constexpr std::size_t kBlockSize = 8192;

  CTarnFWParserArena() = default;
  ~CTarnFWParserArena();
  CTarnFWParserArena(const CTarnFWParserArena&) = delete;
  CTarnFWParserArena& operator=(const CTarnFWParserArena&) = delete;

  /// Room for `size` bytes, at most `kBlockSize`, at an address of `alignment`, a power of two up
  /// to that of `std::max_align_t`. Null without memory.
  void* allocate(std::size_t size, std::size_t alignment = 1) {
    const std::size_t start = (used_ + alignment - 1) & ~(alignment - 1);
    if (current_ == nullptr || start > kBlockSize || size > kBlockSize - start) {
      return allocateFromNextBlock(size);
    }
    used_ = static_cast<std::uint32_t>(start + size);
    return current_->bytes + start;
  }

  /// Room for one plain value, aligned for it. Null without memory.
  template <typename Value>
  void* allocateFor() {
    return allocate(sizeof(Value), alignof(Value));
  }

  /// A copy of `length` characters with a NUL after them. Null without memory.
  const char* copy(const char* text, std::size_t length) {
    auto* room = static_cast<char*>(allocate(length + 1));
    if (room == nullptr) return nullptr;
    std::memcpy(room, text, length);
    room[length] = '\0';
    return room;
  }

  Mark mark() const { return {index_, used_}; }

  /// Frees everything that was allocated after the mark. The memory is kept for what comes next.
  void release(Mark mark);

  /// Frees a text of `copy` if nothing was allocated after it, and does nothing otherwise.
  void releaseLast(const char* text, std::size_t length) {
    if (current_ != nullptr && text + length + 1 == current_->bytes + used_) {
      used_ -= static_cast<std::uint32_t>(length + 1);
    }
  }

 private:
  struct Block {
    Block* next;
    alignas(std::max_align_t) char bytes[kBlockSize];
  };

  void* allocateFromNextBlock(std::size_t size);

  Block* first_ = nullptr;
  Block* current_ = nullptr;
  std::uint32_t index_ = 0;  // of the current block
  std::uint32_t used_ = 0;   // bytes of the current block
};

}  // namespace TarnFirewall
