// tarnlab log: what was asked of the devices, and what was answered.
#include <cstdio>

#include "LabDecode.h"
#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

int runLog(const Store& store, Arguments arguments) {
  bool withBytes = false;
  bool withRecords = false;
  bool shortened = false;
  bool withSystemLog = false;
  std::optional<unsigned long long> last;
  for (; !arguments.empty(); arguments = arguments.subspan(1)) {
    const std::string_view option = arguments[0];
    if (option == "-x") {
      withBytes = true;
    } else if (option == "-s") {
      shortened = true;
    } else if (option == "-l") {
      withSystemLog = true;
    } else if (option == "-v") {
      withRecords = true;
    } else if (option == "-n" && arguments.size() > 1) {
      last = parseNumber(arguments[1], 0xffffffff);
      if (!last) return misused("log", "bad number " + printable(arguments[1]));
      arguments = arguments.subspan(1);
    } else if (option == "-n") {
      return misused("log", "-n needs a number");
    } else {
      return misused("log", "unknown argument " + printable(option));
    }
  }
  requireLab(store);
  const Journal journal(store);
  const auto isShown = [&](const JournalEntry& entry) {
    return withSystemLog || entry.device != Device::systemLog;
  };
  unsigned long long skipped = 0;
  if (last) {
    unsigned long long total = 0;
    journal.read([&](const JournalEntry& entry) {
      total += isShown(entry);
      return true;
    });
    skipped = total > *last ? total - *last : 0;
  }
  journal.read([&](const JournalEntry& entry) {
    if (!isShown(entry)) return true;
    if (skipped > 0) {
      --skipped;
      return true;
    }
    std::puts((shortened ? decodeRequest(entry) : decodeEntry(entry)).c_str());
    if (withRecords) std::fputs(decodeRecords(entry).c_str(), stdout);
    if (withBytes) std::fputs(dumpEntry(entry).c_str(), stdout);
    return std::ferror(stdout) == 0;
  });
  return exitOk;
}

}  // namespace TarnLab
