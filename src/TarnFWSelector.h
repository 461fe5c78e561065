#pragma once

/// Text of a selector as the configuration language writes it.

#include <string>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// " PREFIX vnic ...", " PREFIX dvsport ...", " PREFIX filter ..." or " PREFIX vif ...", without
/// the prefix and its blank when it is null. Empty for a selector of type 0, whatever the prefix.
/// Throws `CUnsupportedException` for a type without a text, and for a vNIC whose identifier is no
/// sixteen bytes.
std::string dvsportToString(const dvs_port_& port, const char* prefix);

/// Text of a field that may fill its field without a NUL.
template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  return std::string(field, fieldLength(field, N));
}

}  // namespace TarnFirewall
