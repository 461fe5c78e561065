#include "TarnFWCmdSetKifFlags.h"

namespace TarnFirewall {

namespace {

FWKifFlags_ oneFlag(const char* name, unsigned int value) {
  FWKifFlags_ flags{};
  const std::size_t room = sizeof flags.names[0] - 1;
  std::memcpy(flags.names[0], name, fieldLength(name, room));
  flags.values[0] = static_cast<std::uint8_t>(value);
  return flags;
}

}  // namespace

CTarnFWCmdSetKifFlags::CTarnFWCmdSetKifFlags(const dvs_port_* port, const char* name,
                                             unsigned int value)
    : CTarnFWRecordCmd(port, oneFlag(name, value)) {}

}  // namespace TarnFirewall
