#pragma once

#include "TarnFWFixedCmd.h"

namespace TarnFirewall {

/// A command whose body is one record: it is sent as it was given, and a kernel that answers writes
/// its own over it.
template <std::uint16_t Number, typename Record>
class CTarnFWRecordCmd : public CTarnFWFixedCmd<Number, sizeof(Record)> {
 public:
  static Record answer(const CTarnFWCmdReply& reply) { return reply.record<Record>(0); }

 protected:
  CTarnFWRecordCmd(const dvs_port_* port, const Record& record)
      : CTarnFWFixedCmd<Number, sizeof(Record)>(port), record_(record) {}

  const Record& record() const { return record_; }

 private:
  void fill(std::span<std::byte> body) const final { storeAt(body, 0, record_); }

  Record record_;
};

/// A command whose body is one 32-bit number.
template <std::uint16_t Number>
using CTarnFWWordCmd = CTarnFWRecordCmd<Number, host32>;

}  // namespace TarnFirewall
