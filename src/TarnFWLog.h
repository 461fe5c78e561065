#pragma once

/// Diagnostics and user output of the library.
///
/// Diagnostics go through `Logger` to the system log, or to a registered function. Debug lines are
/// guarded by the verbosity level of the code's component: the guard is one integer compare, made
/// before any argument is prepared. What a user is meant to read goes through the pretty printer
/// that the front end registers.

#include <syslog.h>

#include <atomic>
#include <cstdarg>
#include <cstddef>

#include "Locks.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Rows of the component table that are there from the start.
enum FWComponent_t : unsigned int {
  FW_COMPONENT_MISC = 0,
  FW_COMPONENT_API = 1,
  FW_COMPONENT_LIBRARY = 2,
  FW_COMPONENT_LEXER = 3,
  FW_COMPONENT_PARSER = 4,
  FW_COMPONENT_IO = 5,
  FW_COMPONENT_MSGBUF = 6,
  FW_COMPONENT_CMD = 7,
  FW_COMPONENT_ADDRESS = 8,
  FW_COMPONENT_RULE = 9,
  FW_COMPONENT_PROTOCOL = 10,
  FW_COMPONENT_UTIL = 11,
  FW_COMPONENT_PROTOBUF = 12,
  FW_COMPONENT_PLOY = 13,
  FW_COMPONENT_IPFIX = 14,
  FW_COMPONENT_FLOW = 15,
  FW_COMPONENT_FILTER = 16,
  FW_COMPONENT_TRIE = 17,
  FW_COMPONENT_CACHE = 18,
  FW_COMPONENT_PREDEFINED = 19,
  FW_COMPONENT_NOT_FOUND = 64,
  FW_COMPONENT_ALL = 255,
};

/// One row of the component table.
struct FWVerbose_ {
  std::uint32_t predefined;         // 1 in the predefined rows; nothing reads it
  std::atomic<std::int32_t> level;  // verbosity, 0 at start
  char name[16];                    // NUL-padded; never changes once the row is counted
};

inline constexpr unsigned int kComponentRows = 64;

/// Levels may be read and set by any thread at any time, without a lock: a level is only a dial. A
/// row is written before it is counted, under the mutex, so that a row below the count is whole.
extern FWVerbose_ g_tarnfw_verbose[kComponentRows];
extern std::atomic<unsigned int> g_tarnfw_max_component;
extern Locks::StaticMutex g_tarnfw_verbose_mutex;

/// Level of a row, for the guard of a debug line: one load.
[[gnu::always_inline]] inline std::int32_t verboseLevel(unsigned int component) {
  return g_tarnfw_verbose[component].level.load(std::memory_order_relaxed);
}

/// The library's component names as handlers read them on the command line.
inline constexpr unsigned int kHulldComponents = 19;
extern const char* const hulld_comp_name[kHulldComponents];

/// The kernel firewall's components, in the order of their numbers on the wire.
inline constexpr unsigned int kTarnComponents = 21;
extern const char* const tarn_comp_name[kTarnComponents];

struct FWLogger_ {
  FWLoggerFunction_t function;  // null when none is registered
  std::uint32_t base;
};

/// The registered logger. Any thread may replace it while others log: a reader gets a function and
/// the base that was registered with it, and takes no lock.
class FWLoggerPlace {
 public:
  FWLogger_ load() const;
  void store(FWLogger_ logger);

 private:
  std::atomic<std::uint32_t> version_{0};  // odd while a thread writes
  std::atomic<FWLoggerFunction_t> function_{nullptr};
  std::atomic<std::uint32_t> base_{0};
};
extern FWLoggerPlace gTarnFWLogger;

/// The one diagnostic call. `priority` is the system log's: 3 error, 4 warning, 6 info, 7 debug.
void Logger(int priority, const char* format, ...) __attribute__((format(printf, 2, 3)));
void vLogger(int priority, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));

/// Written under the lock; anyone may ask whether there is a printer.
extern FWPrettyPrinting_t g_tarnfw_pretty_printing;
extern void* g_tarnfw_pretty_printing_context;
extern Locks::StaticMutex g_tarnfw_pretty_printing_mutex;

