#pragma once

/// The filters of an agent, by name.

#include <string>
#include <vector>

/// In the kernel's order, each once. Throws `StateError` when they can't be listed, and when there
/// is none.
std::vector<std::string> filtersOfAgent(const std::string& agent);
