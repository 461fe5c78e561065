#include "LabChain.h"

#include "LabSid.h"
#include "LabText.h"

namespace TarnLab::Chain {

namespace {

constexpr const char* keyNames[] = {"APP_ID",           "TLS_VERSION",  "TLS_CIPHER_SUITE",
                                    "CIFS_SMB_VERSION", "HTTP_METHOD",  "HTTP_PATH",
                                    "FTP_COMMAND",      "FQDN",         "WIN_SID",
                                    "USER_SID",         "PROCESS_HASH", "CTX_PROFILE_ID"};
constexpr unsigned keyTypes[] = {2, 2, 2, 2, 2, 3, 2, 3, 4, 4, 1, 3};
constexpr std::size_t keyCount = sizeof keyTypes / sizeof keyTypes[0];

// An attribute's value: key, type, length of the whole, two bytes of zero, and the value itself.
constexpr std::size_t atKey = 0, atType = 2, atLength = 4, atValue = 10;
constexpr std::size_t atStringLength = 26, atString = 28;

std::string valueFault(ConstBytes value) {
  if (value.size() < atValue) return format("attribute of %zu bytes", value.size());
  const unsigned key = get16(value, atKey);
  const unsigned type = get16(value, atType);
  if (key >= keyCount) return format("attribute key %u", key);
  if (type != keyTypes[key]) return format("attribute key %u with value type %u", key, type);
  if (get32(value, atLength) != value.size()) return "attribute with another length";
  if (get16(value, 8) != 0) return "attribute with reserved bytes set";
  switch (type) {
    case 3: {
      if (value.size() < atString) return "attribute cut off";
      const std::size_t text = get16(value, atStringLength);
      if (text != value.size() - atString) return "attribute with another string length";
      return text == 0 || get8(value, value.size() - 1) == 0 ? ""
                                                             : "attribute string without an end";
    }
    case 4:
      if (value.size() != atValue + Sid::size) return "attribute with another length";
      return Sid::fault(part(value, atValue, Sid::size));
    default:
      return value.size() == atValue + 8 ? "" : "attribute with another length";
  }
}

std::string valueText(ConstBytes value) {
  const std::string name = keyNames[get16(value, atKey)];
  switch (get16(value, atType)) {
    case 3: {
      std::string uuid;
      for (std::size_t i = 0; i < 16; ++i) {
        const bool dash = i == 4 || i == 6 || i == 8 || i == 10;
        uuid += format(dash ? "-%02x" : "%02x", get8(value, atValue + i));
      }
      const std::size_t length = get16(value, atStringLength);
      if (length == 0) return name + " : " + uuid;
      return name + " : " + std::string(getText(value, atString, length)) + "(" + uuid + ")";
    }
    case 4:
      return name + " : " + Sid::text(part(value, atValue, Sid::size));
    default:
      return name + format(" : %lld", static_cast<long long>(get64(value, atValue)));
  }
}

/// Calls the visitor with each element's value; returns what is wrong with the elements' heads.
template <typename Visitor>
std::string walk(ConstBytes chain, Visitor visit) {
  ConstBytes rest = chain.subspan(headSize);
  const std::uint32_t elements = get32(chain, count);
  for (std::uint32_t i = 0; i < elements; ++i) {
    if (rest.size() < elementHeadSize) return format("%u elements counted, %u found", elements, i);
    if (get16(rest, 0) != 1 || get16(rest, 2) != 0) {
      return format("element %u of type %u.%u", i, get16(rest, 0), get16(rest, 2));
    }
    const std::size_t length = get32(rest, 4);
    if (length > rest.size() - elementHeadSize) return format("element %u is cut off", i);
    if (std::string fault = visit(rest.subspan(elementHeadSize, length)); !fault.empty()) {
      return fault;
    }
    rest = rest.subspan(elementHeadSize + length);
  }
  return rest.empty() ? "" : format("%zu bytes after the last element", rest.size());
}

}  // namespace

std::string fault(ConstBytes chain) {
  if (chain.size() < headSize) return format("chain of %zu bytes", chain.size());
  if (get32(chain, bytes) != chain.size() - headSize) return "chain with another size";
  return walk(chain, valueFault);
}

std::vector<std::string> texts(ConstBytes chain) {
  std::vector<std::string> found;
  if (!fault(chain).empty()) return found;
  walk(chain, [&found](ConstBytes value) {
    found.push_back(valueText(value));
    return std::string();
  });
  return found;
}

std::vector<std::string> lines(ConstBytes chain) {
  if (chain.size() >= headSize) {
    const std::size_t size = get32(chain, bytes);
    if (size <= chain.size() - headSize) chain = chain.first(headSize + size);
  }
  const std::string wrong = fault(chain);
  return wrong.empty() ? texts(chain) : std::vector{"? " + wrong};
}

}  // namespace TarnLab::Chain
