#pragma once

/// Addresses as text. Lists of flows have hundreds of thousands of them, so nothing here goes
/// through a format.

#include <cstdint>
#include <string>

/// As `inet_ntop` writes them.
void appendAddress(std::string& text, const std::uint8_t (&ipv4)[4]);
void appendAddress(std::string& text, const std::uint8_t (&ipv6)[16]);

/// "02:00:00:00:00:0a"
void appendMac(std::string& text, const std::uint8_t (&mac)[6]);
