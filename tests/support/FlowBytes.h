#pragma once

/// Records of flows, written byte by byte from the kernel's layout.

#include "FakeKernel.h"

/// 2023-11-14 22:13:20 and 22:14:20 UTC.
inline constexpr std::uint32_t kFlowStart = 1700000000;
inline constexpr std::uint32_t kFlowEnd = 1700000060;

/// A flow without addresses, 251 bytes. All its numbers differ.
inline Bytes flowBytes(int kind, int protocol, int family) {
  Bytes flow(251);
  put16(flow, 0, 251);
  flow.at(3, {1, 2, 3, 4, 5, 6, 7, 8});  // flow id
  put32(flow, 79, kFlowStart);
  put32(flow, 83, kFlowEnd);
  flow.at(87, {kind});
  flow.at(89, {protocol, family});
  flow.at(91, {0x08, 0x00});  // ethertype
  flow.at(93, {0x02, 0, 0, 0, 0, 0x0a});
  flow.at(99, {0x02, 0, 0, 0, 0, 0x0b});
  put64(flow, 105, 33);  // printed third
  put64(flow, 113, 44);  // fourth
  put64(flow, 121, 11);  // first
  put64(flow, 129, 22);  // second
  put32(flow, 137, 1003);
  flow.at(141, {1});     // in
  flow.at(142, {4, 5});  // states
  return flow;
}

/// Ports 1024 and 443 at an offset, and what follows them.
inline Bytes& putTransport(Bytes& flow, std::size_t at) {
  flow.at(at, {0x04, 0x00, 0x01, 0xbb});
  put16(flow, at + 6, 7);  // number after the ports
  put16(flow, at + 8, 4);
  put16(flow, at + 10, 10);
  put32(flow, at + 14, 120);
  put32(flow, at + 18, 5);
  return put32(flow, at + 22, 6);
}

/// One from 10.0.0.1:1024 to 10.0.0.2:443.
inline Bytes ipv4Flow(int protocol, int kind = 1) {
  Bytes flow = flowBytes(kind, protocol, 2);
  flow.at(145, {10, 0, 0, 1, 10, 0, 0, 2});
  return putTransport(flow, 173);
}

/// One from 2001:db8::1 port 1024 to 2001:db8::2 port 443.
inline Bytes ipv6Flow(int protocol, int kind = 1) {
  Bytes flow = flowBytes(kind, protocol, 28);
  flow.at(91, {0x86, 0xdd});
  flow.at(145, {0x20, 0x01, 0x0d, 0xb8}).at(160, {1});
  flow.at(161, {0x20, 0x01, 0x0d, 0xb8}).at(176, {2});
  return putTransport(flow, 225);
}

/// Where the data of application layer gateways stand, by family.
inline constexpr std::size_t kIPv4Alg = 157;
inline constexpr std::size_t kIPv6Alg = 209;

/// Writes them: flow type 1 control, 2 data; type 1 FTP; the control flow's id is
/// 0x1122334455667788.
inline Bytes& putAlg(Bytes& flow, std::size_t offset, int type, int flowType, int port) {
  flow.at(offset, {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88});
  return flow.at(offset + 8, {type, flowType, port >> 8, port & 0xff});
}
