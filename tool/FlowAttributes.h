#pragma once

/// The attributes that follow a flow, as text.

#include <cstddef>
#include <span>
#include <string>

/// Appends " attr: " and `count` attributes, separated by ","; nothing when `count` is 0. They end
/// at the first one whose length does not fit into `bytes`, with a line in the log.
void appendAttributes(std::string& text, std::span<const std::byte> bytes, unsigned int count);
