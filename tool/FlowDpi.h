#pragma once

/// What deep inspection says of flows. No command reads it yet, so that the text of every flow is
/// empty.

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

/// Texts by flow id, made at first use.
std::map<std::uint64_t, std::string>& attrmap();

/// The text of a flow, empty when there is none.
std::string DpiString(std::uint64_t flowId);

/// Takes the texts of up to `count` records: of 136 bytes each, a flow id in host order and a text.
/// No more are read than `records` holds.
void populateFlows(std::span<const std::byte> records, std::size_t count);

/// Turns the kernel's text into the one that prints. It changes nothing, and gives 1.
int getDPIString(bool whole, const char* text, std::string& result,
                 std::vector<std::uint32_t>& numbers, std::vector<std::string>& texts);
