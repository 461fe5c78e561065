#pragma once

/// Message buffers from the heap, numbered in the order in which they were obtained.

#include <cstdint>

#include "Locks.h"
#include "TarnFWMsgBuf.h"

namespace TarnFirewall {

/// One object serves all buffers of a library handle. The sequence counter starts at 0 and is the
/// only state that threads share; a lock failure throws `Locks::LockException`.
class CTarnFWSimpleMsgBuf final : public CTarnFWMsgBuf {
 public:
  bool getBuffer(void** body, unsigned int size) override;
  bool releaseBuffer(void* body) override;
  bool resetBuffer(void* body) override;
  bool validateBuffer(void* body, unsigned int size) override;
  bool getMessage(void* body, unsigned int size, void** message,
                  unsigned int* messageSize) override;
  bool addCommand(void* body, unsigned int size) override;

  /// Fills a header for an empty request and takes the next sequence number.
  void initMsgHeader(tarn_msg_hdr_* header);

 private:
  Locks::Mutex mutex_;
  std::uint32_t sequence_ = 0;
};

}  // namespace TarnFirewall
