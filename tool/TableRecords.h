#pragma once

/// Frames and entries of the filter table device.

#include <cstddef>
#include <cstdint>
#include <span>

#include "TarnFWWire.h"

/// Requests of the filter table device.
enum WGTRequest : std::uint32_t {
  WGT_REQUEST_EXCLUDE_ADD = 0,
  WGT_REQUEST_EXCLUDE_CLEAR = 1,
  WGT_REQUEST_EXCLUDE_DELETE = 2,
  WGT_REQUEST_EXCLUDE_SIZE = 3,
  WGT_REQUEST_EXCLUDE_READ = 4,
  WGT_REQUEST_INCLUDE_ADD = 5,
  WGT_REQUEST_INCLUDE_CLEAR = 6,
  WGT_REQUEST_INCLUDE_DELETE = 7,
  WGT_REQUEST_INCLUDE_SIZE = 8,
  WGT_REQUEST_INCLUDE_READ = 9,
  WGT_REQUEST_REVALIDATE = 10,
  WGT_REQUEST_DESTROY_DISCONNECTED = 11,
};

/// Asks for the size of an agent's table.
struct WGTSizeFrame {
  char agent[40];             //  +0  the last byte is zero
  TarnFirewall::host32 size;  // +40  reply: bytes of the table's entries
};
static_assert(sizeof(WGTSizeFrame) == 44 && alignof(WGTSizeFrame) == 1);
static_assert(offsetof(WGTSizeFrame, size) == 40);

/// All other requests on an agent's table.
struct WGTEntryFrame {
  char agent[40];                //  +0  the last byte is zero
  TarnFirewall::host64 entries;  // +40  address of the entries
  TarnFirewall::host32 size;     // +48  bytes of the entries; when reading, of the buffer; reply:
                                 //      bytes filled
};
static_assert(sizeof(WGTEntryFrame) == 52 && alignof(WGTEntryFrame) == 1);
static_assert(offsetof(WGTEntryFrame, entries) == 40 && offsetof(WGTEntryFrame, size) == 48);

/// Head of an entry; the value follows, and after it the next head.
struct WGTEntryHead_ {
  std::uint8_t type;            //  +0  `WGTEntryType`
  TarnFirewall::host16 length;  //  +1  bytes of the value
};
static_assert(sizeof(WGTEntryHead_) == 3 && alignof(WGTEntryHead_) == 1);
static_assert(offsetof(WGTEntryHead_, length) == 1);

enum WGTEntryType : std::uint8_t {
  WGT_ENTRY_EXCLUDE_SWITCH = 0,  // text: the switch's name
  WGT_ENTRY_EXCLUDE_VNIC = 1,    // `WGTExcludeVnic_`
  WGT_ENTRY_SWITCH_PORT = 2,     // `WGTSwitchPort_`
  WGT_ENTRY_SWITCH_UUID = 3,     // the switch's identifier
  WGT_ENTRY_INCLUDE_VNIC = 4,    // `WGTIncludeVnic_`
  WGT_ENTRY_INCLUDE_SWITCH = 5,  // text: the switch's name
  WGT_ENTRY_HOST = 6,            // `WGTHost_`: every virtual NIC of the host
};

struct WGTExcludeVnic_ {
  std::uint8_t uuid[16];           //  +0
  TarnFirewall::host32 vnicIndex;  // +16
};
static_assert(sizeof(WGTExcludeVnic_) == 20 && alignof(WGTExcludeVnic_) == 1);
static_assert(offsetof(WGTExcludeVnic_, vnicIndex) == 16);

struct WGTSwitchPort_ {
  std::uint8_t uuid[16];       //  +0
  TarnFirewall::hosti32 port;  // +16
};
static_assert(sizeof(WGTSwitchPort_) == 20 && alignof(WGTSwitchPort_) == 1);
static_assert(offsetof(WGTSwitchPort_, port) == 16);

struct WGTIncludeVnic_ {
  std::uint8_t uuid[16];      //  +0
  std::uint8_t vnicIndex;     // +16
  TarnFirewall::host32 slot;  // +17
  std::uint8_t reserved[8];   // +21  zero
};
static_assert(sizeof(WGTIncludeVnic_) == 29 && alignof(WGTIncludeVnic_) == 1);
static_assert(offsetof(WGTIncludeVnic_, vnicIndex) == 16 && offsetof(WGTIncludeVnic_, slot) == 17 &&
              offsetof(WGTIncludeVnic_, reserved) == 21);

struct WGTHost_ {
  TarnFirewall::host32 slot;  //  +0
  std::uint8_t reserved[8];   //  +4  zero
};
static_assert(sizeof(WGTHost_) == 12 && alignof(WGTHost_) == 1);
static_assert(offsetof(WGTHost_, reserved) == 4);

/// The two tables of an agent: for which virtual NICs a filter is made, and for which none.
struct FilterTable {
  const char* word;   // in texts
  const char* title;  // the same at the beginning of a line
  WGTRequest size, read, add, remove, clear;
};

inline constexpr FilterTable kExcludeTable{
    "exclude",
    "Exclude",
    WGT_REQUEST_EXCLUDE_SIZE,
    WGT_REQUEST_EXCLUDE_READ,
    WGT_REQUEST_EXCLUDE_ADD,
    WGT_REQUEST_EXCLUDE_DELETE,
    WGT_REQUEST_EXCLUDE_CLEAR,
};
inline constexpr FilterTable kIncludeTable{
    "include",
    "Include",
    WGT_REQUEST_INCLUDE_SIZE,
    WGT_REQUEST_INCLUDE_READ,
    WGT_REQUEST_INCLUDE_ADD,
    WGT_REQUEST_INCLUDE_DELETE,
    WGT_REQUEST_INCLUDE_CLEAR,
};

/// Calls `visit` with the type and the value of each entry, until it returns false. What the kernel
/// cut off in a head or a value ends the table.
template <typename Visit>
void visitEntries(std::span<const std::byte> table, Visit&& visit) {
  while (table.size() >= sizeof(WGTEntryHead_)) {
    const auto head = TarnFirewall::loadRecord<WGTEntryHead_>(table.data());
    const std::size_t length = head.length;
    table = table.subspan(sizeof head);
    if (length > table.size() || !visit(head.type, table.first(length))) return;
    table = table.subspan(length);
  }
}
