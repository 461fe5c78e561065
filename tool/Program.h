#pragma once

/// Runs one command as the program does, up to its exit status. No exception passes: memory that
/// runs out outside the library's functions ends with an error line and 1, as every failure does
/// that has no status of its own.
int runProgram(int argc, char** argv);
