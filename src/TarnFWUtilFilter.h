#pragma once

/// Filters by their names on the command line.

#include <cstddef>

#include "TarnFWTypes.h"

/// Agent of a filter whose name has none.
inline constexpr char kDefaultAgent[] = "kelpco-sfw";

/// Characters of a filter's or an agent's name on the command line.
inline constexpr std::size_t kMaxName = 99;

/// Writes the agent of a filter name, at most 98 characters, into a buffer of at least 99 bytes.
/// Returns 0; or 1 when the name has none, and the buffer is then as it was, except for the filter
/// of shared address sets, which leaves it empty.
int GetAgentFromFilterName(const char* name, char* agent);

/// Fills the selector of a filter by its name, as every program of the host does: a name with an
/// agent selects a filter, any other a vif, beside the default agent. False, with nothing written,
/// for a name of more than `kMaxName` characters.
bool selectFilter(const char* name, TarnFirewall::dvs_port_* port);
