#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "TarnFWCmd.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// What the commands that create a set have in common: a head, then the set's entries, and a
/// transaction id in the reply. One message holds the whole set; nothing splits it.
class CTarnFWCreateCmd : public CTarnFWCmd {
 public:
  /// Where the head keeps its flags, and after them the transaction id.
  struct Layout {
    unsigned int head;
    std::size_t flags;
    std::size_t transaction;
  };

  /// Throws `CIntegerOverflowException` for a set that no message holds.
  unsigned int getMsgSize() const final;
  std::uint16_t getCommand() const final { return number_; }
  int getType() const override { return kCmdObjectType + number_; }
  bool writeCmdBody(void* body, unsigned int room, unsigned int* written, unsigned int arg) final;

  /// Keeps the transaction id, or clears it when the kernel leaves both flag bits set.
  void checkCmdReply(const void* reply, unsigned int size) final;

  const std::array<std::uint8_t, 16>& transactionID() const { return transaction_; }

 protected:
  /// The low two bits of the flags stand in every request; what they mean is the kernel's.
  static constexpr std::uint8_t kRequestFlags = 0x03;

  CTarnFWCreateCmd(const dvs_port_* port, std::uint16_t number, const Layout& layout)
      : CTarnFWCmd(port), layout_(layout), number_(number) {}

 private:
  bool writeBody(void* body, unsigned int room, unsigned int* written, bool fresh);
  bool writeFreshBody(void* body, unsigned int room, unsigned int* written) final;

  /// Bytes of the entries.
  virtual unsigned int entriesSize() const = 0;

  /// Writes the entries, every byte of them, into memory that may hold anything; `*written` bytes.
  virtual bool writeEntries(void* buffer, unsigned int room, unsigned int* written) = 0;

  /// The same into memory that is zero.
  virtual bool writeFreshEntries(void* buffer, unsigned int room, unsigned int* written) {
    return writeEntries(buffer, room, written);
  }

  /// Fills the zeroed head, in which the flags of a request are set already.
  virtual void fillHead(std::span<std::byte> head) const = 0;

  /// Called when the room is too small.
  virtual void refused(unsigned int room) const;

  Layout layout_;
  std::array<std::uint8_t, 16> transaction_{};
  std::uint16_t number_;
};

}  // namespace TarnFirewall
