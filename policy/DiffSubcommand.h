#pragma once

/// tarnpolicy diff: in what two policies differ.

inline constexpr char kDiffUsage[] =
    "Usage: tarnpolicy diff [--stat | --json] A B\n"
    "\n"
    "Shows what would have to change for A to become B. Each is a file with configuration text, -\n"
    "for standard input, or filter:NAME for what a filter holds. Sets are compared by their "
    "members,\n"
    "rules by their ids; the order of rules counts, their positions by themselves do not. "
    "Statements\n"
    "of a text count whatever filter they name.\n"
    "\n"
    "      --stat  shows the numbers of differences\n"
    "      --json  shows the differences as a JSON object\n"
    "  -h, --help  this help message\n"
    "\n"
    "Exit status: 0 no difference, 1 they differ, 2 called wrongly or failed.\n";

/// 0 without differences, 1 with some. Throws `CallError` and `StateError`.
int runDiff(int argc, char** argv);
