#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWUtilCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>

#include "TarnFWLog.h"
#include "TarnFWUtilSpawn.h"

using namespace TarnFirewall;

namespace {

/// What log lines of all steps name as their function: readers of the log know no other.
constexpr char kRunCommand[] = "RunCommandWithTimeout";

constexpr std::size_t kReadPiece = 4096;
constexpr std::size_t kDrainPiece = 256;
constexpr std::size_t kWritePiece = 4096;  // what a pipe that can be written to takes at once
constexpr int kLoggedArguments = 10;
constexpr int kTurn = 100;        // milliseconds after which the time and the program are looked at
constexpr int kLastMoves = 1024;  // of a program that has ended: all that its pipes can hold

/// A pipe of which both ends close at their end, and with the program that is started.
class Pipe {
 public:
  Pipe() = default;
  ~Pipe() {
    closeRead();
    closeWrite();
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  bool open() { return pipe2(ends_, O_CLOEXEC) == 0 && lift(ends_[0]) && lift(ends_[1]); }

  int readEnd() const { return ends_[0]; }
  int writeEnd() const { return ends_[1]; }
  void closeRead() { closeEnd(ends_[0]); }
  void closeWrite() { closeEnd(ends_[1]); }

 private:
  /// Moves an end out of the way of the three standard streams, which a process that was started
  /// without them has free: the program's streams are put there one by one.
  static bool lift(int& end) {
    if (end > STDERR_FILENO) return true;
    const int other = fcntl(end, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (other < 0) return false;
    close(std::exchange(end, other));
    return true;
  }

  static void closeEnd(int& end) {
    if (end >= 0) close(std::exchange(end, -1));
  }

  int ends_[2] = {-1, -1};
};

/// Keeps the signal away that a write to a program which has closed its standard input would send.
class NoBrokenPipeSignal {
 public:
  NoBrokenPipeSignal() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &before_);
  }
  ~NoBrokenPipeSignal() {
    const timespec now{};
    if (!wasPending_) sigtimedwait(&signal_, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  NoBrokenPipeSignal(const NoBrokenPipeSignal&) = delete;
  NoBrokenPipeSignal& operator=(const NoBrokenPipeSignal&) = delete;

 private:
  sigset_t signal_;
  sigset_t before_;
  bool wasPending_;
};

std::int64_t millisecondsNow() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

/// What is read from the program: it goes into the buffer as long as there is room, and away then.
struct Received {
  std::span<char> room;
  std::size_t length = 0;

  /// One read. False at the end of the stream.
  bool read(int descriptor) {
    std::array<char, kDrainPiece> thrownAway;
    const std::size_t left = room.size() - length;
    const ssize_t got = left != 0 ? ::read(descriptor, &room[length], std::min(left, kReadPiece))
                                  : ::read(descriptor, thrownAway.data(), thrownAway.size());
    if (got < 0) return errno == EINTR || errno == EAGAIN;
    if (left != 0) length += static_cast<std::size_t>(got);
    return got != 0;
  }
};

/// A program that runs, and what goes to it and comes from it.
class Running {
 public:
  Running(const char* path, std::span<const char> input, std::span<char> output,
          std::span<char> errors)
      : path_(path), toWrite_(input), output_{output}, errors_{errors} {}

  bool start(char* const* arguments);

  /// Ends a program that is silent for so many seconds from now on.
  void limit(unsigned int timeout);

  /// Moves everything until the program has closed its streams, or has ended after a signal of
  /// ours.
  void exchange();

  /// Waits for the program's end.
  void reap() { wait(0); }

  std::size_t outputLength() const { return output_.length; }
  std::size_t errorLength() const { return errors_.length; }

 private:
  bool isOpen() const { return in_.writeEnd() >= 0 || out_.readEnd() >= 0 || err_.readEnd() >= 0; }
  bool wait(int options);
  bool move(int milliseconds);
  void writeInput();
  void endWhenSilent();

  const char* path_;
  std::span<const char> toWrite_;
  Received output_;
  Received errors_;
  Pipe err_;
  Pipe out_;
  Pipe in_;
  int pid_ = -1;
  std::int64_t timeout_ = 0;  // milliseconds, 0 for none
  std::int64_t lastOutput_ = 0;
  bool signalled_ = false;
  bool ended_ = false;
};

bool Running::start(char* const* arguments) {
  if (!err_.open()) {
    TARNFW_LOG_IN(kRunCommand, LOG_ERR, "Failed to create stderr pipe: %d\n\n", errno);
    return false;
  }
  if (!out_.open()) {
    TARNFW_LOG_IN(kRunCommand, LOG_ERR, "Failed to create stdout pipe: %d\n\n", errno);
    return false;
  }
  if (!in_.open()) {
    TARNFW_LOG_IN(kRunCommand, LOG_ERR, "Failed to create stdin pipe: %d\n\n", errno);
    return false;
  }
  for (int i = 0; i < kLoggedArguments && arguments[i] != nullptr; ++i)
    TARNFW_TRACE_IN(kRunCommand, LOG_DEBUG, FW_COMPONENT_UTIL, 0, "%s: args[%d](%s)\n", path_, i,
                    arguments[i]);

  const int descriptors[3] = {in_.readEnd(), out_.writeEnd(), err_.writeEnd()};
  if (const int status = spawnOnHost(path_, arguments, descriptors, &pid_); status != 0) {
    TARNFW_LOG_IN(kRunCommand, LOG_ERR, "Failed to fork child process (%s), status: %d\n\n", path_,
                  status);
    return false;
  }
  ended_ = pid_ <= 0;  // not the number of one process: there is nothing to wait for
  in_.closeRead();
  out_.closeWrite();
  err_.closeWrite();
  // A program that reads its input would wait for ever for the end of one that is left open.
  if (toWrite_.empty()) in_.closeWrite();
  return true;
}

void Running::limit(unsigned int timeout) {
  const int flags = fcntl(out_.readEnd(), F_GETFL);
  if (flags < 0 || fcntl(out_.readEnd(), F_SETFL, flags | O_NONBLOCK) < 0) {
    TARNFW_LOG_IN(kRunCommand, LOG_ERR, "Use blocking read to read from child %s: %s\n", path_,
                  std::strerror(errno));
    return;
  }
  timeout_ = std::int64_t{timeout} * 1000;
  lastOutput_ = millisecondsNow();
}

/// True when the program has ended, or is no child of this process.
bool Running::wait(int options) {
  if (ended_) return true;
  int status = 0;
  pid_t found = 0;
  do {
    found = waitpid(pid_, &status, options);
  } while (found < 0 && errno == EINTR);
  if (found == 0) return false;
  ended_ = true;
  if (found == pid_)
    TARNFW_TRACE_IN(kRunCommand, LOG_DEBUG, FW_COMPONENT_UTIL, 0,
                    "Reaped child %s, exit status = %d\n\n", path_,
                    WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status));
  return true;
}

void Running::writeInput() {
  const NoBrokenPipeSignal quiet;
  const ssize_t written =
      ::write(in_.writeEnd(), toWrite_.data(), std::min(toWrite_.size(), kWritePiece));
  if (written < 0 && errno == EINTR) return;
  // A program need not read its input.
  toWrite_ =
      written < 0 ? std::span<const char>{} : toWrite_.subspan(static_cast<std::size_t>(written));
  if (toWrite_.empty()) in_.closeWrite();
}

/// Waits until something can be moved, and moves it. False when nothing can be, or when that can't
/// be found out.
bool Running::move(int milliseconds) {
  pollfd streams[] = {
      {out_.readEnd(), POLLIN, 0}, {err_.readEnd(), POLLIN, 0}, {in_.writeEnd(), POLLOUT, 0}};
  const int found = poll(streams, std::size(streams), milliseconds);
  if (found <= 0) return found < 0 && errno == EINTR;
  if (streams[0].revents != 0) {
    lastOutput_ = millisecondsNow();
    if (!output_.read(out_.readEnd())) out_.closeRead();
  }
  if (streams[1].revents != 0 && !errors_.read(err_.readEnd())) err_.closeRead();
  if (streams[2].revents != 0) writeInput();
  return true;
}

void Running::endWhenSilent() {
  if (timeout_ == 0 || millisecondsNow() - lastOutput_ < timeout_) return;
  TARNFW_LOG_IN(kRunCommand, LOG_WARNING, "Kill stuck child process %s.\n", path_);
  if (pid_ > 0) kill(pid_, SIGTERM);
  timeout_ = 0;
  signalled_ = true;
}

void Running::exchange() {
  while (isOpen() || timeout_ != 0) {
    // What it has started itself may hold its streams for longer than it lives.
    if ((signalled_ || !isOpen()) && wait(WNOHANG)) {
      for (int moves = 0; moves < kLastMoves && move(0); ++moves) {
      }
      break;
    }
    const bool looks = timeout_ != 0 || signalled_;
    if (!move(looks ? kTurn : -1) && !looks) break;
    endWhenSilent();
  }
  in_.closeWrite();
  out_.closeRead();
  err_.closeRead();
}

template <typename Char>
std::span<Char> bufferOf(Char* bytes, int length) {
  if (bytes == nullptr || length <= 0) return {};
  return {bytes, static_cast<std::size_t>(length)};
}

}  // namespace

UtilStatus_t RunCommandWithTimeout(const char* path, char* const* arguments, char* output,
                                   int* outputLength, char* errorOutput, int* errorLength,
                                   const char* input, int inputLength, unsigned int timeout) {
  const auto room = bufferOf(output, output != nullptr ? *outputLength : 0);
  const auto errorRoom = bufferOf(errorOutput, errorOutput != nullptr ? *errorLength : 0);
  Running program(path, bufferOf(input, inputLength), room, errorRoom);
  if (!program.start(arguments)) return UTIL_STATUS_FAILED;

  if (output != nullptr && timeout != 0) program.limit(timeout);
  program.exchange();
  program.reap();
  if (output != nullptr) {
    *outputLength = static_cast<int>(program.outputLength());
    if (!room.empty()) room[std::min(program.outputLength(), room.size() - 1)] = '\0';
  }
  if (errorOutput != nullptr) *errorLength = static_cast<int>(program.errorLength());
  return UTIL_STATUS_OK;
}

UtilStatus_t RunCommand(const char* path, char* const* arguments, char* output, int* outputLength,
                        char* errorOutput, int* errorLength, const char* input, int inputLength) {
  return RunCommandWithTimeout(path, arguments, output, outputLength, errorOutput, errorLength,
                               input, inputLength, 0);
}
