// The memory of the program whose request is answered, reached as a kernel reaches it: a bad
// address is an error and no crash.
#ifndef TARNLAB_CALLER_MEMORY_H
#define TARNLAB_CALLER_MEMORY_H

#include <cstdint>

#include "LabBytes.h"

namespace TarnLab {

/// Copies from an address of this process; false when it cannot be read whole.
bool readCaller(std::uint64_t address, Bytes into);

/// Copies to an address of this process; false when it cannot be written whole. A part of it may
/// have been written then.
bool writeCaller(std::uint64_t address, ConstBytes from);

}  // namespace TarnLab

#endif
