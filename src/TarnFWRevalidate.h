#pragma once

/// Applies the filter tables to virtual machines that run.

#include <cstdint>

#include "TarnFWUtilFile.h"

/// Sends the request for one machine, whose identifier has 16 bytes, on the descriptor of the table
/// device. A failure is logged.
UtilStatus_t RevalidateOneVM(int fd, std::uint32_t world, const std::uint8_t* uuid);

/// The same for all machines of the host, as its script lists them: a line each, with the world's
/// number and the identifier in gfy form after a colon. Lines without a colon are skipped. A line
/// that can't be read and a request that fails are logged and leave the machines after it alone.
UtilStatus_t RevalidateAllVMs(int fd);
