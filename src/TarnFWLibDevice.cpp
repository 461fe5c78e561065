/// The flat functions of the direct requests.

#include <cerrno>

#include "TarnFWCallFrame.h"
#include "TarnFWIoctl.h"
#include "TarnSiIoctl.h"
#include "TarnWGTIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Runs a direct request. An exception is logged under the place of the call, where scripts that
/// read the log expect the device's file, and gives -1; `errno` stays as it was when the exception
/// was caught. `named` puts the function's name in front of the logged text.
template <typename Body>
int callDevice(const char* function, const char* file, bool named, Body&& body,
               int line = __builtin_LINE()) {
  try {
    return body();
  } catch (...) {
    const int error = errno;
    statusOfException({function, file, line}, named);
    errno = error;
  }
  return -1;
}

}  // namespace

extern "C" {

int FW_Ioctl(int request, void* argument) {
  return callDevice(__func__, "TarnFWIoctl", false,
                    [&] { return CTarnFWIoctl::GetInstance()->sendIoctl(request, argument); });
}

int WGT_Ioctl(int request, void* argument) {
  return callDevice(__func__, "TarnWGTIoctl", false,
                    [&] { return CTarnWGTIoctl::GetInstance()->sendIoctl(request, argument); });
}

int WGT_GetFd() {
  return callDevice(__func__, "TarnWGTIoctl", false,
                    [] { return CTarnWGTIoctl::GetInstance()->descriptor(); });
}

int SI_Ioctl(int request, void* argument) {
  return callDevice(__func__, "TarnSiIoctl", true, [&] {
    return TarnSi::CTarnSiIoctl::GetInstance()->sendIoctl(request, argument);
  });
}

}  // extern "C"
