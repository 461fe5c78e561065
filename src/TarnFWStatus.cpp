#include "TarnFWStatus.h"

#include <cstdio>
#include <iterator>

namespace TarnFirewall {

namespace {

// Texts and not their addresses, which the loader would have to move.
constexpr char kStatusTexts[][40] = {
    "ok",                                 // 0
    "lib not initialized",                // 1
    "invalid lib handle",                 // 2
    "invalid argument",                   // 3
    "invalid input buffer",               // 4
    "unknown error",                      // 5
    "internal error",                     // 6
    "not supported",                      // 7
    "out of memory",                      // 8
    "input buffer too small",             // 9
    "cannot initialize io channel",       // 10
    "socket error",                       // 11
    "cannot load file",                   // 12
    "cannot rename file",                 // 13
    "cannot delete file",                 // 14
    "unknown io channel",                 // 15
    "parsing error",                      // 16
    "integer too large",                  // 17
    "unsupported version",                // 18
    "ioctl failed",                       // 19
    "slowpath ioctl failed",              // 20
    "switch port not found",              // 21
    "kernel unsupported",                 // 22
    "bad transaction",                    // 23
    "bad update",                         // 24
    "bad message",                        // 25
    "bad state",                          // 26
    "no rule",                            // 27
    "no ruleset",                         // 28
    "no addrset",                         // 29
    "no address",                         // 30
    "name too long",                      // 31
    "id too long",                        // 32
    "invalid network address",            // 33
    "invalid addrset type",               // 34
    "invalid attribute",                  // 35
    "invalid attrset type",               // 36
    "invalid rule action",                // 37
    "invalid tcp/udp port",               // 38
    "too many tcp/udp ports",             // 39
    "invalid tcp flags",                  // 40
    "invalid tcp options",                // 41
    "invalid rule direction",             // 42
    "invalid protocol spec",              // 43
    "missing jump target",                // 44
    "invalid rule",                       // 45
    "invalid rule target",                // 46
    "invalid vnic uuid",                  // 47
    "vnic uuid not found",                // 48
    "invalid vnic uuid set",              // 49
    "ipfix packet full",                  // 50
    "missing NAT target",                 // 51
    "unknown protocol name",              // 52
    "rule address mismatch",              // 53
    "invalid switch uuid",                // 54
    "component not found",                // 55
    "reached maximal components",         // 56
    "invalid address family",             // 57
    "invalid timeout",                    // 58
    "cannot save file",                   // 59
    "bad dscp markings",                  // 60
    "Threshold crossed",                  // 61
    "invalid filter name",                // 62
    "invalid vif uuid",                   // 63
    "failed to get firewall config",      // 64
    "kernel out of memory",               // 65
    "invalid attribute key",              // 66
    "invalid attribute value",            // 67
    "unmapped encoded int attribute",     // 68
    "invalid container name",             // 69
    "failed to find uid to sid mapping",  // 70
};
static_assert(std::size(kStatusTexts) == FW_STATUS_COUNT);

}  // namespace

const char* statusText(FWStatus_t status) {
  if (status < std::size(kStatusTexts)) return kStatusTexts[status];
  static thread_local char unknown[64];
  std::snprintf(unknown, sizeof unknown, "unknown error code: %u", status);
  return unknown;
}

}  // namespace TarnFirewall
