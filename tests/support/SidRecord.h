#pragma once

#include <cstdint>

#include "TarnFWIdentityRecords.h"

/// The record of S-1-5-21-`last`.
inline TarnFirewall::fwattr_sid sid(std::uint32_t last) {
  TarnFirewall::fwattr_sid record{};
  record.revision = 1;
  record.count = 2;
  record.authority[5] = 5;
  record.subAuthorities[0] = 21;
  record.subAuthorities[1] = last;
  return record;
}
