#pragma once

/// The subcommand `check`: the mistakes in configuration text, with their places. Nothing is opened
/// but the files; with a filter it also asks what that filter holds.

extern const char kCheckUsage[];

/// 0 without errors, 1 with errors (or warnings, when they count), 2 for files that can't be read.
int runCheck(int argc, char** argv);
