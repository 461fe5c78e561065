#include "TarnFWSimpleMsgBuf.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

constexpr std::uint8_t kMajorVersion = 1;
constexpr std::uint8_t kMinorVersion = 1;
constexpr std::uint8_t kCategoryFirewall = 1;

/// A buffer of more memory than this is never kept.
constexpr std::size_t kMaxSpare = 4096;

/// What stands in memory in front of a message and is never sent: its size, with header and slack.
struct alignas(std::max_align_t) Block {
  std::size_t size;

  void* message() { return this + 1; }
  static Block* of(tarn_msg_hdr_* header) { return reinterpret_cast<Block*>(header) - 1; }
};

/// Null without memory. A large block comes as fresh pages, which the allocator knows to be zero
/// already.
Block* newBlock(std::size_t size) {
  auto* const block = static_cast<Block*>(std::calloc(1, sizeof(Block) + size));
  if (block != nullptr) block->size = size;
  return block;
}

using BlockPointer = std::unique_ptr<Block, decltype(&std::free)>;

/// The small block that was released last, zeroed, so that no old bytes reach the kernel or a peer.
/// Null when it has another size.
BlockPointer spareBlock(std::atomic<void*>& spare, std::size_t size) {
  BlockPointer block(size <= kMaxSpare ? static_cast<Block*>(spare.exchange(nullptr)) : nullptr,
                     std::free);
  if (block == nullptr || block->size != size) return {nullptr, std::free};
  std::memset(block->message(), 0, size);
  return block;
}

/// The block of a memory as it is, but for the slack. Null when it is too small: it is gone before
/// there is a larger one.
BlockPointer keptBlock(CTarnFWMessageMemory& memory, std::size_t size) {
  BlockPointer block(static_cast<Block*>(memory.take()), std::free);
  if (block == nullptr || block->size < size) return {nullptr, std::free};
  std::memset(static_cast<std::byte*>(block->message()) + size - kMsgSlack, 0, kMsgSlack);
  return block;
}

/// The header in front of a body. All its members have alignment 1.
tarn_msg_hdr_* headerOf(void* body) {
  return reinterpret_cast<tarn_msg_hdr_*>(static_cast<std::byte*>(body) - kMsgHeaderSize);
}

}  // namespace

CTarnFWSimpleMsgBuf::~CTarnFWSimpleMsgBuf() { std::free(spare_.load()); }

void CTarnFWSimpleMsgBuf::initMsgHeader(tarn_msg_hdr_* header) {
  std::memset(static_cast<void*>(&header->sequence), 0,
              kMsgHeaderSize - offsetof(tarn_msg_hdr_, sequence));
  std::memcpy(header->signature, kMsgSignature, sizeof header->signature);
  header->major = kMajorVersion;
  header->minor = kMinorVersion;
  header->category = kCategoryFirewall;
  header->bodyLength = 0;
  // No guard: an unlock that fails is thrown too.
  mutex_.lock();
  header->sequence = sequence_++;
  mutex_.unlock();
}

bool CTarnFWSimpleMsgBuf::getBuffer(void** body, unsigned int size, CTarnFWMessageMemory* memory,
                                    bool* fresh) {
  if (body == nullptr) return false;
  if (size > std::numeric_limits<unsigned int>::max() - kMsgHeaderSize) {
    TARNFW_TRACE(FW_COMPONENT_MSGBUF, 0, "requested buffer size %u is too large\n\n", size);
    return false;
  }
  const std::size_t needed = kMsgHeaderSize + std::size_t{size} + kMsgSlack;
  BlockPointer block = memory != nullptr ? keptBlock(*memory, needed) : spareBlock(spare_, needed);
  const bool holdsMessage = memory != nullptr && block != nullptr;
  if (block == nullptr) block.reset(newBlock(needed));
  if (block == nullptr) {
    TARNFW_WARNING("failed to get message buffer of size %u\n\n", size);
    return false;
  }
  initMsgHeader(static_cast<tarn_msg_hdr_*>(block->message()));
  *body = static_cast<std::byte*>(block.release()->message()) + kMsgHeaderSize;
  if (fresh != nullptr) *fresh = !holdsMessage;
  return true;
}

bool CTarnFWSimpleMsgBuf::releaseBuffer(void* body, CTarnFWMessageMemory* memory) {
  if (!validateBuffer(body, 0)) return false;
  Block* const block = Block::of(headerOf(body));
  if (memory != nullptr) {
    memory->keep(block);
  } else {
    std::free(block->size <= kMaxSpare ? spare_.exchange(block) : block);
  }
  return true;
}

bool CTarnFWSimpleMsgBuf::resetBuffer(void* body) {
  if (!validateBuffer(body, 0)) return false;
  tarn_msg_hdr_* header = headerOf(body);
  header->bodyLength = 0;
  header->commandCount = 0;
  return true;
}

bool CTarnFWSimpleMsgBuf::validateBuffer(void* body, unsigned int size) {
  if (body == nullptr) {
    TARNFW_WARNING("attempt to validate a null message buffer\n");
    return false;
  }
  // A newer kernel may answer with another minor version, and a reply has another type: neither
  // is looked at. The number in the messages is the argument, not the header's field.
  const tarn_msg_hdr_* header = headerOf(body);
  if (std::memcmp(header->signature, kMsgSignature, sizeof kMsgSignature) != 0 ||
      header->major != kMajorVersion || header->category != kCategoryFirewall) {
    TARNFW_WARNING("message buffer [%u] has a bad signature\n", size);
    return false;
  }
  if (size != 0 && header->bodyLength != size) {
    TARNFW_WARNING("message buffer [%u] has a bad size\n", size);
    return false;
  }
  return true;
}

bool CTarnFWSimpleMsgBuf::getMessage(void* body, unsigned int size, void** message,
                                     unsigned int* messageSize) {
  if (!validateBuffer(body, size)) return false;
  *message = headerOf(body);
  *messageSize = size + kMsgHeaderSize;
  return true;
}

bool CTarnFWSimpleMsgBuf::addCommand(void* body, unsigned int size) {
  tarn_msg_hdr_* header = headerOf(body);
  header->commandCount = static_cast<std::uint16_t>(header->commandCount + 1);
  header->bodyLength = header->bodyLength + size;
  return true;
}

}  // namespace TarnFirewall
