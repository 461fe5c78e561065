#include "TarnFWParserArena.h"

#include <new>

namespace TarnFirewall {

CTarnFWParserArena::~CTarnFWParserArena() {
  while (first_ != nullptr) {
    Block* next = first_->next;
    delete first_;
    first_ = next;
  }
}

void* CTarnFWParserArena::allocateFromNextBlock(std::size_t size) {
  if (size > kBlockSize) return nullptr;
  Block*& next = current_ == nullptr ? first_ : current_->next;
  if (next == nullptr) {
    next = new (std::nothrow) Block;
    if (next == nullptr) return nullptr;
    next->next = nullptr;
  }
  index_ = current_ == nullptr ? 0 : index_ + 1;
  current_ = next;
  used_ = static_cast<std::uint32_t>(size);
  return current_->bytes;
}

void CTarnFWParserArena::release(Mark mark) {
  if (mark.block != index_) {
    current_ = first_;
    for (index_ = 0; index_ < mark.block; ++index_) current_ = current_->next;
  }
  used_ = mark.used;
}

}  // namespace TarnFirewall
