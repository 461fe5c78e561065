// Offsets in a message: its header and the envelope of each command.
#ifndef TARNLAB_MESSAGE_H
#define TARNLAB_MESSAGE_H

#include <cstddef>

namespace TarnLab {

struct MessageHeader {
  static constexpr std::size_t size = 20;
  static constexpr std::size_t signature = 0, bodyLength = 4, sequence = 8, major = 12, minor = 13,
                               type = 14, category = 15, count = 16, padding = 18;
};

struct Envelope {
  static constexpr std::size_t size = 12;
  static constexpr std::size_t bodyLength = 0, command = 4, status = 8;
};

}  // namespace TarnLab

#endif
