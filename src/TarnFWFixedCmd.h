#pragma once

/// What commands have in common: the number, the size, the zeroing of the body, the size checks,
/// the bounded view of the reply, and when to print it. A concrete command fills its body and says
/// what it keeps and prints of its reply.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>

#include "TarnFWCmd.h"
#include "TarnFWCmdCatalogue.h"
#include "TarnFWLog.h"
#include "TarnFWSelector.h"

namespace TarnFirewall {

/// A command whose body size is known before it is sent.
class CTarnFWBodyCmd : public CTarnFWCmd {
 public:
  unsigned int getMsgSize() const final { return size_; }
  std::uint16_t getCommand() const final { return number_; }
  int getType() const override { return kCmdObjectType + number_; }

  /// Clears the body, then fills it.
  bool writeCmdBody(void* body, unsigned int room, unsigned int* written, unsigned int arg) final;

  bool writeFreshBody(void* body, unsigned int room, unsigned int* written) final;

  void checkCmdReply(const void* reply, unsigned int size) final;

 protected:
  CTarnFWBodyCmd(const dvs_port_* port, std::uint16_t number, unsigned int size)
      : CTarnFWCmd(port), size_(size), number_(number) {}

  /// For a command that is built in steps: what was added has changed its size.
  void setMsgSize(unsigned int size) { size_ = size; }

 private:
  /// Writes the request into a zeroed body of `getMsgSize()` bytes. Nothing by default.
  virtual void fill(std::span<std::byte> body) const;

  /// Keeps or logs what the reply says. Nothing by default.
  virtual void read(const CTarnFWCmdReply& reply);

  /// Shows the reply to the user, after `read`. Nothing by default: see `CTarnFWPrinted`.
  virtual void show(const CTarnFWCmdReply& reply) const;

  unsigned int size_;
  std::uint16_t number_;
};

/// True when the catalogue has a class with this body for the number.
constexpr bool hasCmdForm(std::uint16_t number, std::uint32_t body) {
  for (const FWCmdForm_& form : kCmdCatalogue[number].forms) {
    if (form.className != nullptr && form.body == body) return true;
  }
  return false;
}

/// A command of fixed size.
template <std::uint16_t Number, unsigned int Size>
class CTarnFWFixedCmd : public CTarnFWBodyCmd {
  static_assert(Number < kCmdCount && hasCmdForm(Number, Size));

 protected:
  explicit CTarnFWFixedCmd(const dvs_port_* port) : CTarnFWBodyCmd(port, Number, Size) {}
};

/// A command whose arguments decide its size.
template <std::uint16_t Number>
class CTarnFWSizedCmd : public CTarnFWBodyCmd {
  static_assert(Number < kCmdCount && hasCmdForm(Number, kVaries));

 protected:
  CTarnFWSizedCmd(const dvs_port_* port, unsigned int size) : CTarnFWBodyCmd(port, Number, size) {}
};

/// Adds to a command that its reply is printed:
///
///     class CTarnFWCmdGetRuleSetCount final : public CTarnFWPrinted<CTarnFWFixedCmd<1, 4>> {
///      public:
///       explicit CTarnFWCmdGetRuleSetCount(const dvs_port_* port) : CTarnFWPrinted(port) {}
///       ...
///      private:
///       void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;
///     };
///
/// The printer's lock is held for the whole of `print`, so that the replies of two threads do not
/// mix. A command that prints nothing never waits for it.
template <typename Base>
class CTarnFWPrinted : public Base {
 protected:
  using Base::Base;

 private:
  /// Prints what the reply says. Called only when there is a printer.
  virtual void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const = 0;

  void show(const CTarnFWCmdReply& reply) const final {
    if (!hasPrinter()) return;
    if (const PrettyPrinting out; out) print(reply, out);
  }
};

/// Stores a record in a body. A record that does not fit throws `CInsufficientMsgBufException`.
template <typename Record>
void storeAt(std::span<std::byte> body, std::size_t offset, const Record& record) {
  if (offset > body.size() || sizeof(Record) > body.size() - offset) {
    throw CInsufficientMsgBufException(static_cast<unsigned int>(offset + sizeof(Record)),
                                       static_cast<unsigned int>(body.size()));
  }
  storeRecord(body.data() + offset, record);
}

/// `head + count * each` as a message size; more than 32 bits throw `CIntegerOverflowException`
/// with `text` and the count.
unsigned int countedSize(unsigned int head, std::uint64_t each, unsigned int count,
                         const char* text);

/// Adds to a command a name that stands at offset 0 of the body, copied as it is.
template <typename Base, typename Name>
class CTarnFWNamed : public Base {
 public:
  /// The name up to its NUL or its field's end.
  std::string name() const { return fieldText(name_.text); }

 protected:
  template <typename... Arguments>
  CTarnFWNamed(const dvs_port_* port, const Name& name, Arguments... arguments)
      : Base(port, arguments...), name_(name) {}

  /// "WORDS NAME" and the selector, as the statement reads.
  std::string statement(const char* words) const {
    return std::string(words) + ' ' + name() + this->dvsportToString("of");
  }

  void fill(std::span<std::byte> body) const override { storeAt(body, 0, name_); }

 private:
  Name name_;
};

template <std::uint16_t Number, unsigned int Size>
using CTarnFWRuleSetNameCmd = CTarnFWNamed<CTarnFWFixedCmd<Number, Size>, FWRuleSetID_t>;

template <std::uint16_t Number, unsigned int Size>
using CTarnFWAddrSetNameCmd = CTarnFWNamed<CTarnFWFixedCmd<Number, Size>, FWAddrSetID_t>;

}  // namespace TarnFirewall