/// Whether a printer is registered, without a lock: a command that has one takes the lock then.
inline bool hasPrinter() {
  return std::atomic_ref(g_tarnfw_pretty_printing).load(std::memory_order_relaxed) != nullptr;
}

/// Holds the printing mutex for the whole of one command's output.
///
///     if (PrettyPrinting out; out) out.print(out.context, "count: %u\n", count);
///
/// False when no printer is registered: the command then skips its output. A lock failure throws
/// `Locks::LockException`.
class PrettyPrinting {
 public:
  PrettyPrinting()
      : lock_(g_tarnfw_pretty_printing_mutex),
        print(g_tarnfw_pretty_printing),
        context(g_tarnfw_pretty_printing_context) {}
  explicit operator bool() const { return print != nullptr; }

 private:
  Locks::Guard lock_;

 public:
  const FWPrettyPrinting_t print;
  void* const context;
};

/// A file name without its ending, as log lines carry it, made by the compiler.
template <std::size_t N>
struct SourceName {
  char text[N]{};
  consteval SourceName(const char (&file)[N]) {  // NOLINT(google-explicit-constructor): a literal
    for (std::size_t i = 0; i < N && file[i] != '.'; ++i) text[i] = file[i];
  }
};

template <SourceName Name>
constexpr const char* sourceName() {
  return Name.text;
}

}  // namespace TarnFirewall

/// The file that log lines name. A source whose functions stood in another file before defines it
/// as that file's name ahead of its includes: scripts that read the log match the name.
#ifndef TARNFW_SOURCE
#define TARNFW_SOURCE __FILE_NAME__
#endif

/// Logs an unguarded line: the file, function and line stand in front of the text. `function`
/// stands in the line: where `__func__` says nothing that readers of the log know, another is
/// passed.
#define TARNFW_LOG_IN(function, priority, format, ...)                            \
  ::TarnFirewall::Logger((priority), "tarnfw: %s:%s():%d " format,                \
                         ::TarnFirewall::sourceName<TARNFW_SOURCE>(), (function), \
                         __LINE__ __VA_OPT__(, ) __VA_ARGS__)
#define TARNFW_LOG(priority, format, ...) \
  TARNFW_LOG_IN(__func__, priority, format __VA_OPT__(, ) __VA_ARGS__)
#define TARNFW_ERROR(format, ...) TARNFW_LOG(LOG_ERR, format __VA_OPT__(, ) __VA_ARGS__)
#define TARNFW_WARNING(format, ...) TARNFW_LOG(LOG_WARNING, format __VA_OPT__(, ) __VA_ARGS__)
#define TARNFW_INFO(format, ...) TARNFW_LOG(LOG_INFO, format __VA_OPT__(, ) __VA_ARGS__)

/// Logs a debug line when the component's level is above `above`: 0 for ordinary steps, 1 for
/// detail, 2 for dumps. Arguments are not evaluated otherwise. `function` stands in the line:
/// inside a lambda `__func__` says nothing, so the function around it is passed.
#define TARNFW_TRACE_IN(function, priority, component, above, format, ...)            \
  do {                                                                                \
    if (::TarnFirewall::verboseLevel(component) > (above)) {                          \
      ::TarnFirewall::Logger((priority), "tarnfw:%s %s:%s():%d " format,              \
                             ::TarnFirewall::g_tarnfw_verbose[component].name,        \
                             ::TarnFirewall::sourceName<TARNFW_SOURCE>(), (function), \
                             __LINE__ __VA_OPT__(, ) __VA_ARGS__);                    \
    }                                                                                 \
  } while (false)
#define TARNFW_TRACE_AT(priority, component, above, format, ...) \
  TARNFW_TRACE_IN(__func__, priority, component, above, format __VA_OPT__(, ) __VA_ARGS__)
#define TARNFW_TRACE(component, above, format, ...) \
  TARNFW_TRACE_AT(LOG_DEBUG, component, above, format __VA_OPT__(, ) __VA_ARGS__)
