#pragma once

/// Message buffers from the heap, numbered in the order in which they were obtained.

#include <atomic>
#include <cstdint>

#include "Locks.h"
#include "TarnFWMsgBuf.h"

namespace TarnFirewall {

/// One object serves all buffers of a library handle. The sequence counter starts at 0; a lock
/// failure throws `Locks::LockException`. The small buffer that was released last is kept for the
/// next request of its size, since a display asks for one record after another. Threads share
/// nothing else.
class CTarnFWSimpleMsgBuf final : public CTarnFWMsgBuf {
 public:
  CTarnFWSimpleMsgBuf() = default;
  ~CTarnFWSimpleMsgBuf() override;

  bool getBuffer(void** body, unsigned int size, CTarnFWMessageMemory* memory = nullptr,
                 bool* fresh = nullptr) override;
  bool releaseBuffer(void* body, CTarnFWMessageMemory* memory = nullptr) override;
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
  std::atomic<void*> spare_ = nullptr;
};

}  // namespace TarnFirewall
