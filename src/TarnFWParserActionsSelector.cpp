#include "TarnFWParserActionsSelector.h"

#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

dvs_port_ g_tarnfw_default_dvsport = {};

namespace {

constexpr std::size_t kNormalUuidLength = 36;
constexpr std::int64_t kMaxIndex = 0xffffff;

void setIndex(dvs_port_& port, std::uint32_t index) {
  port.index[0] = static_cast<std::uint8_t>(index);
  port.index[1] = static_cast<std::uint8_t>(index >> 8);
  port.index[2] = static_cast<std::uint8_t>(index >> 16);
}

/// A selector of the type with the default agent.
dvs_port_ selectorWithAgent(std::uint8_t type) {
  dvs_port_ port = {};
  std::memcpy(port.agent, g_tarnfw_default_dvsport.agent, sizeof port.agent);
  setSelectorType(port, type);
  return port;
}

}  // namespace

dvs_port_* defaultSelector(const FWParse& parse) { return parse.keep(g_tarnfw_default_dvsport); }

dvs_port_* selectorOfIdPort(const FWParse& parse, std::uint8_t type, const FWIdPort& idPort) {
  dvs_port_ port = selectorWithAgent(type);
  Strncpy(port.identifier, idPort.text, sizeof port.identifier);
  setIndex(port, idPort.port);
  return parse.keep(port);
}

dvs_port_* selectorOfVnic(const FWParse& parse, std::uint8_t type, const FWParserText& text) {
  std::uint8_t uuid[kUuidSize];
  int index = 0;
  if (!vnicstr2uuid(uuid, &index, text.data)) {
    throw CParseFailure(formatText("invalid vnic uuid (%s)", text.data),
                        FW_STATUS_INVALID_VNIC_UUID);
  }
  dvs_port_ port = selectorWithAgent(type);
  uuid2gfystr(uuid, port.identifier, sizeof port.identifier);
  setIndex(port, static_cast<std::uint32_t>(index));
  return parse.keep(port);
}

dvs_port_* selectorOfSwitch(const FWParse& parse, const FWParserText& id, std::int64_t number) {
  if (number < 0 || number > kMaxIndex) {
    throw CParseFailure("switch port number overflows", FW_STATUS_INTEGER_TOO_LARGE);
  }
  std::uint8_t uuid[kUuidSize];
  if (!gfystr2uuid(uuid, id.data)) {
    throw CParseFailure(formatText("invalid switch id (%s)", id.data),
                        FW_STATUS_INVALID_SWITCH_UUID);
  }
  dvs_port_ port = selectorWithAgent(FW_SELECTOR_DVSPORT);
  uuid2gfystr(uuid, port.identifier, sizeof port.identifier);
  setIndex(port, static_cast<std::uint32_t>(number));
  return parse.keep(port);
}

dvs_port_* selectorOfFilter(const FWParse& parse, const FWParserText& name) {
  dvs_port_ port = {};
  if (name.length >= sizeof port.identifier) {
    throw CParseFailure(formatText("filter name is too long (%s)", name.data),
                        FW_STATUS_INVALID_FILTER_NAME);
  }
  std::memcpy(port.identifier, name.data, name.length);
  setSelectorType(port, FW_SELECTOR_FILTER);
  return parse.keep(port);
}

dvs_port_* selectorOfVif(const FWParse& parse, const FWParserText& text) {
  std::uint8_t uuid[kUuidSize];
  if (text.length != kNormalUuidLength || !normalstr2uuid(uuid, text.data)) {
    throw CParseFailure(formatText("invalid vif uuid (%s)", text.data), FW_STATUS_INVALID_VIF_UUID);
  }
  dvs_port_ port = {};
  std::memcpy(port.identifier, text.data, text.length);
  setSelectorType(port, FW_SELECTOR_VIF);
  return parse.keep(port);
}

void setDefaultSelector(const FWParserText& agent, const dvs_port_& port) {
  g_tarnfw_default_dvsport = port;
  Strncpy(g_tarnfw_default_dvsport.agent, agent.data, sizeof g_tarnfw_default_dvsport.agent);
}

}  // namespace TarnFirewall
