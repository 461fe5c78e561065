// tarnlab run and tarnlab shell: a program whose devices are the lab's.
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <optional>

#include "LabHostFiles.h"
#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr std::string_view libraryName = "libtarnlab_preload.so";

std::string absolute(const std::string& path) {
  char resolved[PATH_MAX];
  if (::realpath(path.c_str(), resolved) == nullptr) throw StoreError("cannot find " + path, errno);
  return resolved;
}

/// The folder of this program.
std::string ownFolder() {
  const std::string self = absolute("/proc/self/exe");
  return self.substr(0, self.rfind('/'));
}

/// The preload library: beside this program as it was built, or where it is installed.
std::string preloadLibrary() {
  const std::string folder = ownFolder();
  for (const char* place : {"/", "/" TARNLAB_LIBRARY_FOLDER "/"}) {
    const std::string path = folder + place + std::string(libraryName);
    if (::access(path.c_str(), R_OK) != 0) continue;
    const std::string found = absolute(path);
    // The loader takes both for the end of a name, and would run the program without the library.
    if (found.find_first_of(" :") != std::string::npos) {
      throw std::runtime_error("a blank or colon in the path keeps " + found +
                               " from being loaded");
    }
    return found;
  }
  throw std::runtime_error("cannot find " + std::string(libraryName) + " beside this program");
}

/// Puts a value in front of a list that an environment variable may hold already.
void prepend(const char* variable, const std::string& value, char separator) {
  const char* old = std::getenv(variable);
  const std::string text =
      old == nullptr || *old == '\0' ? value : value + separator + std::string(old);
  ::setenv(variable, text.c_str(), 1);
}

/// The file that a command names, looked up as execvp does.
std::optional<std::string> findProgram(const std::string& command) {
  if (command.empty()) return std::nullopt;
  if (command.find('/') != std::string::npos) {
    return ::access(command.c_str(), F_OK) == 0 ? std::optional(command) : std::nullopt;
  }
  const char* variable = std::getenv("PATH");
  const std::string path = variable != nullptr ? variable : "/usr/local/bin:/usr/bin:/bin";
  for (std::size_t at = 0; at <= path.size();) {
    const std::size_t end = std::min(path.find(':', at), path.size());
    const std::string folder = path.substr(at, end - at);
    const std::string candidate = (folder.empty() ? "." : folder) + "/" + command;
    struct stat status;
    if (::access(candidate.c_str(), X_OK) == 0 && ::stat(candidate.c_str(), &status) == 0 &&
        S_ISREG(status.st_mode)) {
      return candidate;
    }
    at = end + 1;
  }
  return std::nullopt;
}

/// Whether the file is a program without a loader, into which nothing can be preloaded.
bool isStatic(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const Descriptor file(fd);
  ByteVector head(sizeof(Elf64_Ehdr));
  if (!readAt(fd, head, 0) || std::memcmp(head.data(), ELFMAG, SELFMAG) != 0 ||
      get8(head, EI_CLASS) != ELFCLASS64) {
    return false;
  }
  Elf64_Ehdr header;
  std::memcpy(&header, head.data(), sizeof header);
  ByteVector table(sizeof(Elf64_Phdr));
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    if (!readAt(fd, table, header.e_phoff + std::uint64_t{i} * header.e_phentsize)) return false;
    Elf64_Phdr segment;
    std::memcpy(&segment, table.data(), sizeof segment);
    if (segment.p_type == PT_INTERP) return false;
  }
  return true;
}

/// Becomes the program.
int become(const Store& store, char* const* command) {
  requireLab(store);
  if (!store.exists(HostFiles::root)) {
    const StoreLock lock(store);
    HostFiles::make(store);
  }
  ::setenv("TARNLAB_HOME", absolute(store.folder()).c_str(), 1);
  ::setenv("TARNLAB_PROGRAM", absolute("/proc/self/exe").c_str(), 1);
  prepend("LD_PRELOAD", preloadLibrary(), ':');
  // A program built with the address sanitizer asks that its runtime be the first library. Ours
  // takes none of the functions that the sanitizer watches memory with, so it may stand in front.
  prepend("ASAN_OPTIONS", "verify_asan_link_order=0", ':');
  // The programs of this build, or those installed beside this one, are found without a path, after
  // all others.
  const char* path = std::getenv("PATH");
  const std::string build = ownFolder() + "/..";
  const std::string folders = ::access((build + "/tool").c_str(), X_OK) == 0
                                  ? build + "/tool:" + build + "/policy"
                                  : ownFolder();
  ::setenv("PATH", ((path != nullptr ? path : "/usr/bin:/bin") + (":" + folders)).c_str(), 1);

  const std::string name = command[0];
  if (name == "/bin/tarn_vm_list.sh") return runMachines(store, {});
  const auto program = findProgram(name);
  if (!program) {
    complain("cannot find the program " + printable(name));
    return exitNotFound;
  }
  if (isStatic(*program)) {
    complain(*program + " is linked statically: the lab cannot take the place of its devices");
    return exitCannotRun;
  }
  ::execv(program->c_str(), command);
  if (errno == ENOEXEC) ::execvp(name.c_str(), command);
  const int error = errno;
  complain("cannot run " + *program + ": " + std::strerror(error));
  return error == ENOENT ? exitNotFound : exitCannotRun;
}

}  // namespace

int runRun(const Store& store, Arguments arguments) {
  if (!arguments.empty() && std::string_view(arguments[0]) == "--") {
    arguments = arguments.subspan(1);
  }
  if (arguments.empty()) {
    misused("run", "a program is missing");
    return exitRunFailed;
  }
  return become(store, arguments.data());
}

int runShell(const Store& store, Arguments arguments) {
  if (!arguments.empty()) {
    misused("shell", "takes no arguments");
    return exitRunFailed;
  }
  const char* variable = std::getenv("SHELL");
  std::string shell = variable != nullptr && *variable != '\0' ? variable : "/bin/sh";
  char* const command[] = {shell.data(), nullptr};
  return become(store, command);
}

}  // namespace TarnLab
