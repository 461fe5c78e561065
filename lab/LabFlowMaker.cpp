// Makes the flows of a fresh host. Every form that a flow can have occurs among the first few
// hundred of them.
#include "LabFlowFile.h"

namespace TarnLab {

namespace {

using namespace FlowRecord;

/// What one flow is like. On layer 2 the port is the ethertype.
struct Form {
  unsigned kind = active;
  unsigned protocol = 0;
  unsigned family = ipv4;
  unsigned port = 0;
  bool translated = false;
  unsigned algType = 0;
  unsigned algFlowType = 0;
};

constexpr unsigned algControl = 1, algData = 2;
constexpr unsigned newerKind = 6, newerFamily = 7, hostFamily6 = 10, newerFlowType = 3;

struct Forms {
  std::array<Form, 160> list{};
  std::size_t count = 0;
  std::size_t usual = 0;  // the others are what a newer kernel may have; they occur once

  constexpr void add(const Form& form) { list.at(count++) = form; }
};

constexpr Form plainForms[] = {
    {.protocol = tcp, .port = 443},
    {.protocol = udp, .port = 53},
    {.protocol = icmp},
    {.protocol = icmp6, .family = ipv6},
    {.protocol = tcp, .family = ipv6, .port = 22},
    {.protocol = udp, .family = ipv6, .port = 123},
    {.protocol = 0},
    {.protocol = 41, .family = ipv6},
    {.protocol = 47},
    {.protocol = 50, .family = ipv6},
    {.protocol = 200},
    {.protocol = 201, .family = ipv6},
};

/// A control flow and the data flow that it led to stand next to each other.
constexpr Form algForms[] = {
    {.protocol = tcp, .port = 21, .algType = 1},   {.protocol = tcp, .port = 1521, .algType = 2},
    {.protocol = tcp, .port = 111, .algType = 3},  {.protocol = tcp, .port = 135, .algType = 4},
    {.protocol = tcp, .port = 6969, .algType = 5}, {.protocol = tcp, .port = 2000, .algType = 0},
    {.protocol = tcp, .port = 5060, .algType = 7}, {.protocol = udp, .port = 69, .algType = 5},
    {.protocol = udp, .port = 111, .algType = 3},
};

constexpr Forms makeForms() {
  Forms forms;
  for (Form form : plainForms) {
    for (const bool translated : {false, true}) {
      form.translated = translated;
      for (const unsigned kind : {active, inactive, drop}) {
        form.kind = kind;
        forms.add(form);
      }
    }
  }
  for (const unsigned ethertype : {0x0806u, 0x88ccu, 0x888eu, 0x8847u}) {
    forms.add({.kind = layer2Pass, .family = 0, .port = ethertype});
    forms.add({.kind = layer2Drop, .family = 0, .port = ethertype + 1});
  }
  for (const unsigned port : {80u, 25u, 3306u, 18080u}) forms.add({.protocol = tcp, .port = port});
  for (Form form : algForms) {
    for (const unsigned family : {ipv4, ipv6}) {
      form.family = family;
      for (const unsigned flowType : {algControl, algData}) {
        form.algFlowType = flowType;
        forms.add(form);
      }
    }
  }
  forms.usual = forms.count;
  forms.add({.protocol = tcp, .port = 5061, .algType = 6, .algFlowType = newerFlowType});
  forms.add({.kind = newerKind, .protocol = tcp, .port = 8080});
  forms.add({.protocol = tcp, .family = hostFamily6, .port = 993});
  forms.add({.protocol = udp, .family = newerFamily, .port = 514});
  forms.add({.kind = inactive, .protocol = 47, .family = newerFamily});
  return forms;
}

constexpr Forms forms = makeForms();

const Form& formOf(std::uint32_t number) {
  return forms.list[number < forms.count ? number : (number - forms.count) % forms.usual];
}

// States of both sides of a TCP connection; 12 and above are of a newer kernel.
using States = std::array<std::uint16_t, 2>;
constexpr std::uint16_t established = 4, timeWait = 10;
constexpr States activeStates[] = {{4, 4}, {2, 0}, {2, 1}, {1, 2},   {3, 2}, {4, 3},
                                   {5, 6}, {6, 5}, {7, 8}, {12, 13}, {8, 7}};
constexpr States inactiveStates[] = {{10, 9}, {9, 10}, {0, 0}, {10, 0}, {0, 10}};
constexpr States dropStates[] = {{2, 0}, {0, 2}, {1, 0}};

template <std::size_t count>
constexpr const States& pick(const States (&states)[count], std::uint32_t number) {
  return states[(number + number / count) % count];
}

States statesOf(unsigned of, std::uint32_t number) {
  if (of == active) return pick(activeStates, number);
  return of == drop ? pick(dropStates, number) : pick(inactiveStates, number);
}

bool isEstablished(std::uint16_t state) { return state >= established && state <= timeWait; }

/// The maker of one record: the fields agree with each other, and no two of them are alike.
class Maker {
 public:
  Maker(Bytes record, std::size_t filter, std::uint32_t number)
      : record_(record),
        form_(formOf(number)),
        filter_(static_cast<std::uint32_t>(filter)),
        number_(number),
        // The peer of a data flow is that of its control flow.
        peer_(form_.algFlowType == algData && number > 0 ? number - 1 : number),
        // Most flows have a direction.
        direction_(peer_ % 7 == 6 ? 0 : 1 + peer_ % 2) {}

