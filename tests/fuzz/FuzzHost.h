#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>

/// The host around a command of the program, made up by a fuzzer's bytes: the kernel that answers
/// on the control devices, files, standard input, and the peers of sockets. While one lives, the
/// linker sends the program's calls to it, so that nothing of the machine that searches is opened,
/// written or waited for, and standard output and standard error are kept in memory. One lives at a
/// time.
///
/// The bytes are used up in the order of the calls; numbers have their lowest byte first. Behind
/// the end of the bytes every call succeeds, and what is read is empty.
///
///     message to the kernel   parts, each a byte, modulo 4, and what follows it:
///                               0  nothing: the reply is complete
///                               1  16 bits offset, 16 bits length and the bytes that the kernel
///                                  writes there in the body; another part follows
///                               2  a byte, the kernel's status: the reply is complete
///                               3  a byte: the call itself fails with this errno
///     list of filters         32 bits count, 32 bits length, then parts, as above, of the buffer
///     flows                   48 bytes over the counts, then parts, as above, of the buffer
///     another request         parts, as above, of its body
///     discovered addresses, flow exclusion, instances, profiles
///                             the same, then parts of the buffer when there is one
///     insertion device        parts, as above, of the output; a status S is the call's result, as
///                             0xbad0000 + S
///     size of a table         parts, as above, of the frame
///     entries of a table      32 bits length, then parts, as above, of the buffer
///     revalidation            parts, as above, of its record
///     start of a program      a byte: what the call gives, 0 for success; then 16 bits length and
///                             what the program writes
///     file, standard input    16 bits length and the content
///     connect                 a byte: errno, 0 for success
///     send                    a byte: 0 takes all, 255 is busy, else the most that is taken
///     recv                    16 bits length and the bytes; none is the peer's end
///
/// A local socket begins with a byte: errno, 0 for success. It fails as those of a hostile host do,
/// and hands over all that its peer says.
///
/// A command that repeats until a signal ends it gets one when it waits after so many calls that
/// all of them fail: `Signal` is thrown then.
///
/// What a peer says in place of a message's header is not handed over: the header stays.
///
/// A hostile host hands everything over, has more ways to fail, and is asked for more:
///
///     open, connect, close    a byte: errno, 0 for success; a descriptor is closed all the same
///     options and modes of sockets, shutdown                                          the same
///     message to the kernel   parts, modulo 6; offsets count from the message's header, and a
///                             status is written only by its part
///                               4  112 bytes over the block of the request; another part follows
///                               5  a byte: what the call itself gives; the reply is complete
///     another request         such parts of its frame, which has 32 bytes
///     send, write             255 fails with the errno of the byte after it
///     recv                    65535 bytes: fails with the errno of the byte after it
///
/// The device of the filter tables is never there on a hostile host, so that no run finds it open.
class FuzzHost {
 public:
  enum class Kind { kOrdinary, kHostile };
  struct Signal {};

  explicit FuzzHost(std::span<const std::uint8_t> bytes, Kind kind = Kind::kOrdinary);
  ~FuzzHost();
  FuzzHost(const FuzzHost&) = delete;
  FuzzHost& operator=(const FuzzHost&) = delete;

  /// What was written so far, at most `kMaxText` bytes of it.
  std::string out() const;
  std::string err() const;
  static constexpr std::size_t kMaxText = 1 << 20;

  /// After so many calls all that follow fail, so that a count that the kernel made up ends.
  static constexpr unsigned int kMaxCalls = 4096;

  /// Calls of devices, files and sockets so far.
  unsigned int calls() const { return calls_; }

  /// Files that were opened and not closed yet, standard input aside.
  unsigned int openFiles() const { return openFiles_ - 1; }

  /// Seconds that were slept so far. None of them passes.
  unsigned int slept() const { return slept_; }

  /// `errno` of the call that failed last.
  int error() const { return error_; }

  /// The reply to a message that came in another way than by an ioctl: writes it over the message
  /// and says what the call gives.
  int answer(std::span<std::uint8_t> message);

 private:
  friend struct FuzzHostCalls;

  std::span<const std::uint8_t> take(std::size_t size);
  std::uint64_t number(std::size_t size);
  bool answers();
  int fail(int error);
  int outcome();
  int reply(std::span<std::uint8_t> body, std::optional<std::uint32_t>* status,
            std::span<std::uint8_t> request = {});
  int message(void* block);
  int filterList(unsigned long request, void* frame);
  int record(void* frame);
  static bool hasBuffer(unsigned long request);
  int buffered(unsigned long request, void* frame);
  int insertion(void* frame);
  int table(unsigned long request, void* frame);
  int flows(void* frame);

  std::span<const std::uint8_t> bytes_;
  bool hostile_;
  int error_ = 0;
  unsigned int slept_ = 0;
  unsigned int calls_ = 0;
  unsigned int openFiles_ = 0;
  bool local_ = false;        // the peers of sockets are processes of this host
  std::size_t received_ = 0;  // since the last send
  std::FILE* input_ = nullptr;
  std::FILE* realInput_;
  std::FILE* realOutput_;
  std::FILE* realError_;
};

/// What stays in a process from one run to the next, as a new process has it. Lines of the log are
/// made and thrown away.
void startAnew();

/// The lowest descriptor that is free.
int freeDescriptor();
