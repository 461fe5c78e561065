#include <vector>

#include "HandlerCommon.h"
#include "Handlers.h"

int GetFWConfig(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] =
      "Get rules, addrsets and containers of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
          USAGE_COMPONENT "    -i          : print summary info only\n" USAGE_HELP;
  const Usage usage(kUsage, cmd);

  // This walk is for -h and bad options only. Its -f takes no value, so that the filter's name is
  // an operand here, and a name joined to -f is a bad option. It works on a copy, since getopt
  // moves operands to the end, which would part -f from its value for the walks below.
  std::vector<char*> copy(argv, argv + argc + 1);
  Options options(argc, copy.data(), "hv::m:fi");
  for (int option; (option = options.next()) != -1;) {
    if (option == 'h') return usage(0);
    if (option == '?') return usage(1);
  }

  for (const auto handler : {GetFWRules, GetFWAddrSets, GetFWContainer}) {
    if (const int status = handler(cmd, argc, argv); status != 0) return status;
  }
  return 0;
}
