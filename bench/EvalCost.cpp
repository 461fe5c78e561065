// eval_cost COUNT TEXT: loads a configuration and evaluates it COUNT times after the first, with a
// channel that takes the messages and answers success, as for many filters. Prints the milliseconds
// of user and system time that each of them took. eval-cost runs it.

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>

#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

FWStatus_t begin(void*, void** context) {
  *context = nullptr;
  return 0;
}
void end(void*) {}
FWStatus_t take(void*, void*, unsigned int, void*) { return 0; }

bool check(const char* what, FWStatus_t status) {
  if (status != 0) std::fprintf(stderr, "eval_cost: %s: %s\n", what, FW_StatusToString(status));
  return status == 0;
}

double milliseconds(const timeval& time) {
  return 1000.0 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1000.0;
}

double spent() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

}  // namespace

extern "C" {

/// What eval-cost counts the instructions of.
__attribute__((noinline)) FWStatus_t evaluateAgain(fwlibhandle_* library, fwconfigfile_* config,
                                                   unsigned long times) {
  FWStatus_t status = 0;
  for (unsigned long i = 0; i < times && status == 0; ++i)
    status = FW_EvaluateConfigFile(library, config, nullptr, nullptr);
  return status;
}

}  // extern "C"

int main(int count, char** arguments) {
  const unsigned long times = count == 3 ? std::strtoul(arguments[1], nullptr, 10) : 0;
  if (times == 0) {
    std::fprintf(stderr, "usage: eval_cost COUNT TEXT\n");
    return 2;
  }
  const FWLibGenericIO_ kernel = {begin, end, take, nullptr};
  const char* items[] = {"FWIOGenericIO", reinterpret_cast<const char*>(&kernel)};
  int reserved = 0;
  fwlibhandle_* library = nullptr;
  fwconfigfile_* config = nullptr;
  if (!check("channel",
             FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_GENERIC, 2, items, &library)) ||
      !check("load", FW_LoadConfigFile(arguments[2], &library, &config)) ||
      !check("evaluate", FW_EvaluateConfigFile(library, config, nullptr, nullptr))) {
    return 1;
  }
  const double before = spent();
  if (!check("evaluate again", evaluateAgain(library, config, times))) return 1;
  std::printf("%.3f\n", (spent() - before) / static_cast<double>(times));
  return check("free", FW_FreeConfigFile(config)) ? 0 : 1;
}
