// The program tarnlab: what its commands share.
#ifndef TARNLAB_PROGRAM_H
#define TARNLAB_PROGRAM_H

#include <span>
#include <string>
#include <string_view>

#include "LabStore.h"

namespace TarnLab {

using Arguments = std::span<char* const>;

/// Exit statuses. "run" and "shell" end with that of the program they ran.
inline constexpr int exitOk = 0, exitFailed = 1, exitUsage = 2;
inline constexpr int exitRunFailed = 125, exitCannotRun = 126, exitNotFound = 127;

struct ProgramCommand {
  std::string_view name;
  std::string_view summary;
  std::string_view help;
  int (*run)(const Store& store, Arguments arguments);
};

int runInit(const Store& store, Arguments arguments);
int runRun(const Store& store, Arguments arguments);
int runShell(const Store& store, Arguments arguments);
int runReset(const Store& store, Arguments arguments);
int runMachines(const Store& store, Arguments arguments);
int runShow(const Store& store, Arguments arguments);
int runLog(const Store& store, Arguments arguments);
int runFault(const Store& store, Arguments arguments);

/// "tarnlab: " and the message to standard error.
void complain(const std::string& message);

/// Puts something in the place of a standard stream that is closed, so that no file of the lab gets
/// its number; what reads or writes it fails, and a program that is run finds it closed. From here
/// on the first failure to write standard output is remembered.
void prepareStreams();

/// Writes out what standard output holds. The text of the first failure to write it; empty when all
/// of it went out.
std::string finishOutput();

/// Complains about a command's options, points at its help, and gives the exit status for that.
int misused(std::string_view command, const std::string& message);

/// Throws StoreError, with advice, when there is no lab.
void requireLab(const Store& store);

}  // namespace TarnLab

#endif
