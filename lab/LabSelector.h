// The 100 bytes that say which filter a message is for.
#ifndef TARNLAB_SELECTOR_H
#define TARNLAB_SELECTOR_H

#include <string>
#include <string_view>

#include "LabBytes.h"

namespace TarnLab {

struct Selector {
  static constexpr std::size_t size = 100;
  static constexpr std::size_t identifierSize = 64;
  static constexpr unsigned none = 0, vnic = 1, switchPort = 2, filter = 7, vif = 8;

  explicit Selector(ConstBytes bytes)
      : identifier(getText(bytes, 0, identifierSize)),
        agent(getText(bytes, 64, 32)),
        index(get32(bytes, 96) & 0xffffff),
        type(get8(bytes, 99) & 0x0f) {}

  bool known() const {
    return type == none || type == vnic || type == switchPort || type == filter || type == vif;
  }

  /// One line for the log.
  std::string toString() const;

  /// The name as a file name: what is no letter, digit, dash, dot or underline becomes %NN.
  static std::string fileName(std::string_view name);

  /// The name back from a file name.
  static std::string nameOfFile(std::string_view file);

  std::string_view identifier;
  std::string_view agent;
  std::uint32_t index;
  unsigned type;
};

}  // namespace TarnLab

#endif
