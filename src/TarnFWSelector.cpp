#include "TarnFWSelector.h"

#include "TarnFWException.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

namespace {

/// The longest text is a full identifier in quotation marks with its index.
constexpr std::size_t kTextSize = sizeof(dvs_port_::identifier) + 16;

std::string value(const dvs_port_& port) {
  char text[kTextSize] = "";
  switch (selectorType(port)) {
    case FW_SELECTOR_VNIC:
      fw_vnic2str(&port, text, sizeof text);
      return std::string(" vnic ") + text;
    case FW_SELECTOR_DVSPORT:
      fw_dvsport2str(&port, text, sizeof text);
      return std::string(" dvsport ") + text;
    case FW_SELECTOR_FILTER:
      return " filter " + fieldText(port.identifier);
    case FW_SELECTOR_VIF:
      return " vif " + fieldText(port.identifier);
    default:
      throw CUnsupportedException("unsupported dvsport type ", int{selectorType(port)});
  }
}

}  // namespace

std::string dvsportToString(const dvs_port_& port, const char* prefix) {
  if (selectorType(port) == FW_SELECTOR_NONE) return {};
  std::string text = value(port);
  if (prefix == nullptr) return text;
  return std::string(" ") + prefix + text;
}

}  // namespace TarnFirewall
