#pragma once

/// Runs `tarnpolicy` up to its exit status: finds the subcommand, answers `--help` and `--version`,
/// and reports what a subcommand throws. No exception passes.

/// Exit status for a call that is wrong, for what can't be read or written, and for want of memory.
inline constexpr int kTroubleStatus = 2;

int runPolicyProgram(int argc, char** argv);
