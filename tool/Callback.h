#pragma once

/// A function that a handler hands over: a lambda, kept in place.

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

template <typename Signature>
class Callback;

/// Holds a lambda without allocating, so that a command has no other ends when memory is short. The
/// lambda may capture eight references or pointers; a handler that needs more of them puts its
/// options into a struct.
template <typename... Args>
class Callback<int(Args...)> {
 public:
  Callback() = default;
  Callback(std::nullptr_t) {}  // NOLINT(google-explicit-constructor): reads like none

  template <typename F>
  requires(!std::is_same_v<F, Callback> && std::is_invocable_r_v<int, const F&, Args...>)
      Callback(F function) {  // NOLINT(google-explicit-constructor): reads like the lambda
    static_assert(sizeof(F) <= sizeof room_, "too much is captured");
    static_assert(alignof(F) <= alignof(void*) && std::is_trivially_copyable_v<F>);
    ::new (static_cast<void*>(room_)) F(function);
    call_ = [](const void* at, Args... args) -> int {
      return (*static_cast<const F*>(at))(std::forward<Args>(args)...);
    };
  }

  explicit operator bool() const { return call_ != nullptr; }
  int operator()(Args... args) const { return call_(room_, std::forward<Args>(args)...); }

 private:
  alignas(void*) std::byte room_[8 * sizeof(void*)]{};
  int (*call_)(const void* at, Args... args) = nullptr;
};
