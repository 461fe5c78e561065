#pragma once

/// Where a subcommand gets a policy from: a file, standard input or a filter.

#include <string>

#include "State.h"

/// The state of "filter:NAME", of standard input for "-", or of the file of this name. What the
/// text changes beside its state is named on standard error, since nothing compares it. Throws
/// `StateError`, and `CallError` for a filter's name that is empty or too long.
State stateOfSource(const std::string& source);
