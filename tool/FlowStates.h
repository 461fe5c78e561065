#pragma once

/// Words for the numbers of a flow: its kind, direction, states and flags.

#include <cstdint>
#include <span>
#include <string>

#include "TarnFWFlowRecords.h"

/// True for the kinds of flows that have addresses of layer 2 only.
bool isLayer2(std::uint8_t kind);

const char* kindName(std::uint8_t kind);
const char* directionName(std::uint8_t direction);

/// The pair of state numbers; nothing for a kind without a state.
void appendStates(std::string& text, const TarnFirewall::FWFlowRecord_& flow);

/// "(blocked,S,est)" by the bits; nothing for a kind without a state and when no bit is set.
void appendFlags(std::string& text, const TarnFirewall::FWFlowRecord_& flow);

/// Name of a TCP state. That of a number without one is made in the buffer, of 16 bytes.
const char* TCPStateStr(std::uint16_t state, std::span<char> buffer);
