#pragma once

/// Stands in front of calls of the system that the program it is linked into makes, so that a test
/// can let one of them fail, or see that none is missing. The linker sends the program's calls here
/// (`tarnfw_call_shim` in CMake says which). They pass through while none of these objects lives.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace CallShim {

/// The call of this number fails with `error`, counted from 0 over all functions or over those of
/// one name. A descriptor that is closed is closed all the same. A `recv` that fails with 0 finds
/// the end of the stream.
class Failing {
 public:
  Failing(unsigned int number, int error, const char* name = nullptr);
  ~Failing();
  Failing(const Failing&) = delete;
  Failing& operator=(const Failing&) = delete;

  /// Whether that call was made, and its name.
  bool reached() const;
  std::string name() const;
};

/// All writes from the one of this number on find the disk full; those before it move no more than
/// `limit` bytes each.
class FullDisk {
 public:
  explicit FullDisk(unsigned int number, std::size_t limit = std::string::npos);
  ~FullDisk();
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
};

/// Reads and writes, of sockets too, move no more than `limit` bytes at once, and every other one
/// is interrupted before it has moved any, as are waiting for a child and for a descriptor.
class ShortCalls {
 public:
  explicit ShortCalls(std::size_t limit);
  ~ShortCalls();
  ShortCalls(const ShortCalls&) = delete;
  ShortCalls& operator=(const ShortCalls&) = delete;
};

/// Each `recv` gives one byte; after the first `whole` of them every other one finds the end of the
/// stream.
class PausingStream {
 public:
  explicit PausingStream(unsigned int whole);
  ~PausingStream();
  PausingStream(const PausingStream&) = delete;
  PausingStream& operator=(const PausingStream&) = delete;
};

/// Runs `body` once, after the successful call of a name that has this number, counted from 0.
class After {
 public:
  After(const char* name, unsigned int number, std::function<void()> body);
  ~After();
  After(const After&) = delete;
  After& operator=(const After&) = delete;
};

/// Files that are opened and sockets that are connected to stand below `to` where the program says
/// that they stand below `from`.
class Moved {
 public:
  Moved(const std::string& from, const std::string& to);
  ~Moved();
  Moved(const Moved&) = delete;
  Moved& operator=(const Moved&) = delete;
};

/// The calls of sockets since it was made, also those that failed, a line each:
///
///     socket FAMILY TYPE PROTOCOL
///     connect PATH SIZE             of a local socket, with the size of the address
///     send SIZE FLAGS
class SocketCalls {
 public:
  SocketCalls();
  ~SocketCalls();
  SocketCalls(const SocketCalls&) = delete;
  SocketCalls& operator=(const SocketCalls&) = delete;

  const std::vector<std::string>& lines() const;
};

/// The shell runs `script` where `path` is to be started.
class Program {
 public:
  Program(const std::string& path, const std::string& script);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Arguments of each start, with blanks between them.
  const std::vector<std::string>& starts() const;
};

/// What looking for the host's own call of that name finds: it in what is loaded, in the host's
/// library, or not at all. What was asked is kept: the name of the library or "default", a blank
/// and the name of the call.
enum class HostCall { kNone, kLoaded, kInLibrary };
void setHostCall(HostCall where, void* call);
const std::vector<std::string>& lookUps();

}  // namespace CallShim

/// Numbers of the descriptors that are open.
std::vector<int> openDescriptors();

/// Whether this process has a child, be it one that has ended.
bool hasChild();
