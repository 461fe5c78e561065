/// The flat functions of logging, components and printing.

#define TARNFW_SOURCE "TarnFWLibMain.cpp"

#include <strings.h>

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Rows in use. What is read of a row below the count has been written before.
unsigned int componentCount() { return g_tarnfw_max_component.load(std::memory_order_acquire); }

}  // namespace

extern "C" {

void FW_RegisterLogger(FWLoggerFunction_t function, unsigned int base) {
  gTarnFWLogger.store({function, base});
}

void FW_UnregisterLogger() { gTarnFWLogger.store({nullptr, 0}); }

FWStatus_t FW_Log(int level, unsigned int component, const char* format, ...) {
  if (format == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  const char* word = nullptr;
  switch (level) {
    case LOG_ERR:
      word = "ERROR";
      break;
    case LOG_WARNING:
      word = "WARN";
      break;
    case LOG_INFO:
      word = "INFO";
      break;
    case LOG_DEBUG:
      word = "DEBUG";
      break;
    default:
      TARNFW_ERROR("invalid log level %d\n", level);
      return FW_STATUS_INVALID_ARGUMENT;
  }
  if (component >= componentCount()) {
    TARNFW_ERROR("invalid log component %u\n", component);
    return FW_STATUS_INVALID_ARGUMENT;
  }
  // The component's name stands inside the new format, so a percent sign in it is doubled.
  char name[2 * sizeof g_tarnfw_verbose[0].name];
  char* end = name;
  for (const char* c = g_tarnfw_verbose[component].name; *c != '\0'; ++c) {
    *end++ = *c;
    if (*c == '%') *end++ = '%';
  }
  *end = '\0';
  // The new format stands on the stack, so that a line still comes out without memory. A long one
  // would overflow it.
  char local[1024];
  std::unique_ptr<char[]> large;
  char* composed = local;
  const std::size_t size = std::strlen(format) + sizeof name + sizeof "[DEBUG()] \n";
  if (size > sizeof local) {
    large.reset(new (std::nothrow) char[size]);
    if (large == nullptr) return FW_STATUS_OUT_OF_MEMORY;
    composed = large.get();
  }
  std::snprintf(composed, size, "[%s(%s)] %s\n", word, name, format);
  va_list arguments;
  va_start(arguments, format);
  // The caller's format was checked where FW_Log was called; only a literal frame was added to it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  vLogger(level, composed, arguments);
#pragma GCC diagnostic pop
  va_end(arguments);
  return FW_STATUS_OK;
}

const char* FW_ComponentToString(unsigned int component) {
  if (component == FW_COMPONENT_ALL) return "all";
  if (component >= componentCount()) return "unknown";
  return g_tarnfw_verbose[component].name;
}

unsigned int FW_StringToComponent(const char* name) {
  if (name == nullptr) return FW_COMPONENT_NOT_FOUND;
  const unsigned int count = componentCount();
  for (unsigned int row = 0; row < count; ++row) {
    if (strcasecmp(g_tarnfw_verbose[row].name, name) == 0) return row;
  }
  return FW_COMPONENT_NOT_FOUND;
}

unsigned int FW_GetComponentCount() { return componentCount(); }

FWStatus_t FW_RegisterComponent(const char* name, unsigned int* component) {
  if (name == nullptr || component == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  const std::size_t length = std::strlen(name);
  if (length >= sizeof g_tarnfw_verbose[0].name) return FW_STATUS_INVALID_ARGUMENT;
  try {
    const Locks::Guard lock(g_tarnfw_verbose_mutex);
    const unsigned int row = componentCount();
    if (row >= kComponentRows) return FW_STATUS_REACHED_MAXIMAL_COMPONENTS;
    std::memcpy(g_tarnfw_verbose[row].name, name, length + 1);
    *component = row;
    g_tarnfw_max_component.store(row + 1, std::memory_order_release);
    return FW_STATUS_OK;
  } catch (...) {
    TARNFW_WARNING("%s: encountered internal error\n", __func__);
    return FW_STATUS_UNKNOWN_ERROR;
  }
}

FWStatus_t FW_UnregisterComponent(unsigned int) { return FW_STATUS_NOT_SUPPORTED; }

FWStatus_t FW_GetLibVerboseLevel(unsigned int component, unsigned int* level) {
  if (component >= componentCount()) {
    TARNFW_WARNING("attempting to get verbose level of unknown component %u\n", component);
    return FW_STATUS_COMPONENT_NOT_FOUND;
  }
  if (level == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  const std::int32_t found = verboseLevel(component);
  *level = static_cast<unsigned int>(found);
  TARNFW_TRACE(FW_COMPONENT_API, 0, "got component %u (%s) log level %d\n", component,
               g_tarnfw_verbose[component].name, found);
  return FW_STATUS_OK;
}

void FW_SetLibVerboseLevel(unsigned int component, unsigned int level) {
  const unsigned int count = componentCount();
  unsigned int first = component;
  unsigned int last = component;
  if (component == FW_COMPONENT_ALL) {
    first = 0;
    last = count - 1;
  } else if (component >= count) {
    TARNFW_WARNING("attempting to set verbose level of unknown component %u\n", component);
    return;
  }
  for (unsigned int row = first; row <= last; ++row) {
    const auto set = static_cast<std::int32_t>(level);
    g_tarnfw_verbose[row].level.store(set, std::memory_order_relaxed);
    TARNFW_TRACE(FW_COMPONENT_API, 0, "set component %s log level to %d\n",
                 g_tarnfw_verbose[row].name, set);
  }
}

void FW_SetLibPrettyPrinting(FWPrettyPrinting_t function, void* context) {
  try {
    const Locks::Guard lock(g_tarnfw_pretty_printing_mutex);
    std::atomic_ref(g_tarnfw_pretty_printing).store(function, std::memory_order_relaxed);
    g_tarnfw_pretty_printing_context = context;
  } catch (...) {
    TARNFW_WARNING("%s: encountered internal error\n", __func__);
  }
}

}  // extern "C"
