// The program tarnlab: makes a lab, runs programs in it, shows what happened there.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr ProgramCommand commands[] = {
    {"init", "make a lab: a fresh host with a few machines and their filters",
     "Usage: tarnlab init [--machines N] [--memory BYTES] [--flows N]\n"
     "                    [--firewall-off] [--bare]\n"
     "\n"
     "Makes a lab in the folder that TARNLAB_HOME names, by default .tarnlab in the\n"
     "current folder. There must be none yet: \"tarnlab reset\" makes one fresh again.\n"
     "\n"
     "  --machines N    a host of N like machines (1 to 100000) in place of the usual one\n"
     "  --memory BYTES  the largest rule set or address set that the host has memory for;\n"
     "                  1073741824 without this option\n"
     "  --flows N       N flows in every filter (0 to 1000000, 10000000 in all); without it,\n"
     "                  some hundred in the usual host's and none in those of --machines\n"
     "  --firewall-off  a host whose distributed firewall is disabled: its include table\n"
     "                  does not have every virtual NIC\n"
     "  --bare          machines only, without agents and filters\n"
     "  --help          this text\n",
     runInit},
    {"run", "run a program in the lab",
     "Usage: tarnlab run COMMAND [ARGUMENT...]\n"
     "\n"
     "Runs the program, and all programs that it starts, with the lab in the place of the\n"
     "control devices. Ends with the program's exit status, with 127 when there is no such\n"
     "program, 126 when it cannot be run, 125 when there is no lab.\n"
     "\n"
     "  --help          this text\n",
     runRun},
    {"shell", "start a shell in the lab",
     "Usage: tarnlab shell\n"
     "\n"
     "Starts the shell that SHELL names, by default /bin/sh, in the lab.\n"
     "\n"
     "  --help          this text\n",
     runShell},
    {"reset", "make the lab's host fresh again",
     "Usage: tarnlab reset\n"
     "\n"
     "Forgets all rule sets, address sets, settings, faults and the log. Agents, their tables\n"
     "and filters are again those that the lab was made with.\n"
     "\n"
     "  --help          this text\n",
     runReset},
    {"machines", "list the machines of the host",
     "Usage: tarnlab machines\n"
     "\n"
     "Lists the machines of the host, each with its world id and its uuid. A program that is\n"
     "run in the lab gets this list from /bin/tarn_vm_list.sh.\n"
     "\n"
     "  --help          this text\n",
     runMachines},
    {"show", "show what the host holds",
     "Usage: tarnlab show [FILTER]\n"
     "       tarnlab show --rules FILTER [RULESET]\n"
     "       tarnlab show --addrsets FILTER [ADDRSET]\n"
     "       tarnlab show --tables [FILTER|AGENT [TABLE]]\n"
     "       tarnlab show --peers\n"
     "\n"
     "Shows the host's agents and filters, what each of these holds, and the faults in force;\n"
     "with a FILTER, that one only. An agent's shared address sets are shown and named as the\n"
     "filter shared-addrset-filter-AGENT.\n"
     "\n"
     "  --rules         the rules of every rule set, or of the one, as the configuration\n"
     "                  language writes them\n"
     "  --addrsets      the addresses and elements of every address set and container, or\n"
     "                  of the one\n"
     "  --tables        what the filter has learnt or was given, table by table, or of the one:\n"
     "                  attributes, inspections, discovered, names, service-profile, users; of an\n"
     "                  agent, the tables include and exclude; of nothing, those of the host\n"
     "  --peers         what the host daemon and the inspection process are set to, how they\n"
     "                  fail, and the host's files\n"
     "  --help          this text\n",
     runShow},
    {"log", "show what was asked of the devices and peers",
     "Usage: tarnlab log [-s] [-l] [-v] [-x] [-n N]\n"
     "\n"
     "Shows every message, direct request and exchange with a peer so far, one line each: when,\n"
     "which program, device and request number, what was asked, and the answer.\n"
     "\n"
     "  -s              short: without when and which program\n"
     "  -l              with what programs wrote to the system log, in order with the rest\n"
     "  -v              with the rules, addresses, elements and names in it\n"
     "  -x              with the bytes that were sent and answered\n"
     "  -n N            only the last N\n"
     "  --help          this text\n",
     runLog},
    {"fault", "order failures, or list or clear them",
     "Usage: tarnlab fault\n"
     "       tarnlab fault status S [--after N] [--count N] [--only COMMAND]\n"
     "       tarnlab fault errno E [--after N] [--count N] [--only REQUEST]\n"
     "                     [--device DEVICE]\n"
     "       tarnlab fault delay MS [--after N] [--count N]\n"
     "       tarnlab fault signal SIGNAL [--after N] [--count N]\n"
     "       tarnlab fault absent [DEVICE...]\n"
     "       tarnlab fault peer WHAT [VALUE] [--count N] [--peer PEER]\n"
     "       tarnlab fault clear\n"
     "\n"
     "Without an argument, lists the faults in force. Otherwise:\n"
     "\n"
     "  status S        messages are not carried out but answered with status S, a number or\n"
     "                  a name like no-ruleset\n"
     "  errno E         requests fail with the errno E, a number or a name like ENOMEM\n"
     "  delay MS        requests are held up for so many milliseconds\n"
     "  signal SIGNAL   programs get the signal with the answer to a request, a number or a\n"
     "                  name like SIGINT\n"
     "  absent          the devices cannot be opened; without a DEVICE, the firewall\n"
     "  peer WHAT       the processes that programs talk to over sockets: absent, refuse, close\n"
     "                  (at once), cut BYTES (of the answer), slow MS, bytes (one by one),\n"
     "                  length [+-]N (announced), unterminated, silent, endless\n"
     "  clear           no faults from now on\n"
     "  --after N       lets N of those that it is for pass first\n"
     "  --count N       only the next N; without it, until cleared\n"
     "  --only COMMAND  only messages with this command, by name or number\n"
     "  --only REQUEST  only this request number\n"
     "  --device DEVICE firewall, tables or insertion\n"
     "  --peer PEER     trace or inspection; without it, both\n"
     "  --help          this text\n",
     runFault},
};

