#include "CommandProcess.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <regex>
#include <stdexcept>

#include "MemoryShim.h"
#include "StandardOutput.h"

namespace {

int g_writesLeft = -1;  // up to the one that fails
int g_writeError = 0;

int g_reached = -1;  // the descriptor by which a process says that it came to the failure

/// A file in memory that a process writes and its parent reads.
class Capture {
 public:
  Capture() : descriptor_(::memfd_create("captured", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("no file in memory");
  }
  ~Capture() { ::close(descriptor_); }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  int descriptor() const { return descriptor_; }

  std::string text() const {
    std::string text(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
    const ssize_t size = ::pread(descriptor_, text.data(), text.size(), 0);
    if (size != static_cast<ssize_t>(text.size())) throw std::runtime_error("lost a capture");
    return text;
  }

 private:
  int descriptor_;
};

/// Does what `main` does, and ends the process. `body` runs the command with what is to fail.
[[noreturn]] void become(const CommandProcess::Words& words,
                         const std::function<int(int, char**)>& body) {
  std::vector<std::string> copies{CommandProcess::kProgram.name};
  copies.insert(copies.end(), words.begin(), words.end());
  std::vector<char*> argv;
  for (std::string& word : copies) argv.push_back(word.data());
  argv.push_back(nullptr);
  static TarnFirewall::StandardOutput output(CommandProcess::kProgram.lostPrefix,
                                             CommandProcess::kProgram.lostStatus);
  std::exit(output.finish(body(static_cast<int>(copies.size()), argv.data())));
}

CommandProcess::Result runAs(const CommandProcess::Words& words,
                             const std::function<int(int, char**)>& body) {
  const Capture out;
  const Capture err;
  const Capture reached;
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("cannot fork");
  if (child == 0) {
    g_reached = reached.descriptor();
    ::dup2(out.descriptor(), STDOUT_FILENO);
    ::dup2(err.descriptor(), STDERR_FILENO);
    become(words, body);
  }
  int status = 0;
  if (::waitpid(child, &status, 0) != child) throw std::runtime_error("lost a process");
  // Sets that are read in different seconds may differ in these.
  static const std::regex time("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
          std::regex_replace(out.text(), time, "TIME"), err.text(), !reached.text().empty()};
}

ssize_t writeReally(int descriptor, const void* bytes, std::size_t size) {
  static auto* const real =
      reinterpret_cast<ssize_t (*)(int, const void*, std::size_t)>(dlsym(RTLD_NEXT, "write"));
  return real(descriptor, bytes, size);
}

void sayReached() {
  if (writeReally(g_reached, "r", 1) != 1) std::abort();
}

}  // namespace

extern "C" ssize_t write(int descriptor, const void* bytes, std::size_t size) {
  if (descriptor != STDOUT_FILENO || g_writesLeft < 0 || g_writesLeft-- != 0)
    return writeReally(descriptor, bytes, size);
  sayReached();
  errno = g_writeError;
  return -1;
}

namespace CommandProcess {

std::ostream& operator<<(std::ostream& to, const Result& result) {
  return to << "status " << result.status << "\n--- standard output\n"
            << result.out << "--- standard error\n"
            << result.err << "---\n";
}

Result run(const Words& words) { return runAs(words, kProgram.run); }

Result runWithoutMemory(const Words& words, unsigned int number, bool onwards) {
  return runAs(words, [=](int argc, char** argv) {
    // Static: the library may end the process.
    static const MemoryShim::FailingAllocation failing(
        number, onwards ? MemoryShim::kFromThereOn : MemoryShim::kOne);
    std::atexit([] {
      if (failing.reached()) sayReached();
    });
    return kProgram.run(argc, argv);
  });
}

Result runWithoutRoom(const Words& words, unsigned int number, int error) {
  return runAs(words, [=](int argc, char** argv) {
    g_writesLeft = static_cast<int>(number);
    g_writeError = error;
    return kProgram.run(argc, argv);
  });
}

}  // namespace CommandProcess
