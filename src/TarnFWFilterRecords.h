#pragma once

/// Records of the filters that programs make and remove. Integers in host order. Clear a record
/// (`FWFilterConfiguration_ record{}`) before you fill it.

#include <cstddef>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// A parameter of a filter, as its agent knows it by number.
struct FWFilterParameter_ {
  host32 number;   //  +0
  char text[256];  //  +4
};
static_assert(sizeof(FWFilterParameter_) == 260 && alignof(FWFilterParameter_) == 1);
static_assert(offsetof(FWFilterParameter_, text) == 4);

inline constexpr unsigned int kFilterParameters = 16;

/// A filter that is to be made. The parameter of number n stands in slot n.
struct FWFilterConfiguration_ {
  char agent[40];                                    //  +0
  host32 parameterCount;                             // +40
  host32 failPolicy;                                 // +44  0 or 1
  FWFilterParameter_ parameters[kFilterParameters];  // +48
};
static_assert(sizeof(FWFilterConfiguration_) == 4208 && alignof(FWFilterConfiguration_) == 1);
static_assert(offsetof(FWFilterConfiguration_, parameterCount) == 40 &&
              offsetof(FWFilterConfiguration_, failPolicy) == 44 &&
              offsetof(FWFilterConfiguration_, parameters) == 48);

/// The request that makes or removes a filter.
struct FWAddRemoveFilter_ {
  FWFilterConfiguration_ configuration;  //    +0
  host32 worldId;                        // +4208
  host32 filterIndex;                    // +4212
  char vnic[64];                         // +4216  vnic form
  host32 add;                            // +4280  1 make, 0 remove
};
static_assert(sizeof(FWAddRemoveFilter_) == 4284 && alignof(FWAddRemoveFilter_) == 1);
static_assert(offsetof(FWAddRemoveFilter_, worldId) == 4208 &&
              offsetof(FWAddRemoveFilter_, filterIndex) == 4212 &&
              offsetof(FWAddRemoveFilter_, vnic) == 4216 &&
              offsetof(FWAddRemoveFilter_, add) == 4280);

}  // namespace TarnFirewall
