// The fields of each command, for the log.
#include "LabDecode.h"
#include "LabText.h"

namespace TarnLab {

namespace {

enum class As : std::uint8_t { text, u8, u32, u64, low2, low4, hex16, bytes16 };

struct Field {
  std::uint16_t command;
  bool reply;
  std::uint16_t offset;
  As as;
  std::uint16_t size;  // of a text
  const char* name;
};

constexpr Field fields[] = {
    // rule sets
    {1, true, 0, As::u32, 0, "count"},
    {2, false, 0, As::u32, 0, "max"},
    {2, false, 4, As::u32, 0, "from"},
    {2, true, 8, As::u32, 0, "returned"},
    {2, true, 12, As::text, 64, "first"},
    {3, false, 64, As::text, 64, "name"},
    {3, false, 128, As::u64, 0, "sequence"},
    {3, false, 136, As::u32, 0, "rules"},
    {3, false, 140, As::low2, 0, "flags"},
    {3, true, 144, As::hex16, 0, "transaction"},
    {4, true, 0, As::text, 64, "layer3"},
    {4, true, 64, As::text, 64, "layer2"},
    {6, false, 0, As::text, 64, "name"},
    {7, false, 0, As::text, 64, "name"},
    {8, false, 0, As::text, 64, "name"},
    {8, false, 64, As::low2, 0, "kind"},
    {8, true, 68, As::u32, 0, "rules"},
    {9, false, 0, As::text, 64, "name"},
    {9, true, 64, As::u32, 0, "rules"},
    {9, true, 68, As::u64, 0, "realized"},
    {9, true, 76, As::u64, 0, "generation"},
    {10, false, 0, As::text, 64, "name"},
    {10, false, 64, As::u32, 0, "max"},
    {10, false, 68, As::u32, 0, "from"},
    {10, false, 72, As::u8, 0, "flags"},
    {10, false, 74, As::low2, 0, "kind"},
    {10, true, 76, As::u32, 0, "returned"},
    {10, true, 80, As::u64, 0, "realized"},
    {10, true, 88, As::u64, 0, "generation"},
    {11, false, 0, As::text, 64, "name"},
    {11, false, 64, As::u32, 0, "max"},
    {11, false, 68, As::u32, 0, "from"},
    {11, false, 72, As::u8, 0, "flags"},
    {11, false, 74, As::low2, 0, "kind"},
    {11, true, 76, As::u32, 0, "returned"},
    {12, false, 0, As::text, 64, "name"},
    {12, false, 64, As::u32, 0, "max"},
    {12, false, 68, As::u32, 0, "from"},
    {12, false, 72, As::u8, 0, "flags"},
    {12, false, 74, As::low2, 0, "kind"},
    {12, true, 76, As::u32, 0, "returned"},
    {61, false, 0, As::text, 64, "name"},
    {61, false, 64, As::text, 64, "target"},
    {62, false, 0, As::text, 64, "name"},
    {62, true, 64, As::text, 64, "target"},
    {63, false, 0, As::text, 64, "name"},
    // address sets and containers
    {13, false, 0, As::text, 38, "name"},
    {13, false, 38, As::u64, 0, "sequence"},
    {13, false, 46, As::u32, 0, "entries"},
    {13, false, 50, As::u32, 0, "type"},
    {13, false, 54, As::u32, 0, "bytes"},
    {13, false, 58, As::u8, 0, "flags"},
    {13, true, 62, As::hex16, 0, "transaction"},
    {14, false, 0, As::text, 38, "name"},
    {15, false, 0, As::text, 38, "name"},
    {15, true, 38, As::u32, 0, "entries"},
    {15, true, 42, As::u32, 0, "type"},
    {15, true, 46, As::u32, 0, "bytes"},
    {16, false, 0, As::text, 38, "name"},
    {16, true, 38, As::u32, 0, "entries"},
    {16, true, 42, As::u64, 0, "realized"},
    {16, true, 50, As::u64, 0, "generation"},
    {17, false, 0, As::text, 38, "name"},
    {17, false, 38, As::u32, 0, "type"},
    {17, false, 42, As::u32, 0, "max"},
    {17, false, 46, As::u32, 0, "from"},
    {17, true, 50, As::u32, 0, "returned"},
    {17, true, 54, As::u64, 0, "realized"},
    {17, true, 62, As::u64, 0, "generation"},
    {18, false, 0, As::text, 38, "name"},
    {18, false, 38, As::u32, 0, "type"},
    {18, false, 42, As::u32, 0, "max"},
    {18, false, 46, As::u32, 0, "from"},
    {18, true, 50, As::u32, 0, "returned"},
    {19, false, 0, As::text, 38, "name"},
    {19, false, 38, As::u32, 0, "type"},
    {19, false, 42, As::u32, 0, "max"},
    {19, false, 46, As::u32, 0, "from"},
    {19, false, 50, As::u32, 0, "clear"},
    {19, true, 54, As::u32, 0, "returned"},
    {20, false, 0, As::low4, 0, "type"},
    {20, true, 4, As::u32, 0, "count"},
    {21, false, 0, As::low4, 0, "type"},
    {21, false, 4, As::u32, 0, "max"},
    {21, false, 8, As::u32, 0, "from"},
    {21, true, 12, As::u32, 0, "returned"},
    {21, true, 16, As::text, 38, "first"},
    {22, false, 0, As::low4, 0, "type"},
    {22, false, 4, As::u32, 0, "max"},
    {22, false, 8, As::u32, 0, "from"},
    {22, true, 12, As::u32, 0, "returned"},
    {44, false, 0, As::u8, 0, "enable"},
    {45, true, 0, As::u8, 0, "enabled"},
    {46, false, 0, As::u32, 0, "operation"},
    {46, false, 4, As::text, 38, "name"},
    {46, false, 42, As::u32, 0, "component"},
    {46, false, 46, As::bytes16, 0, "address"},
    {46, false, 186, As::u32, 0, "first"},
    {46, false, 190, As::u32, 0, "second"},
    {46, true, 186, As::u32, 0, "old"},
    {46, true, 190, As::u32, 0, "new"},
    {56, false, 0, As::text, 38, "name"},
    {56, false, 42, As::u32, 0, "count"},
    {64, false, 0, As::text, 38, "name"},
    {75, false, 0, As::text, 38, "name"},
    {75, false, 38, As::u64, 0, "sequence"},
    {75, false, 46, As::u32, 0, "entries"},
    {75, false, 50, As::u32, 0, "type"},
    {75, false, 54, As::u32, 0, "bytes"},
    {75, false, 58, As::u8, 0, "flags"},
    {75, true, 62, As::hex16, 0, "transaction"},
};

/// The field as text; empty for one that is not worth telling.
std::string value(const Field& field, ConstBytes body) {
  switch (field.as) {
    case As::text:
      return "\"" + printable(getText(body, field.offset, field.size)) + "\"";
    case As::u8:
      return format("%u", get8(body, field.offset));
    case As::u32:
      return format("%u", get32(body, field.offset));
    case As::u64:
      return format("%llu", static_cast<unsigned long long>(get64(body, field.offset)));
    case As::low2:
      return format("%u", get8(body, field.offset) & 3u);
    case As::low4:
      return format("%u", get8(body, field.offset) & 15u);
    case As::hex16:
      if (isZero(part(body, field.offset, 16))) return "";
      return format("%016llx%016llx", static_cast<unsigned long long>(get64(body, field.offset)),
                    static_cast<unsigned long long>(get64(body, field.offset + 8u)));
    case As::bytes16: {
      const ConstBytes bytes = part(body, field.offset, 16);
      if (isZero(bytes)) return "";
      std::string text;
      for (const std::byte byte : bytes) text += format("%02x", static_cast<unsigned>(byte));
      return text;
    }
  }
  return "";
}

std::string decodeFields(std::uint16_t command, bool reply, ConstBytes body) {
  std::string text;
  for (const Field& field : fields) {
    if (field.command != command || field.reply != reply) continue;
    try {
      const std::string shown = value(field, body);
      if (shown.empty()) continue;
      text += (text.empty() ? "" : ", ") + std::string(field.name) + " " + shown;
    } catch (const std::out_of_range&) {
      break;
    }
  }
  return text;
}

}  // namespace

std::string decodeRequestFields(std::uint16_t command, ConstBytes body) {
  return decodeFields(command, false, body);
}

std::string decodeReplyFields(std::uint16_t command, ConstBytes body) {
  return decodeFields(command, true, body);
}

}  // namespace TarnLab
