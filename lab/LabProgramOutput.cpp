// The standard streams of tarnlab.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "LabProgram.h"

namespace TarnLab {

namespace {

/// The errno of the first write to standard output that failed. The C library forgets it when a
/// later write goes well.
int firstError = 0;

/// For a stream that writes to standard output: what of it went out, 0 when nothing did.
ssize_t writeOutput(void*, const char* bytes, std::size_t size) {
  std::size_t written = 0;
  while (written < size) {
    const ssize_t now = ::write(STDOUT_FILENO, bytes + written, size - written);
    if (now < 0 && errno == EINTR) continue;
    if (now <= 0) {
      if (firstError == 0) firstError = now < 0 ? errno : EIO;
      return static_cast<ssize_t>(written);
    }
    written += static_cast<std::size_t>(now);
  }
  return static_cast<ssize_t>(written);
}

}  // namespace

void prepareStreams() {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (::fcntl(fd, F_GETFD) >= 0 || errno != EBADF) continue;
    // Open the other way round, so that using it fails.
    const int way = fd == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", way | O_CLOEXEC) < 0) return;
  }
  const cookie_io_functions_t functions{nullptr, writeOutput, nullptr, nullptr};
  std::FILE* stream = ::fopencookie(nullptr, "w", functions);
  if (stream == nullptr) return;
  std::setvbuf(stream, nullptr, ::isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, BUFSIZ);
  stdout = stream;
}

std::string finishOutput() {
  const bool failed = std::fflush(stdout) != 0 || std::ferror(stdout) != 0;
  if (firstError != 0) return std::strerror(firstError);
  return failed ? std::strerror(EIO) : "";
}

}  // namespace TarnLab
