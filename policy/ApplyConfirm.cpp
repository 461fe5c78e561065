#include "ApplyConfirm.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "ApplySignals.h"
#include "Journal.h"
#include "State.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::string_view kPrefix = "confirm-";
/// No longer than the other, since a socket's path has little room.
constexpr std::string_view kOpeningPrefix = "opening-";
constexpr char kAsk = 'q';
constexpr char kConfirm = 'c';
constexpr std::string_view kKept = "kept\n";
constexpr int kAnswerSeconds = 2;
constexpr std::size_t kMostAnswer = 1u << 20;

[[noreturn]] void fail(const std::string& what) {
  throw StateError(what + ": " + std::strerror(errno));
}

/// A descriptor that is closed at the end.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

sockaddr_un addressOfPath(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw StateError("the path of the socket is too long: " + path);
  }
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

const sockaddr* plain(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

/// Nobody at the other end holds this program up.
void limitWaiting(int number) {
  const timeval limit{kAnswerSeconds, 0};
  setsockopt(number, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  setsockopt(number, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

bool isTrusted(int number) {
  ucred other{};
  socklen_t size = sizeof other;
  if (getsockopt(number, SOL_SOCKET, SO_PEERCRED, &other, &size) != 0) return false;
  return other.uid == 0 || other.uid == geteuid();
}

bool sendAll(int number, std::string_view text) {
  while (!text.empty()) {
    const ssize_t sent = send(number, text.data(), text.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    text.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

/// What the other end of a socket answers to a letter; nothing when it does not.
std::string ask(const std::string& path, char letter, bool* refused = nullptr) {
  const Descriptor line(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (line.number() < 0) fail("can't make a socket");
  limitWaiting(line.number());
  const sockaddr_un address = addressOfPath(path);
  if (connect(line.number(), plain(address), sizeof address) != 0) {
    if (refused != nullptr) *refused = errno == ECONNREFUSED;
    return {};
  }
  if (!isTrusted(line.number()) || !sendAll(line.number(), {&letter, 1})) return {};
  std::string answer;
  char part[1024];
  while (answer.size() < kMostAnswer) {
    const ssize_t count = recv(line.number(), part, sizeof part, 0);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    answer.append(part, static_cast<std::size_t>(count));
  }
  return answer;
}

/// Standard input as a terminal at which somebody can answer now.
bool isOwnTerminal() { return isatty(STDIN_FILENO) == 1 && tcgetpgrp(STDIN_FILENO) == getpgrp(); }

enum class Key { none, yes, no, lost };

Key readKey() {
  char line[256];
  const ssize_t count = read(STDIN_FILENO, line, sizeof line);
  if (count < 0 && errno == EINTR) return Key::none;
  if (count <= 0) return Key::lost;
  std::string_view word(line, static_cast<std::size_t>(count));
  word = word.substr(0, word.find('\n'));
  return word.empty() || word == "y" || word == "Y" || word == "yes" ? Key::yes : Key::no;
}

}  // namespace

ConfirmPlace::ConfirmPlace() {
  const std::string folder = journalFolder() + "/";
  const std::string number = std::to_string(getpid());
  const std::string path = folder + std::string(kPrefix) + number;
  // It gets its name when it listens: `confirm` removes a name at which nobody does.
  const std::string opening = folder + std::string(kOpeningPrefix) + number;
  const sockaddr_un address = addressOfPath(opening);
  unlink(opening.c_str());  // of an earlier process with this number
  socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket_ < 0) fail("can't make a socket");
  if (bind(socket_, plain(address), sizeof address) != 0 || listen(socket_, 8) != 0 ||
      rename(opening.c_str(), path.c_str()) != 0) {
    const int reason = errno;
    unlink(opening.c_str());
    close(socket_);
    errno = reason;
    fail("can't listen at " + path);
  }
  path_ = path;
}

ConfirmPlace::~ConfirmPlace() {
  unlink(path_.c_str());
  close(socket_);
}

bool ConfirmPlace::answer() const {
  const Descriptor line(accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC));
  if (line.number() < 0 || !isTrusted(line.number())) return false;
  limitWaiting(line.number());
  char letter = 0;
  if (recv(line.number(), &letter, 1, 0) != 1) return false;
  if (letter == kAsk) sendAll(line.number(), filters_);
  // Who has stopped waiting for the answer takes it as not confirmed, and so does this.
  return letter == kConfirm && sendAll(line.number(), kKept);
}

bool ConfirmPlace::askTerminal() {
  asksTerminal_ = isOwnTerminal();
  if (asksTerminal_) tcflush(STDIN_FILENO, TCIFLUSH);
  return asksTerminal_;
}

ConfirmEnd ConfirmPlace::wait(const std::vector<std::string>& filters, unsigned int seconds) {
  filters_.clear();
  for (const std::string& filter : filters) filters_.append(filter.c_str(), filter.size() + 1);
  const auto end = Clock::now() + std::chrono::seconds(seconds);
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return ConfirmEnd::expired;
    pollfd places[] = {{ApplySignals::descriptor(), POLLIN, 0},
                       {socket_, POLLIN, 0},
                       {asksTerminal_ ? STDIN_FILENO : -1, POLLIN, 0}};
    poll(places, std::size(places), static_cast<int>(std::min<long long>(left, 60000)));
    if (ApplySignals::seen() != 0) return ConfirmEnd::interrupted;
    if (places[1].revents != 0 && answer()) return ConfirmEnd::confirmed;
    if (places[2].revents == 0) continue;
    switch (readKey()) {
      case Key::yes:
        return ConfirmEnd::confirmed;
      case Key::no:
        return ConfirmEnd::refused;
      case Key::lost:
        asksTerminal_ = false;
        break;
      case Key::none:
        break;
    }
  }
}

std::vector<WaitingApply> waitingApplies() {
  std::vector<WaitingApply> found;
  const std::string folder = journalFolder();
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), &closedir);
  if (entries == nullptr) fail("can't read " + folder);
  while (const dirent* const entry = readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name.substr(0, kPrefix.size()) != kPrefix) continue;
    WaitingApply apply{folder + "/" + std::string(name), {}};
    bool refused = false;
    std::string answer = ask(apply.path, kAsk, &refused);
    if (refused) unlink(apply.path.c_str());
    for (std::size_t at = 0; at < answer.size();) {
      const std::size_t after = std::min(answer.find('\0', at), answer.size());
      apply.filters.push_back(answer.substr(at, after - at));
      at = after + 1;
    }
    if (!apply.filters.empty()) found.push_back(std::move(apply));
  }
  std::sort(found.begin(), found.end(),
            [](const WaitingApply& a, const WaitingApply& b) { return a.path < b.path; });
  return found;
}

bool confirmApply(const WaitingApply& apply) { return ask(apply.path, kConfirm) == kKept; }
