#pragma once

/// Differences as text: for people, as numbers, and for programs.

#include <cstdio>
#include <string>

#include "Diff.h"

/// Everything that differs, object by object: "-" for what is gone, "+" for what is new, "~" for
/// what is there in both and not the same. Empty where nothing differs.
std::string diffText(const StateDiff& diff);

/// A line for each object that differs, with the numbers of its differences, and a line for all.
std::string diffStatistics(const StateDiff& diff);

/// Writes a JSON object; docs/policy.md describes it.
void writeDiffJson(const StateDiff& diff, std::FILE* stream);
