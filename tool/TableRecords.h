#pragma once

/// Frames and entries of the filter table device.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

/// Requests of the filter table device.
enum WGTRequest : std::uint32_t {
  WGT_REQUEST_INCLUDE_SIZE = 8,
  WGT_REQUEST_INCLUDE_READ = 9,
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
  WGT_ENTRY_HOST = 6,  // every virtual NIC of the host
};
