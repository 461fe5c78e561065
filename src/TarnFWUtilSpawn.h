#pragma once

/// Starts programs in the host's way.

namespace TarnFirewall {

/// Starts the program at `path` with `arguments`, which end with a null and begin with the
/// program's name, and with three descriptors as its standard input, output and error. They must be
/// above these three. Returns 0 and stores the process's id, or the number of an error.
///
/// The host's own call does it, `RudderCompat_ForkExec`, where the process has it or the host has
/// its library; the system's call does it elsewhere.
int spawnOnHost(const char* path, char* const* arguments, const int (&descriptors)[3], int* pid);

}  // namespace TarnFirewall
