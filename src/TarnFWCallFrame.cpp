#include "TarnFWCallFrame.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "TarnFWException.h"
#include "TarnFWLog.h"
#include "TarnFWStatus.h"

namespace TarnFirewall {

namespace {

/// A source's name without its folder and its ending, as log lines carry it. It stands in place: a
/// line must come out, and nothing may be thrown, when there is no memory left.
struct BareName {
  explicit BareName(const char* file) {
    const char* slash = std::strrchr(file, '/');
    const char* name = slash != nullptr ? slash + 1 : file;
    const std::size_t length = std::min(std::strcspn(name, "."), sizeof text - 1);
    std::memcpy(text, name, length);
    text[length] = '\0';
  }
  char text[64];
};

}  // namespace

void logEntry(const FWCallPlace& place) {
  Logger(LOG_DEBUG, "tarnfw:%s %s:%s():%d %s.\n", g_tarnfw_verbose[FW_COMPONENT_API].name,
         BareName(place.file).text, place.function, place.line, place.function);
}

void logExit(const FWCallPlace& place, FWStatus_t status) {
  Logger(LOG_DEBUG, "tarnfw:%s %s:%s():%d %s: %s\n", g_tarnfw_verbose[FW_COMPONENT_API].name,
         BareName(place.file).text, place.function, place.line, place.function, statusText(status));
}

FWStatus_t statusOfException(const FWCallPlace& place, bool named) {
  const BareName file(place.file);
  try {
    throw;
  } catch (const CTarnFWException& e) {
    Logger(LOG_WARNING, "tarnfw: %s:%s():%d %s%serror %d: %s\n", file.text, place.function,
           place.line, named ? place.function : "", named ? ": " : "", e.retcode(), e.what());
    return static_cast<FWStatus_t>(e.retcode());
  } catch (...) {
    Logger(LOG_WARNING, "tarnfw: %s:%s():%d %s: encountered internal error\n", file.text,
           place.function, place.line, place.function);
    return FW_STATUS_UNKNOWN_ERROR;
  }
}

}  // namespace TarnFirewall
