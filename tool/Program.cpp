#include "Program.h"

#include <new>

#include "CommandTable.h"
#include "HandlerCommon.h"

int runProgram(int argc, char** argv) {
  try {
    return runCommand(argc, argv);
  } catch (const std::bad_alloc&) {
    return error("ERROR: %s\n", FW_StatusToString(TarnFirewall::FW_STATUS_KERNEL_OUT_OF_MEMORY));
  } catch (...) {
    return error("ERROR: %s\n", FW_StatusToString(TarnFirewall::FW_STATUS_UNKNOWN_ERROR));
  }
}
