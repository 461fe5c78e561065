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
#include <new>

namespace TarnFirewall {

/// A text, NUL-terminated.
struct FWParserText {
  const char* data;
  std::uint32_t length;
};

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
    // Not past the end of the block, whose size is a multiple of every alignment.
    static_assert(kBlockSize % alignof(std::max_align_t) == 0);
    const std::size_t start = (used_ + alignment - 1) & ~(alignment - 1);
    if (current_ == nullptr || size > kBlockSize - start) {
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

  /// A copy of `length` characters. Null without memory.
  const FWParserText* copy(const char* text, std::size_t length) {
    void* const room = allocate(sizeOfText(length), alignof(FWParserText));
    if (room == nullptr) return nullptr;
    char* const data = static_cast<char*>(room) + sizeof(FWParserText);
    std::memcpy(data, text, length);
    data[length] = '\0';
    return ::new (room) FWParserText{data, static_cast<std::uint32_t>(length)};
  }

  Mark mark() const { return {index_, used_}; }

  /// Frees everything that was allocated after the mark. The memory is kept for what comes next.
  void release(Mark mark);

  /// Frees a text of `copy` if nothing was allocated after it, and does nothing otherwise.
  void releaseLast(const FWParserText& text) {
    const std::size_t size = sizeOfText(text.length);
    const char* const begin = text.data - sizeof(FWParserText);
    if (current_ != nullptr && begin + size == current_->bytes + used_) {
      used_ -= static_cast<std::uint32_t>(size);
    }
  }

 private:
  /// Of a text with its characters after it, up to where the next one may begin.
  static constexpr std::size_t sizeOfText(std::size_t length) {
    constexpr std::size_t kMask = alignof(FWParserText) - 1;
    return (sizeof(FWParserText) + length + 1 + kMask) & ~kMask;
  }

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
