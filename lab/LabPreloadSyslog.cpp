// The part of the preload library that keeps what programs write to the system log in the lab's log
// as well, in order with their requests. The C library gets every call all the same.
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <span>
#include <string>

#include "LabJournal.h"
#include "LabPreloadNext.h"
#include "LabUndisturbed.h"

using TarnLab::Next;

namespace {

constinit Next<void(const char*, int, int)> nextOpenlog("openlog");
constinit Next<void()> nextCloselog("closelog");
constinit Next<void(int, const char*, va_list)> nextVsyslog("vsyslog");
constinit Next<void(int, int, const char*, va_list)> nextVsyslogChk("__vsyslog_chk");

/// As the C library keeps them: the program's own text, which it may change, or null for its name.
std::atomic<const char*> ident{nullptr};
std::atomic<int> facility{LOG_USER};

/// The text of a message, cut where it gets too long for a line of a log.
[[gnu::format(printf, 1, 0)]] std::string textOf(const char* format, va_list arguments, int error) {
  constexpr int most = 1 << 16;
  va_list again;
  va_copy(again, arguments);
  errno = error;  // for %m
  const int length = std::min(std::vsnprintf(nullptr, 0, format, arguments), most);
  std::string text(static_cast<std::size_t>(std::max(length, 0)) + 1, '\0');
  errno = error;
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  text.pop_back();
  return text;
}

/// Keeps a message, unless the program's mask holds it back. Leaves errno as it is.
[[gnu::format(printf, 2, 0)]] void keep(int priority, const char* format, va_list arguments) {
  const int error = errno;
  try {
    if ((::setlogmask(0) & LOG_MASK(LOG_PRI(priority))) != 0) {
      const char* name = ident.load(std::memory_order_relaxed);
      const bool own = (priority & LOG_FACMASK) != 0;
      TarnLab::JournalEntry entry;
      entry.stamp();
      entry.device = TarnLab::Device::systemLog;
      entry.request = static_cast<std::uint32_t>(own ? priority : priority | facility.load());
      entry.note = name != nullptr ? name : ::program_invocation_short_name;
      const std::string text = textOf(format, arguments, error);
      const auto bytes = std::as_bytes(std::span(text));
      entry.size = bytes.size();
      entry.sent = TarnLab::JournalEntry::kept(bytes);
      const TarnLab::Undisturbed undisturbed;
      const TarnLab::Store store(TarnLab::Store::defaultFolder());
      if (store.exists()) {
        const TarnLab::StoreLock lock(store);
        TarnLab::Journal(store).append(entry);
      }
    }
  } catch (const std::exception&) {
    // The system's own log still gets it.
  }
  errno = error;
}

}  // namespace

TARNLAB_EXPORT void openlog(const char* name, int option, int wanted) {
  ident.store(name, std::memory_order_relaxed);
  if (wanted != 0 && (wanted & ~LOG_FACMASK) == 0) facility.store(wanted);
  nextOpenlog.get()(name, option, wanted);
}

TARNLAB_EXPORT void closelog() {
  ident.store(nullptr, std::memory_order_relaxed);
  nextCloselog.get()();
}

TARNLAB_EXPORT void vsyslog(int priority, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));
TARNLAB_EXPORT void vsyslog(int priority, const char* format, va_list arguments) {
  va_list copy;
  va_copy(copy, arguments);
  keep(priority, format, copy);
  va_end(copy);
  nextVsyslog.get()(priority, format, arguments);
}

TARNLAB_EXPORT void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  vsyslog(priority, format, arguments);
  va_end(arguments);
}

// What the two become in a program that is built with checks.

TARNLAB_EXPORT void __vsyslog_chk(int priority, int flag, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));
TARNLAB_EXPORT void __vsyslog_chk(int priority, int flag, const char* format, va_list arguments) {
  va_list copy;
  va_copy(copy, arguments);
  keep(priority, format, copy);
  va_end(copy);
  nextVsyslogChk.get()(priority, flag, format, arguments);
}

TARNLAB_EXPORT void __syslog_chk(int priority, int flag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
TARNLAB_EXPORT void __syslog_chk(int priority, int flag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  __vsyslog_chk(priority, flag, format, arguments);
  va_end(arguments);
}
