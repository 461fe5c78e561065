#pragma once

/// The message that every exchange with the kernel firewall is, and the owner of its memory.

#include <cstddef>
#include <cstdlib>
#include <utility>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// Header in front of every message. Integers in host order.
struct tarn_msg_hdr_ {
  char signature[4];         //  +0  "TARN"
  host32 bodyLength;         //  +4  bytes after the header: the sum of the commands' sizes
  host32 sequence;           //  +8  the owner's counter when the buffer was obtained
  std::uint8_t major;        // +12  always 1
  std::uint8_t minor;        // +13  1; not looked at in a reply
  std::uint8_t type;         // +14  0 request, 1 response
  std::uint8_t category;     // +15  1 firewall
  host16 commandCount;       // +16  commands in the body
  std::uint8_t reserved[2];  // +18  0
};
static_assert(sizeof(tarn_msg_hdr_) == 20 && alignof(tarn_msg_hdr_) == 1);
static_assert(offsetof(tarn_msg_hdr_, bodyLength) == 4 && offsetof(tarn_msg_hdr_, sequence) == 8 &&
              offsetof(tarn_msg_hdr_, major) == 12 && offsetof(tarn_msg_hdr_, minor) == 13 &&
              offsetof(tarn_msg_hdr_, type) == 14 && offsetof(tarn_msg_hdr_, category) == 15 &&
              offsetof(tarn_msg_hdr_, commandCount) == 16 &&
              offsetof(tarn_msg_hdr_, reserved) == 18);

inline constexpr unsigned int kMsgHeaderSize = sizeof(tarn_msg_hdr_);
inline constexpr char kMsgSignature[4] = {'T', 'A', 'R', 'N'};

/// Zeroed bytes that every buffer owns after its body. The socket channel sends 20 bytes more than
/// the message takes; they come from here.
inline constexpr std::size_t kMsgSlack = 20;

/// Memory that messages are built in one after the other: a sender of many keeps it between them,
/// so that a large message does not get fresh pages each time. It is free while no message is in
/// it.
class CTarnFWMessageMemory {
 public:
  CTarnFWMessageMemory() = default;
  ~CTarnFWMessageMemory() { std::free(block_); }
  CTarnFWMessageMemory(const CTarnFWMessageMemory&) = delete;
  CTarnFWMessageMemory& operator=(const CTarnFWMessageMemory&) = delete;

  /// Hands the block out, null when there is none.
  void* take() { return std::exchange(block_, nullptr); }

  /// Keeps a block from `malloc` in the place of the one before.
  void keep(void* block) { std::free(std::exchange(block_, block)); }

 private:
  void* block_ = nullptr;
};

/// Owner of message memory. Callers hold a pointer to the body, the first byte after the header;
/// a reply comes back in the same memory. Buffers are not tracked: who got one gives it back.
/// Sizes are bytes of the body. False is failure, with a log line that says why.
class CTarnFWMsgBuf {
 public:
  /// A message with an empty header and `size` bytes of body, all zero. With a `memory` it is built
  /// there if the memory is large enough, and its body holds what an earlier message left, unless
  /// `*fresh` says that it is zero.
  virtual bool getBuffer(void** body, unsigned int size, CTarnFWMessageMemory* memory = nullptr,
                         bool* fresh = nullptr) = 0;

  /// Frees the buffer, or gives it to a `memory`. One whose header is broken is not freed: nothing
  /// says what it is.
  virtual bool releaseBuffer(void* body, CTarnFWMessageMemory* memory = nullptr) = 0;

  /// Takes back all added commands; the sequence number and the bytes of the body stay.
  virtual bool resetBuffer(void* body) = 0;

  /// Looks at signature, major version and category, and at the body length unless `size` is 0.
  virtual bool validateBuffer(void* body, unsigned int size) = 0;

  /// The whole message, header included, when the buffer validates with `size`.
  virtual bool getMessage(void* body, unsigned int size, void** message,
                          unsigned int* messageSize) = 0;

  /// Counts one command of `size` bytes in. Checks nothing: `getMessage` does.
  virtual bool addCommand(void* body, unsigned int size) = 0;

  virtual ~CTarnFWMsgBuf() = default;

 protected:
  CTarnFWMsgBuf() = default;
  CTarnFWMsgBuf(const CTarnFWMsgBuf&) = delete;
  CTarnFWMsgBuf& operator=(const CTarnFWMsgBuf&) = delete;
};

}  // namespace TarnFirewall
