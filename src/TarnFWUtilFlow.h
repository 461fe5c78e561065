#pragma once

/// Words of flows that more than one printer has.

#include <cstdint>
#include <span>

/// What an application layer gateway says of a flow, as text after a blank: " alg ctrl(FTP) 21" of
/// a control connection, " alg data(FTP) 2020 4d2" of a data connection with the flow id of its
/// control connection; empty for any other flow. A text that does not fit is cut.
void StateAlgStr(std::uint8_t flowType, std::uint8_t algType, std::uint16_t port,
                 std::uint64_t controlId, std::span<char> buffer);
