#pragma once

#include <string>

/// Stands in front of functions of the C library in the program it is linked into, so that a test
/// can let them fail or answer otherwise. Calls pass through while none of these objects lives.
namespace LibcShim {

/// Copies of texts by `strdup` fail, from the one of this number on; the first has the number 0.
class FailingCopies {
 public:
  explicit FailingCopies(unsigned int from = 0);
  ~FailingCopies();
  FailingCopies(const FailingCopies&) = delete;
  FailingCopies& operator=(const FailingCopies&) = delete;
};

/// `inet_ntop` fails.
class FailingAddressTexts {
 public:
  FailingAddressTexts();
  ~FailingAddressTexts();
  FailingAddressTexts(const FailingAddressTexts&) = delete;
  FailingAddressTexts& operator=(const FailingAddressTexts&) = delete;
};

/// The host knows this protocol under this name, as `getprotobynumber_r` gives it.
class HostProtocol {
 public:
  HostProtocol(int number, const std::string& name);
  ~HostProtocol();
  HostProtocol(const HostProtocol&) = delete;
  HostProtocol& operator=(const HostProtocol&) = delete;
};

/// `send` and `recv` move no more than `limit` bytes by one call, and are counted.
class ShortTransfers {
 public:
  explicit ShortTransfers(std::size_t limit);
  ~ShortTransfers();
  ShortTransfers(const ShortTransfers&) = delete;
  ShortTransfers& operator=(const ShortTransfers&) = delete;

  unsigned int sends() const;
  unsigned int receives() const;
};

}  // namespace LibcShim
