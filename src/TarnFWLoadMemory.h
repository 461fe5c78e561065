#pragma once

/// Memory of what a load makes: the rules of a configuration, their parts, the addresses of its
/// sets.
///
/// They are made one after the other by the hundred thousand and freed together, with the
/// configuration. So they stand side by side in large blocks, which are freed as a whole: an object
/// costs neither a call of the allocator nor the allocator's own bytes around it. Each load has its
/// memory, so that nothing is shared between threads. Under a sanitizer each object is an
/// allocation of its own, so that the sanitizer sees it.
///
/// The few objects of a rule whose text is made have such a memory too: it begins on the stack.

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <span>
#include <type_traits>
#include <utility>

#include "TarnFWLoadValue.h"
#include "TarnFWObject.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TARNFW_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define TARNFW_SANITIZED 1
#endif
#endif

namespace TarnFirewall {

class CTarnFWLoadMemory {
 public:
  CTarnFWLoadMemory() = default;
  /// Takes these bytes, which are aligned as a pointer is and outlive it, before it gets blocks.
  explicit CTarnFWLoadMemory(std::span<std::byte> first)
      : next_(first.data()), end_(first.data() + first.size()) {}
  CTarnFWLoadMemory(const CTarnFWLoadMemory&) = delete;
  CTarnFWLoadMemory& operator=(const CTarnFWLoadMemory&) = delete;

  /// Makes an object, which must be gone before this memory is. Throws what its constructor throws,
  /// and `std::bad_alloc`.
  template <typename Object, typename... Arguments>
  std::unique_ptr<Object> make(Arguments&&... arguments) {
    static_assert(std::is_base_of_v<ITarnFWObject, Object> ||
                  std::is_base_of_v<CTarnFWLoadValue<Object>, Object>);
#ifdef TARNFW_SANITIZED
    return std::make_unique<Object>(std::forward<Arguments>(arguments)...);
#else
    static_assert(alignof(Object) == alignof(void*) && sizeof(Object) <= kSlice);
    std::unique_ptr<Object> object(::new (take(sizeof(Object)))
                                       Object(std::forward<Arguments>(arguments)...));
    object->ownsMemory_ = false;
    return object;
#endif
  }

 private:
  static constexpr std::size_t kSlice = 16384;

  /// The next bytes of the slice of a block. To ask `blocks_` for each object takes three times as
  /// many instructions, since it aligns every piece anew.
  void* take(std::size_t size) {
    if (static_cast<std::size_t>(end_ - next_) < size) [[unlikely]] {
      next_ = static_cast<std::byte*>(blocks_.allocate(kSlice, alignof(void*)));
      end_ = next_ + kSlice;
    }
    return std::exchange(next_, next_ + size);
  }

  std::pmr::monotonic_buffer_resource blocks_;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
};

/// Makes an object in a memory, or where that is null as an allocation of its own.
template <typename Object, typename... Arguments>
std::unique_ptr<Object> makeIn(CTarnFWLoadMemory* memory, Arguments&&... arguments) {
  return memory != nullptr ? memory->make<Object>(std::forward<Arguments>(arguments)...)
                           : std::make_unique<Object>(std::forward<Arguments>(arguments)...);
}

}  // namespace TarnFirewall