void printUsage(std::FILE* stream) {
  std::fputs(
      "Usage: tarnlab [--home FOLDER] COMMAND [ARGUMENT...]\n"
      "\n"
      "A model of the kernel firewall for programs that are run in it.\n"
      "\n",
      stream);
  for (const ProgramCommand& command : commands) {
    std::fprintf(stream, "  %-8s %s\n", std::string(command.name).c_str(),
                 std::string(command.summary).c_str());
  }
  std::fputs(
      "\n"
      "  --home FOLDER  the lab's folder; without it the one that TARNLAB_HOME names, or\n"
      "                 .tarnlab in the current folder\n"
      "  --help         this text; \"tarnlab COMMAND --help\" tells more\n",
      stream);
}

}  // namespace

void complain(const std::string& message) {
  std::fprintf(stderr, "tarnlab: %s\n", message.c_str());
}

int misused(std::string_view command, const std::string& message) {
  complain(std::string(command) + ": " + message);
  std::fprintf(stderr, "Try \"tarnlab %s --help\".\n", std::string(command).c_str());
  return exitUsage;
}

void requireLab(const Store& store) {
  if (!store.exists()) {
    throw std::runtime_error("no lab at " + store.folder() + ": make one with \"tarnlab init\"");
  }
}

namespace {

/// Whether the help of a command is wanted. After "run" only the first argument is tarnlab's own:
/// the program that is run has options too.
bool asksForHelp(const ProgramCommand& command, Arguments arguments) {
  if (command.run == runRun)
    arguments = arguments.first(std::min<std::size_t>(arguments.size(), 1));
  return std::any_of(arguments.begin(), arguments.end(), [](std::string_view argument) {
    return argument == "--help" || argument == "-h";
  });
}

int main(Arguments arguments) {
  std::string folder = Store::defaultFolder();
  arguments = arguments.subspan(arguments.empty() ? 0 : 1);
  while (!arguments.empty() && arguments[0][0] == '-') {
    const std::string_view option = arguments[0];
    if (option == "--help" || option == "-h") {
      printUsage(stdout);
      return exitOk;
    }
    if (option != "--home" || arguments.size() < 2 || *arguments[1] == '\0') {
      complain(option == "--home" ? "--home needs a folder"
                                  : "unknown option " + std::string(option));
      printUsage(stderr);
      return exitUsage;
    }
    folder = arguments[1];
    arguments = arguments.subspan(2);
  }
  if (arguments.empty()) {
    complain("a command is missing");
    printUsage(stderr);
    return exitUsage;
  }
  const std::string_view name = arguments[0];
  for (const ProgramCommand& command : commands) {
    if (command.name != name) continue;
    arguments = arguments.subspan(1);
    if (asksForHelp(command, arguments)) {
      std::fwrite(command.help.data(), 1, command.help.size(), stdout);
      return exitOk;
    }
    try {
      return command.run(Store(folder), arguments);
    } catch (const std::exception& failure) {
      complain(failure.what());
      return command.run == runRun || command.run == runShell ? exitRunFailed : exitFailed;
    }
  }
  complain("unknown command " + printable(name));
  printUsage(stderr);
  return exitUsage;
}

}  // namespace

}  // namespace TarnLab

int main(int argc, char** argv) {
  TarnLab::prepareStreams();
  const int status = TarnLab::main({argv, static_cast<std::size_t>(argc)});
  // Output that is lost, as on a full disk, is no success.
  const std::string lost = TarnLab::finishOutput();
  if (lost.empty()) return status;
  TarnLab::complain("failed to write output: " + lost);
  return status != 0 ? status : TarnLab::exitFailed;
}
