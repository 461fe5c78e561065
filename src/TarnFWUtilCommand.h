#pragma once

/// External commands of the host.

#include "TarnFWUtilFile.h"

/// Runs the program at `path` with `arguments` (its name, then the others, then a null), writes
/// `input` to its standard input and closes that, and waits for its end.
///
/// `output`, when it is not null, gets what the program writes to standard output, as text:
/// `*outputLength` is the buffer's size before, and the bytes that were read after. Text that is
/// longer is cut, with the terminator in the buffer's last byte, which is counted then.
/// `errorOutput` gets at most `*errorLength` bytes of standard error, without a terminator. The
/// rest of both is read and thrown away, so that the program doesn't wait for somebody to read it.
///
/// With an output buffer and a `timeout`, a program that writes nothing to standard output and does
/// not end for so many seconds is sent signal 15. One that ignores it is waited for.
///
/// Fails when the program can't be started, which is logged, and in no other case: its exit status
/// is not looked at.
UtilStatus_t RunCommandWithTimeout(const char* path, char* const* arguments, char* output,
                                   int* outputLength, char* errorOutput, int* errorLength,
                                   const char* input, int inputLength, unsigned int timeout);

/// The same without a timeout.
UtilStatus_t RunCommand(const char* path, char* const* arguments, char* output, int* outputLength,
                        char* errorOutput, int* errorLength, const char* input, int inputLength);
