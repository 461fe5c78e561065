#include "PolicyProgram.h"

#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "Options.h"
#include "ShownText.h"
#include "Subcommand.h"

namespace {

/// Bytes of a message about a word of the call.
constexpr std::size_t kLongestCallError = 200;

void printUsage(std::FILE* stream) {
  std::fputs(
      "Usage: tarnpolicy SUBCOMMAND ...\n"
      "       tarnpolicy [SUBCOMMAND] --help\n"
      "       tarnpolicy [SUBCOMMAND] --version\n"
      "\n",
      stream);
  for (const Subcommand& subcommand : subcommands()) {
    if (subcommand.run == nullptr) continue;
    std::fprintf(stream, "  %-8s %s\n", subcommand.name, subcommand.summary);
  }
}

int printVersion() {
  std::puts("tarnpolicy " TARNFW_BUILD);
  return 0;
}

int callWithoutSubcommand(const std::string& problem) {
  std::fprintf(stderr, "tarnpolicy: %s\n", shownLine(problem, kLongestCallError).c_str());
  printUsage(stderr);
  return kTroubleStatus;
}

int runSubcommand(const Subcommand& subcommand, int argc, char** argv) {
  try {
    return subcommand.run(argc, argv);
  } catch (const HelpWanted&) {
    std::fputs(subcommand.usage, stdout);
    return 0;
  } catch (const VersionWanted&) {
    return printVersion();
  } catch (const CallError& e) {
    std::fprintf(stderr,
                 "tarnpolicy %s: %s\n"
                 "Its usage is shown by: tarnpolicy %s --help\n",
                 subcommand.name, shownLine(e.what(), kLongestCallError).c_str(), subcommand.name);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "tarnpolicy %s: out of memory\n", subcommand.name);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tarnpolicy %s: %s\n", subcommand.name,
                 shownLine(e.what(), kLongestMessage).c_str());
  }
  return kTroubleStatus;
}

}  // namespace

int runPolicyProgram(int argc, char** argv) {
  if (argc < 2) return callWithoutSubcommand("a subcommand is missing");
  const std::string_view word = argv[1];
  if (word == "--help" || word == "-h") {
    printUsage(stdout);
    return 0;
  }
  if (word == "--version") return printVersion();
  const Subcommand* subcommand = findSubcommand(word);
  if (subcommand == nullptr) return callWithoutSubcommand(std::string("no subcommand ") + argv[1]);
  if (subcommand->run == nullptr) {
    return callWithoutSubcommand(std::string("this version does not have the subcommand ") +
                                 argv[1]);
  }
  return runSubcommand(*subcommand, argc - 1, argv + 1);
}
