#include "StandardOutput.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "HandlerCommon.h"

StandardOutput::StandardOutput() : former_(stdout) {
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
    error("ERROR: failed to write output: %s\n", std::strerror(error_ != 0 ? error_ : EIO));
    reported_ = true;
  }
  return status != 0 ? status : 1;
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
