#include "StandardOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace TarnFirewall {

void fillStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    if (open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

StandardOutput::StandardOutput(const char* speaker, int lostStatus)
    : speaker_(speaker), lostStatus_(lostStatus), former_(stdout) {
  // A stream of the C library remembers that a write failed, but not why.
  cookie_io_functions_t functions{};
  functions.write = write;
  stream_ = fopencookie(this, "w", functions);
  if (stream_ == nullptr) return;  // no memory: the former one stays, without its errors' reasons
  std::setvbuf(stream_, buffer_, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof buffer_);
  stdout = stream_;
}

StandardOutput::~StandardOutput() {
  finish(0);
  stdout = former_;
  if (stream_ != nullptr) std::fclose(stream_);
}

int StandardOutput::finish(int status) {
  if (std::fflush(stdout) != 0 && error_ == 0) error_ = errno;
  if (ferror_unlocked(stdout) == 0 && error_ == 0) return status;
  if (!reported_) {
    std::fprintf(stderr, "%s: failed to write output: %s\n", speaker_,
                 std::strerror(error_ != 0 ? error_ : EIO));
    reported_ = true;
  }
  return status >= 0 && status < lostStatus_ ? lostStatus_ : status;
}

ssize_t StandardOutput::write(void* self, const char* bytes, std::size_t size) {
  auto& output = *static_cast<StandardOutput*>(self);
  std::size_t written = 0;
  while (written < size) {
    const ssize_t result = ::write(STDOUT_FILENO, bytes + written, size - written);
    if (result < 0 && errno == EINTR) continue;
    if (result <= 0) {
      if (output.error_ == 0) output.error_ = result < 0 ? errno : EIO;
      break;  // the stream takes a short count for an error
    }
    written += static_cast<std::size_t>(result);
  }
  return static_cast<ssize_t>(written);
}

}  // namespace TarnFirewall
