#pragma once

/// How `apply` is confirmed: by a key on its terminal, or by `tarnpolicy confirm`, which talks to
/// it over a socket in the journal's folder. Only the same user and the superuser are listened to.

#include <string>
#include <vector>

/// What became of the wait.
enum class ConfirmEnd {
  confirmed,
  refused,  // a key that says no
  expired,
  interrupted,  // a signal came
};

/// The place at which an apply waits.
class ConfirmPlace {
 public:
  /// Opens the socket. Throws `StateError`.
  ConfirmPlace();
  ~ConfirmPlace();
  ConfirmPlace(const ConfirmPlace&) = delete;
  ConfirmPlace& operator=(const ConfirmPlace&) = delete;

  /// Makes standard input count too, if it is this program's terminal: false, if it is not. What
  /// was typed before does not count. A terminal that is lost later is no answer.
  bool askTerminal();

  /// Waits that long. `filters` are those that were changed.
  ConfirmEnd wait(const std::vector<std::string>& filters, unsigned int seconds);

 private:
  bool answer() const;

  std::string path_;
  std::string filters_;  // each with a NUL after it
  int socket_ = -1;
  bool asksTerminal_ = false;
};

/// An apply that waits.
struct WaitingApply {
  std::string path;                  // of its socket
  std::vector<std::string> filters;  // that it changed
};

/// All that wait. Sockets that nobody listens at are removed.
std::vector<WaitingApply> waitingApplies();

/// Confirms one of them. False when it did not answer that it keeps what it did.
bool confirmApply(const WaitingApply& apply);
