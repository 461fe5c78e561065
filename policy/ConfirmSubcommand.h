#pragma once

/// tarnpolicy confirm: keeps what an apply has done that waits for it.

inline constexpr char kConfirmUsage[] =
    "Usage: tarnpolicy confirm [-f FILTER]\n"
    "\n"
    "Keeps what \"tarnpolicy apply --confirm\" has done, from another terminal or connection of "
    "the\n"
    "same user: first see that you can still get in, then confirm.\n"
    "\n"
    "  -f, --filter FILTER  the apply that has changed this filter; without it, the only one that\n"
    "                       waits\n"
    "  -h, --help           this help message\n"
    "\n"
    "Exit status: 0 confirmed, 1 nothing waits for it, 2 called wrongly or failed, also when\n"
    "several wait and -f is missing.\n";

int runConfirm(int argc, char** argv);
