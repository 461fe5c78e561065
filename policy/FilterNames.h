#pragma once

/// Filters by their names: one that the command line gives, and all of an agent.

#include <string>
#include <vector>

/// A filter's name as an option or operand gives it. Throws `CallError` for one that is empty or
/// too long.
std::string givenFilter(const char* text);

/// In the kernel's order, each once. Throws `StateError` when they can't be listed, and when there
/// is none.
std::vector<std::string> filtersOfAgent(const std::string& agent);