  void make() {
    length.put(record_, size);
    id.put(record_, FlowNumber::toId(filter_, number_));
    kind.put(record_, static_cast<std::uint8_t>(form_.kind));
    protocol.put(record_, static_cast<std::uint8_t>(form_.protocol));
    family.put(record_, static_cast<std::uint8_t>(form_.family));
    direction.put(record_, static_cast<std::uint8_t>(direction_));
    putTimes();
    putMacs();
    putCounters();
    putStates();
    if (form_.family == 0) {
      ethertype.put(record_, static_cast<std::uint16_t>(form_.port));
      return;
    }
    ethertype.put(record_, form_.family == ipv4 ? 0x0800 : 0x86dd);
    if (form_.family == newerFamily) {
      shape6.controlId.put(record_, 0x7e570000u + number_);
      return;
    }
    putAddresses();
    putProtocol();
  }

 private:
  const Shape& shape() const { return shapeOf(record_); }
  bool isTcp() const { return form_.protocol == tcp; }
  bool outward() const { return direction_ == out; }

  /// From Monday, 5 January 2026, 8:00 UTC on, three seconds apart.
  void putTimes() {
    const std::uint32_t began = 1767600000 + 3 * number_;
    const std::uint32_t lasted = form_.kind == active                   ? 60 + number_ % 3600
                                 : groupOfKind(form_.kind) == dropGroup ? 1 + number_ % 5
                                                                        : 30 + number_ % 900;
    start.put(record_, began);
    FlowRecord::end.put(record_, began + lasted);
  }

  void putMacs() {
    std::byte own[6] = {};
    std::byte other[6] = {};
    put32(own, 0, 0x99565000);  // 00:50:56:99
    put8(own, 4, static_cast<std::uint8_t>(filter_ >> 8));
    put8(own, 5, static_cast<std::uint8_t>(filter_ + 0x2a));
    put16(other, 0, 0x1402);  // 02:14
    put8(other, 2, 0x7a);
    for (std::size_t i = 0; i < 3; ++i) {
      put8(other, 3 + i, static_cast<std::uint8_t>(peer_ >> (16 - 8 * i)));
    }
    sourceMac.put(record_, outward() ? own : other);
    destinationMac.put(record_, outward() ? other : own);
  }

  /// Some packets are dropped before they are counted.
  void putCounters() {
    if (form_.kind == drop && number_ % 16 == 2) return;
    const std::uint64_t load = number_ % 1000 + 1;
    packetsIn.put(record_, load * 31);
    packetsOut.put(record_, load * 27);
    bytesIn.put(record_, load * 31 * 640);
    bytesOut.put(record_, load * 27 * 410);
  }

