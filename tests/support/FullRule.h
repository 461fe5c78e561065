#pragma once

#include "Expect.h"

/// The record of a rule that has every part that is read back, by hand from the layout:
///
///     rule 16909060 at 5 out inet protocol tcp with {stateless, sloppy, strict, flag 0x0002}
///     from not ip 10.1.2.0/24 port 1024-65535 to ip 10.9.8.7 port {80-90, 443}
///     with extended src ext with attribute profile prof
///     dnat ip 10.0.0.1 port 8080-8090 poolopt round-robin 60 with {log,rtt} as ftp tag 'tagged';
inline Bytes fullRuleRecord() {
  return Bytes(892)
      .at(0, {4, 3, 2, 1, 5, 0, 0, 0})
      .at(12, {5, 0, 1, 0, 10, 1, 2, 0, 24})
      .at(156, {1, 0, 0, 0, 10, 9, 8, 7})
      .at(300, {0x11, 0, 0x04, 0x00, 0xff, 0xff})
      .at(338, {0x1a, 0, 3, 0, 0, 80, 0, 90, 0x01, 0xbb})
      .at(372, {1, 0})
      .text(380, "ext")
      .text(422, "prof")
      .at(460, {1, 0, 0, 0, 10, 0, 0, 1})
      .at(604, {0x1f, 0x90, 0x1f, 0x9a})
      .at(742, {0x13, 0, 60, 0})
      .at(748, {0x13, 0, 8, 0x15, 0})
      .at(790, {0xd7, 0, 0, 0, 6, 0})
      .at(796, {0x01, 0x18, 0, 0, 0x20, 0, 0x02, 0})
      .text(852, "tagged")
      .at(884, {12});
}
