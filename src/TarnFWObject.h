#pragma once

#include <string>

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
  virtual void appendTo(std::string& text) const { text += toString(); }

 protected:
  ITarnFWObject() = default;
  ITarnFWObject(const ITarnFWObject&) = default;
  ITarnFWObject& operator=(const ITarnFWObject&) = default;
};

}  // namespace TarnFirewall
