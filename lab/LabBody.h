// The body of a command or of a direct request: the request is read from it, the reply is written
// over it.
#ifndef TARNLAB_BODY_H
#define TARNLAB_BODY_H

#include <algorithm>

#include "LabBytes.h"

namespace TarnLab {

/// Remembers what was written, since only that goes back to the caller.
class Body {
 public:
  explicit Body(Bytes bytes) : bytes_(bytes), first_(bytes.size()) {}

  ConstBytes bytes() const { return bytes_; }
  operator ConstBytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }

  /// A part of the body to write a reply into; std::out_of_range when the body ends before it.
  Bytes reply(std::size_t offset, std::size_t size) {
    const Bytes piece = part(bytes_, offset, size);
    if (size > 0) {
      first_ = std::min(first_, offset);
      last_ = std::max(last_, offset + size);
    }
    return piece;
  }

  /// What was written: an offset, and a size that is 0 when nothing was.
  std::size_t writtenAt() const { return first_; }
  std::size_t writtenSize() const { return last_ > first_ ? last_ - first_ : 0; }

 private:
  Bytes bytes_;
  std::size_t first_;
  std::size_t last_ = 0;
};

}  // namespace TarnLab

#endif
