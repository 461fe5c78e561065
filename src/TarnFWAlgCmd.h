#pragma once

/// The commands on application-level gateways: for gateways and for the ports that they opened, one
/// asks how many there are, and one fetches them.

#include <algorithm>

#include "TarnFWAlgRecords.h"
#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

inline constexpr std::uint16_t kAlgCommand = 47;
inline constexpr std::uint16_t kAlgPortCommand = 48;

template <std::uint16_t Number>
void printAlgCount(const CTarnFWCmdReply& reply, const PrettyPrinting& out) {
  static_assert(Number == kAlgCommand || Number == kAlgPortCommand);
  const int count = static_cast<int>(reply.word(4));
  if constexpr (Number == kAlgCommand) {
    out.print(out.context, "alg count : %d\n", count);
  } else {
    out.print(out.context, "alg port count : %d\n", count);
  }
}

/// Asks how many records there are, and how large one of them is.
template <std::uint16_t Number>
class CTarnFWAlgCountCmd : public CTarnFWPrinted<CTarnFWFixedCmd<Number, 8>> {
 public:
  static std::uint32_t size(const CTarnFWCmdReply& reply) { return reply.word(0); }
  static std::uint32_t count(const CTarnFWCmdReply& reply) { return reply.word(4); }

 protected:
  using CTarnFWPrinted<CTarnFWFixedCmd<Number, 8>>::CTarnFWPrinted;

 private:
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    printAlgCount<Number>(reply, out);
  }
};

/// Fetches records into `size` bytes.
template <std::uint16_t Number, typename Record>
class CTarnFWAlgListCmd : public CTarnFWPrinted<CTarnFWSizedCmd<Number>> {
 public:
  /// As many as were asked for and have room at most.
  CTarnFWReplyRecords<Record> records(const CTarnFWCmdReply& reply) const {
    const auto room = static_cast<unsigned int>(size_ / sizeof(Record));
    return reply.records<Record>(kHead, reply.word(4), std::min(count_, room));
  }

 protected:
  CTarnFWAlgListCmd(const dvs_port_* port, unsigned int size, unsigned int count)
      : CTarnFWPrinted<CTarnFWSizedCmd<Number>>(
            port, countedSize(kHead, 1, size, "number of bytes for algs")),
        size_(size),
        count_(count) {}

 private:
  static constexpr unsigned int kHead = 8;

  void fill(std::span<std::byte> body) const override {
    storeAt(body, 0, host32(size_));
    storeAt(body, 4, host32(count_));
  }
  void read(const CTarnFWCmdReply& reply) override { (void)records(reply).checkedSize(); }
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override {
    printAlgCount<Number>(reply, out);
  }

  unsigned int size_;
  unsigned int count_;
};

}  // namespace TarnFirewall
