#pragma once

/// tarnpolicy save: what a filter holds as configuration text.

inline constexpr char kSaveUsage[] =
    "Usage: tarnpolicy save -f FILTER [-o FILE] [--verify] [--partial]\n"
    "\n"
    "Prints what the filter holds as configuration text: address sets, attribute profiles, rule\n"
    "sets, their jumps and the root, always in the same order. A filter that holds nothing "
    "becomes\n"
    "the same by it. What the language can't say is named in the text and on standard error.\n"
    "\n"
    "  -f, --filter FILTER  the filter, e.g., nic-1002672-eth0-kelpco-sfw.2\n"
    "  -o, --output FILE    replaces the file; its earlier content is kept in FILE.old\n"
    "      --verify         loads the text in memory and compares every record with the kernel's\n"
    "      --partial        takes a text in which something is missing for good\n"
    "  -h, --help           this help message\n"
    "\n"
    "Exit status: 0 saved, 2 called wrongly or failed, 3 something is missing; a file is not\n"
    "written then.\n";

/// 0 when saved, 2 when a verification or a write failed, 3 when something can't be said. Throws
/// `CallError` and `StateError`.
int runSave(int argc, char** argv);
