#pragma once

/// Prints the text to standard error and aborts. For states that no input can cause.
[[noreturn]] void Panic(const char* format, ...) __attribute__((format(printf, 1, 2)));
