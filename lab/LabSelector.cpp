#include "LabSelector.h"

#include "LabText.h"

namespace TarnLab {

std::string Selector::toString() const {
  const std::string text = printable(identifier);
  const std::string of = agent.empty() ? "" : " of " + printable(agent);
  switch (type) {
    case none:
      return "no filter";
    case vnic:
      return format("vnic \"%s\" %u", text.c_str(), index) + of;
    case switchPort:
      return format("port \"%s\" %u", text.c_str(), index) + of;
    case filter:
      return "filter " + text + of;
    case vif:
      return "vif " + text + of;
    default:
      return format("selector of type %u \"%s\" %u", type, text.c_str(), index) + of;
  }
}

std::string Selector::fileName(std::string_view name) {
  std::string result;
  for (const char c : name) {
    const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                       c == '-' || c == '_' || (c == '.' && !result.empty());
    if (plain) {
      result += c;
    } else {
      result += format("%%%02x", static_cast<unsigned char>(c));
    }
  }
  return result.empty() ? "%" : result;
}

std::string Selector::nameOfFile(std::string_view file) {
  std::string result;
  for (std::size_t i = 0; i < file.size(); ++i) {
    if (file[i] != '%') {
      result += file[i];
    } else if (i + 2 < file.size()) {
      const auto byte = parseNumber("0x" + std::string(file.substr(i + 1, 2)), 255);
      result += static_cast<char>(byte.value_or('?'));
      i += 2;
    }
  }
  return result;
}

}  // namespace TarnLab
