#pragma once

#include <new>
#include <type_traits>

namespace TarnFirewall {

/// Base of a class without virtual functions, `Kind`, whose objects the memory of a load can hold.
/// They end as an `ITarnFWObject` does, but have no table of functions, which costs each start of
/// the program.
template <typename Kind>
class CTarnFWLoadValue {
 public:
  /// What `delete` does: ends the value, and frees its memory unless that is a load's.
  static void operator delete(CTarnFWLoadValue* value, std::destroying_delete_t) {
    static_assert(!std::is_polymorphic_v<Kind>);
    Kind* const whole = static_cast<Kind*>(value);
    const bool owned = value->ownsMemory_;
    whole->~Kind();
    if (owned) ::operator delete(static_cast<void*>(whole));
  }
  /// Of a value whose constructor has thrown. Inlined for the compiler, as that of `ITarnFWObject`.
  [[gnu::always_inline]] static void operator delete(void* memory) { ::operator delete(memory); }

 protected:
  CTarnFWLoadValue() = default;
  CTarnFWLoadValue(const CTarnFWLoadValue&) {}
  CTarnFWLoadValue& operator=(const CTarnFWLoadValue&) { return *this; }

 private:
  friend class CTarnFWLoadMemory;

  bool ownsMemory_ = true;  // of each value alone: a copy has memory of its own
};

}  // namespace TarnFirewall
