#pragma once

/// tarnpolicy apply: changes filters to what a text says, or leaves them as they are.

inline constexpr char kApplyUsage[] =
    "Usage: tarnpolicy apply -f FILTER... [OPTION]... FILE\n"
    "       tarnpolicy apply --agent NAME [OPTION]... FILE\n"
    "\n"
    "Changes filters to what FILE (or - for standard input) says: address sets, attribute\n"
    "profiles, rule sets, their jumps and the root. Only what differs is sent, in an order in "
    "which\n"
    "nothing refers to what is not there. When the kernel refuses a statement, or a signal comes,\n"
    "the filter gets its earlier state back.\n"
    "\n"
    "  -f, --filter FILTER    a filter, e.g., nic-1002672-eth0-kelpco-sfw.2; may be given again\n"
    "  -a, --agent NAME       all filters of this agent\n"
    "  -n, --dry-run          prints the statements and changes nothing\n"
    "  -c, --confirm SECONDS  undoes everything unless it is confirmed in time: by Enter, or by\n"
    "                         \"tarnpolicy confirm\" from elsewhere; also when this connection is\n"
    "                         lost\n"
    "      --partial          goes on where FILE has statements that are no part of a policy, and\n"
    "                         where a filter holds what no text can say and a file can't keep\n"
    "  -h, --help             this help message\n"
    "\n"
    "Exit status: 0 done, or nothing to do; 1 some filter failed, or the change was undone: these\n"
    "hold their earlier state; 2 called wrongly, or FILE or the host's filters can't be read;\n"
    "3 a filter holds a mixture: standard error says what to do.\n";

int runApply(int argc, char** argv);
