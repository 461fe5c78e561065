#pragma once

/// The control devices for the handlers that make direct requests:
///
///     directRequest(kFirewall, 35, name);                 the frame's status is not read
///     directRequest(kFirewall, 20, list, &status);        and here it is
///     directRequest(kTables, 6, entries);
///     directRequest(kInsertion, 12, {}, memoryOf(count));

#include "TarnFWDirectRequest.h"
#include "tarnfw.h"

/// What the status of a frame says before the call, for a request whose status decides: a kernel
/// that does not answer leaves it there.
inline constexpr std::uint32_t kNotAnswered = 0xbad0001;

inline constexpr TarnFirewall::FirewallDevice kFirewall(FW_Ioctl);
inline constexpr TarnFirewall::TableDevice kTables(WGT_Ioctl);
inline constexpr TarnFirewall::InsertionDevice kInsertion(SI_Ioctl);
