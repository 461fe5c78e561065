#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Expect.h"
#include "TarnFWCmd.h"
#include "TarnFWIOChannel.h"
#include "TarnFWLibHandle.h"

/// A scripted kernel at the end of a generic IO channel: keeps every message that it gets and
/// answers each with the next prepared answer. Without one it answers status 0 and leaves the
/// bodies as they are.
class FakeKernel {
 public:
  struct Message {
    Bytes bytes{0};                               // header and body, as they were sent
    std::optional<TarnFirewall::dvs_port_> port;  // the selector beside the message, if any
    void* context = nullptr;

    /// Body of the only command in the message.
    Bytes body() const { return part(32, bytes.size() - 32); }
    Bytes envelope() const { return part(20, 12); }
    Bytes part(std::size_t offset, std::size_t size) const {
      Bytes copy(size);
      for (std::size_t i = 0; i < size; ++i) copy[i] = bytes[offset + i];
      return copy;
    }
  };

  FakeKernel();
  ~FakeKernel();
  FakeKernel(const FakeKernel&) = delete;
  FakeKernel& operator=(const FakeKernel&) = delete;

  TarnFirewall::CTarnFWLibHandle& library() { return *library_; }
  TarnFirewall::fwlibhandle_* handle() { return TarnFirewall::toLibHandle(library_.get()); }

  /// The next message is answered with this status in its first envelope and these bytes over the
  /// start of its first body.
  void answer(TarnFirewall::FWStatus_t status, const Bytes& reply = Bytes(0));

  /// The next message's request function ends with this result instead.
  void fail(TarnFirewall::FWStatus_t result);

  /// The next message is answered by this function, which gets the whole message.
  void answerWith(std::function<TarnFirewall::FWStatus_t(std::uint8_t* message, unsigned int)> f);

  /// Every message without a prepared answer is answered by this function.
  void answerAllWith(
      std::function<TarnFirewall::FWStatus_t(std::uint8_t* message, unsigned int)> f);

  const std::vector<Message>& messages() const { return messages_; }
  const Message& last() const { return messages_.back(); }

 private:
  friend struct FakeKernelIO;
  class Channel;

  TarnFirewall::FWStatus_t request(void* message, unsigned int size, void* context);

  std::unique_ptr<TarnFirewall::CTarnFWLibHandle> library_;
  std::deque<std::function<TarnFirewall::FWStatus_t(std::uint8_t*, unsigned int)>> answers_;
  std::function<TarnFirewall::FWStatus_t(std::uint8_t*, unsigned int)> otherwise_;
  std::vector<Message> messages_;
  std::optional<TarnFirewall::dvs_port_> port_;
};

/// Calls of `sleep` by the thread of the tests since the last `clear`, with the seconds asked for.
/// That thread never really sleeps in a test program with this support.
struct Sleeps {
  static const std::vector<unsigned int>& seen();
  static void clear();
};

/// Keeps what the library prints while it lives.
class Printed {
 public:
  Printed();
  ~Printed();
  Printed(const Printed&) = delete;
  Printed& operator=(const Printed&) = delete;

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

/// Request body of a command, written with exactly its room; empty when it refuses.
Bytes requestOf(TarnFirewall::CTarnFWCmd& command);

/// A selector by filter name.
TarnFirewall::dvs_port_ filterPort(const std::string& name);

/// Executes the command, gives its reply back and returns the status.
TarnFirewall::FWStatus_t executeOnce(FakeKernel& kernel, TarnFirewall::CTarnFWCmd& command);

/// What the command prints for a reply that starts with these bytes.
std::string printedFor(TarnFirewall::CTarnFWCmd& command, const Bytes& reply);

/// Replaces the only time in `text` by "TIME", and expects it to be that moment after the host's
/// boot, give or take the second in which the test runs.
std::string maskTime(std::string text, std::uint64_t bootSeconds);

/// Host-order words at an offset.
Bytes& put16(Bytes& bytes, std::size_t offset, std::uint16_t value);
Bytes& put32(Bytes& bytes, std::size_t offset, std::uint32_t value);
Bytes& put64(Bytes& bytes, std::size_t offset, std::uint64_t value);
