#include "TableDisplay.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "TableRecords.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

/// A value of the kernel as a record; what is missing of it is zero.
template <typename Record>
Record valueOf(std::span<const std::byte> value) {
  Record record{};
  std::memcpy(&record, value.data(), std::min(sizeof record, value.size()));
  return record;
}

struct SwitchUuid {
  std::uint8_t uuid[kUuidSize];
};

/// The gfy form of an identifier.
struct GfyText {
  explicit GfyText(const std::uint8_t* uuid) { uuid2gfystr(uuid, text, sizeof text); }
  char text[64];
};

/// Prints the identifier in gfy form, or the NIC in vnic form.
void printVnic(const std::uint8_t* uuid, int index, bool vnicForm) {
  if (vnicForm) {
    char text[64];
    uuid2vnicstr(uuid, index, text, sizeof text);
    std::printf("VNIC ID %s\n", text);
  } else {
    std::printf("VNIC UUID %s VNIC Index %d\n", GfyText(uuid).text, index);
  }
}

/// Scripts that wait for this line know it by its repeating, and end the command by a signal. It
/// ends by itself when nobody can read the line any more.
void repeatBadType(std::uint8_t type) {
  std::fflush(stdout);
  while (std::fprintf(stderr, "ERROR: invalid table type %d in exclude table\n", int{type}) >= 0) {
  }
}

}  // namespace

bool printTableEntry(std::uint8_t type, std::span<const std::byte> value, bool vnicForm) {
  switch (type) {
    case WGT_ENTRY_EXCLUDE_SWITCH:
    case WGT_ENTRY_INCLUDE_SWITCH: {
      const char* const text = reinterpret_cast<const char*>(value.data());
      std::printf("VSWITCH %.*s\n", static_cast<int>(fieldLength(text, value.size())), text);
      return true;
    }
    case WGT_ENTRY_EXCLUDE_VNIC: {
      const auto vnic = valueOf<WGTExcludeVnic_>(value);
      printVnic(vnic.uuid, static_cast<int>(vnic.vnicIndex), vnicForm);
      return true;
    }
    case WGT_ENTRY_INCLUDE_VNIC: {
      const auto vnic = valueOf<WGTIncludeVnic_>(value);
      printVnic(vnic.uuid, vnic.vnicIndex, vnicForm);
      return true;
    }
    case WGT_ENTRY_SWITCH_UUID:
      std::printf("DVS %s\n", GfyText(valueOf<SwitchUuid>(value).uuid).text);
      return true;
    case WGT_ENTRY_SWITCH_PORT: {
      const auto port = valueOf<WGTSwitchPort_>(value);
      std::printf("DVS %s DVPort %d\n", GfyText(port.uuid).text, std::int32_t{port.port});
      return true;
    }
    case WGT_ENTRY_HOST:
      std::printf("HOST WIDE\n");
      return true;
    default:
      repeatBadType(type);
      return false;
  }
}
