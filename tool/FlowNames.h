#pragma once

/// Names of the host's databases for the numbers of a flow. The files are read once in a process:
/// each look-up of the C library reads them from the start.

#include <cstdint>
#include <span>

/// Name of a service by its port, of at most 31 characters, in the buffer; "Unknown" for a port
/// without one. `protocolName` is "tcp" or "udp". Gives the buffer.
const char* PortStr(const char* protocolName, std::uint16_t port, std::span<char> buffer);

/// The host's name of an IP protocol; null for a number without one.
const char* hostProtocolName(std::uint8_t number);

/// Name of an IP protocol, of at most 15 characters; "other(N)" for a number without one.
const char* protocolName(std::uint8_t number);
