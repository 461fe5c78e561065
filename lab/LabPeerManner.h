// How a peer treats a program that connects to it, when faults are ordered.
#ifndef TARNLAB_PEER_MANNER_H
#define TARNLAB_PEER_MANNER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TarnLab {

/// What "tarnlab fault peer" can order. The numbers stand in the file of the faults.
enum class PeerFault : std::uint8_t {
  absent,
  refuse,
  close,
  cut,
  slow,
  bytes,
  length,
  unterminated,
  silent,
  endless
};

struct PeerFaultKind {
  enum class Value : std::uint8_t { none, bytes, milliseconds, length };
  PeerFault fault;
  std::string_view name;
  Value value = Value::none;
  const char* sentence;  // after the peer's name; a value stands in the place of %s
};

inline constexpr PeerFaultKind peerFaultKinds[] = {
    {PeerFault::absent, "absent", PeerFaultKind::Value::none, "is absent"},
    {PeerFault::refuse, "refuse", PeerFaultKind::Value::none, "refuses connections"},
    {PeerFault::close, "close", PeerFaultKind::Value::none, "closes before it has read anything"},
    {PeerFault::cut, "cut", PeerFaultKind::Value::bytes, "closes after %s bytes of its answer"},
    {PeerFault::slow, "slow", PeerFaultKind::Value::milliseconds,
     "waits %s ms before each piece of its answer"},
    {PeerFault::bytes, "bytes", PeerFaultKind::Value::none, "answers byte by byte"},
    {PeerFault::length, "length", PeerFaultKind::Value::length, "announces %s"},
    {PeerFault::unterminated, "unterminated", PeerFaultKind::Value::none,
     "sends its text without the NUL at the end"},
    {PeerFault::silent, "silent", PeerFaultKind::Value::none, "says nothing and stays connected"},
    {PeerFault::endless, "endless", PeerFaultKind::Value::none, "sends without end"},
};

/// The kind of a fault; null for a number that is none.
constexpr const PeerFaultKind* peerFaultKind(PeerFault fault) {
  for (const PeerFaultKind& kind : peerFaultKinds) {
    if (kind.fault == fault) return &kind;
  }
  return nullptr;
}

/// Whether a fault is one of announced lengths, which the host daemon's answers do not have.
constexpr bool isOfLengths(PeerFault fault) {
  return fault == PeerFault::length || fault == PeerFault::unterminated;
}

/// An announced length: a number, or so much more or less than there is.
struct PeerLength {
  static constexpr std::uint32_t exact = 0, more = 1, less = 2;
  std::uint32_t value = 0;
  std::uint32_t relation = exact;

  std::uint32_t of(std::size_t size) const {
    const auto there = static_cast<std::uint32_t>(size);
    return relation == exact ? value : relation == more ? there + value : there - value;
  }
};

/// The faults that struck one connection. Without any, the peer is there and answers as it should.
struct PeerManner {
  bool absent = false, refuses = false, closes = false, bytewise = false, unterminated = false,
       silent = false, endless = false;
  std::optional<std::uint32_t> cut;
  std::uint32_t slow = 0;  // milliseconds
  std::optional<PeerLength> length;
  std::string note;  // the faults in words, for the log
};

}  // namespace TarnLab

#endif
