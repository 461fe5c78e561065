#pragma once

#include <new>
#include <string>

#include "TarnFWText.h"

namespace TarnFirewall {

/// Root of everything that has a text form and a wire form.
class ITarnFWObject {
 public:
  /// Bytes that the object needs in a message.
  virtual unsigned int getMsgSize() const = 0;

  /// Code of the object's kind, in the one number space that addresses, rules and commands share.
  virtual int getType() const = 0;

  /// Text in the configuration language.
  virtual std::string toString() const = 0;

  /// Writes the wire form. False, with nothing written, when `size` is under `getMsgSize()`.
  /// `written` receives the bytes written.
  virtual bool toMessage(void* buffer, unsigned int size, unsigned int* written) = 0;

  virtual ~ITarnFWObject() = default;

  /// Appends the text form. An object whose text stands inside another's (an address in a rule)
  /// overrides this and makes `toString()` from it, so that the whole is built in one string.
  virtual void appendTo(CTarnFWText& text) const { text += toString(); }

  /// What `delete` does: ends the object, and frees its memory unless that is a load's, which is
  /// freed as a whole.
  static void operator delete(ITarnFWObject* object, std::destroying_delete_t) {
    const bool owned = object->ownsMemory_;
    object->~ITarnFWObject();
    if (owned) ::operator delete(static_cast<void*>(object));
  }
  /// Of an object whose constructor has thrown. Inlined, since the compiler warns of what it takes
  /// for an operator of another kind.
  [[gnu::always_inline]] static void operator delete(void* memory) { ::operator delete(memory); }

 protected:
  ITarnFWObject() = default;
  ITarnFWObject(const ITarnFWObject&) {}
  ITarnFWObject& operator=(const ITarnFWObject&) { return *this; }

 private:
  friend class CTarnFWLoadMemory;

  bool ownsMemory_ = true;  // of each object alone: a copy has memory of its own
};

}  // namespace TarnFirewall
