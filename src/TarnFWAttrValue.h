#pragma once

/// How an attribute stands in a record.

#include <cstddef>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// Head of an attribute's record; integers in host order. The value follows by type:
///
///     type     length   value
///     0, 1, 2  18       +10 8 bytes
///     3        28 + n   +10 identifier (16 bytes), +26 n (2 bytes), +28 text with its NUL; n is 0
///                       for no text and counts the NUL otherwise
///     4        82       +10 `fwattr_sid`
struct _FWAttrValue {
  host16 key;     // +0
  host16 type;    // +2  kind of value
  host32 length;  // +4  bytes of the whole record
  host16 zero;    // +8
};
static_assert(sizeof(_FWAttrValue) == 10 && alignof(_FWAttrValue) == 1);
static_assert(offsetof(_FWAttrValue, key) == 0 && offsetof(_FWAttrValue, type) == 2 &&
              offsetof(_FWAttrValue, length) == 4 && offsetof(_FWAttrValue, zero) == 8);

}  // namespace TarnFirewall
