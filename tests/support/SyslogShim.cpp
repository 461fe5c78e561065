// A library to preload: what a program sends to the system log goes to the file that SYSLOG_FILE
// names instead, one line each with the line ends inside it as "\n":
//
//     tarnioctl <83> tarnfw: TarnFWIoctl:sendIoctl():31 ioctl cmd 20 ... failed: ...\n\n
//
// The number is facility and priority, as the log gets them. With SYSLOG_SHOW_OPEN the opening of
// the log is a line too.

#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const char* g_ident = "?";
int g_facility = LOG_USER;

/// Appends in one write, so that the lines of programs that run at once do not mix.
void append(const char* line, std::size_t length) {
  const char* const path = std::getenv("SYSLOG_FILE");
  const int fd = path != nullptr ? open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)
                                 : dup(STDERR_FILENO);
  if (fd < 0 || write(fd, line, length) < 0) std::abort();
  close(fd);
}

__attribute__((format(printf, 2, 0))) void record(int priority, const char* format,
                                                  va_list arguments) {
  const int error = errno;  // for %m, and for the caller
  char text[8192];
  char line[2 * sizeof text + 256];
  errno = error;
  std::vsnprintf(text, sizeof text, format, arguments);
  const int number = (priority & LOG_FACMASK) != 0 ? priority : priority | g_facility;
  int length = std::snprintf(line, 256, "%s <%d> ", g_ident, number);
  for (const char* c = text; *c != '\0'; ++c) {
    if (*c == '\n') line[length++] = '\\';
    line[length++] = *c == '\n' ? 'n' : *c;
  }
  line[length++] = '\n';
  append(line, static_cast<std::size_t>(length));
  errno = error;
}

}  // namespace

#define SHIM extern "C" __attribute__((visibility("default")))

SHIM void openlog(const char* ident, int option, int facility) {
  g_ident = ident;
  g_facility = facility;
  if (std::getenv("SYSLOG_SHOW_OPEN") == nullptr) return;
  char line[256];
  const int length = std::snprintf(line, sizeof line, "openlog %s option %d facility %d\n", ident,
                                   option, facility);
  append(line, static_cast<std::size_t>(length));
}

SHIM void closelog() { append("closelog\n", 9); }

SHIM void vsyslog(int priority, const char* format, va_list arguments) {
  record(priority, format, arguments);
}

SHIM void syslog(int priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  record(priority, format, arguments);
  va_end(arguments);
}

// What the two become in a fortified build.

SHIM void __vsyslog_chk(int priority, int flag, const char* format, va_list arguments)
    __attribute__((format(printf, 3, 0)));
SHIM void __vsyslog_chk(int priority, int, const char* format, va_list arguments) {
  record(priority, format, arguments);
}

SHIM void __syslog_chk(int priority, int flag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
SHIM void __syslog_chk(int priority, int, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  record(priority, format, arguments);
  va_end(arguments);
}