  /// The pair of states is 20 and 40 above the TCP states. A flow without them is established when
  /// there was an answer.
  void putStates() {
    const States tcpStates = statesOf(form_.kind, number_);
    const States states =
        isTcp() ? tcpStates
                : States{static_cast<std::uint16_t>(1 + number_ % 2),
                         static_cast<std::uint16_t>(number_ % 4 == 0 ? 0 : 2 + number_ % 3)};
    const bool open = isTcp() ? isEstablished(states[0]) && isEstablished(states[1])
                              : states[1] != 0 && form_.kind != drop;
    const bool blocked = groupOfKind(form_.kind) == dropGroup || number_ / 5 % 3 == 2;
    firstState.put(record_, static_cast<std::uint8_t>(20 + states[0]));
    secondState.put(record_, static_cast<std::uint8_t>(40 + states[1]));
    flags.put(record_, static_cast<std::uint8_t>((blocked ? flagBlocked : 0) |
                                                 (number_ / 2 % 3 == 1 ? flagS : 0) |
                                                 (open ? flagEstablished : 0)));
    if (!isTcp() || form_.family == newerFamily) return;
    shape().sourceState.put(record_, states[0]);
    shape().destinationState.put(record_, states[1]);
  }

  ByteVector address(std::uint32_t ipv4Address, std::uint16_t net, std::uint32_t host) const {
    ByteVector bytes(shape().source.size);
    const Net32 low{static_cast<std::uint32_t>(bytes.size() - 4), "address"};
    low.put(Bytes(bytes), bytes.size() == 4 ? ipv4Address + host : host);
    if (bytes.size() == 4) return bytes;
    Net32{0, "prefix"}.put(Bytes(bytes), 0x20010db8);
    Net16{4, "net"}.put(Bytes(bytes), net);
    return bytes;
  }

  void putAddresses() {
    const ByteVector own = address(0x0a140100, 0x14, 40 + filter_);  // 10.20.1.40, 2001:db8:14::
    const ByteVector other = address(0x0a1f0000, 0x31, peer_ + 1);   // 10.31.0.1, 2001:db8:31::1
    shape().source.put(record_, outward() ? own : other);
    shape().destination.put(record_, outward() ? other : own);
    if (form_.translated) {  // 198.18.0.1, 2001:db8:64::1
      shape().translated.put(record_, address(0xc6120000, 0x64, number_ % 0x1ffff + 1));
    }
  }

  void putProtocol() {
    if (form_.protocol == icmp || form_.protocol == icmp6) {
      static constexpr std::array<std::uint8_t, 2> messages[2][4] = {
          {{8, 0}, {0, 1}, {3, 13}, {11, 2}}, {{128, 0}, {129, 1}, {1, 4}, {135, 2}}};
      const auto& [type, code] = messages[form_.protocol == icmp ? 0 : 1][number_ / 3 % 4];
      shape().icmpType.put(record_, type);
      shape().icmpCode.put(record_, code);
    }
    if (form_.protocol != tcp && form_.protocol != udp) return;
    const bool data = form_.algFlowType == algData;
    shape().sourcePort.put(record_, static_cast<std::uint16_t>(49152 + number_ % 16000));
    shape().destinationPort.put(record_, data ? dataPort() : serverPort());
    if (form_.translated) {
      shape().translatedPort.put(record_, static_cast<std::uint16_t>(1080 + number_ % 12000));
    }
    if (form_.algFlowType != 0) {
      shape().algType.put(record_, static_cast<std::uint8_t>(form_.algType));
      shape().algFlowType.put(record_, static_cast<std::uint8_t>(form_.algFlowType));
      // A control flow has the port of its data, a data flow the port of its control.
      shape().algPort.put(record_, data ? serverPort() : dataPort());
      if (data) shape().controlId.put(record_, FlowNumber::toId(filter_, peer_));
    }
    if (!isTcp()) return;
    shape().segment.put(record_, static_cast<std::uint16_t>(536 + number_ % 924));
    shape().roundTrip.put(record_, 150000 + number_ % 50000);
    shape().firstRetries.put(record_, 60 + number_ % 17);
    shape().secondRetries.put(record_, 80 + number_ % 19);
  }

  std::uint16_t serverPort() const { return static_cast<std::uint16_t>(form_.port); }
  std::uint16_t dataPort() const { return static_cast<std::uint16_t>(30000 + peer_ % 9000); }

  Bytes record_;
  const Form& form_;
  std::uint32_t filter_;
  std::uint32_t number_;
  std::uint32_t peer_;
  unsigned direction_;
};

}  // namespace

FlowGroups makeFlows(std::size_t filter, std::uint32_t count) {
  FlowGroups groups;
  for (std::uint32_t number = 0; number < count; ++number) {
    ByteVector& group = groups[groupOfKind(formOf(number).kind)];
    group.resize(group.size() + size);
    Maker(Bytes(group).last(size), filter, number).make();
  }
  return groups;
}

}  // namespace TarnLab
