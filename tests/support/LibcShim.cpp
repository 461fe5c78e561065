#include "LibcShim.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned int kAll = std::numeric_limits<unsigned int>::max();

unsigned int g_goodCopies = kAll;
bool g_failAddressTexts = false;
int g_protocol = -1;
std::string g_protocolName;
std::size_t g_transferLimit = std::numeric_limits<std::size_t>::max();
unsigned int g_sends = 0;
unsigned int g_receives = 0;

template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

char* strdup(const char* text) noexcept {
  if (g_goodCopies == 0) return nullptr;
  if (g_goodCopies != kAll) --g_goodCopies;
  const std::size_t size = std::strlen(text) + 1;
  auto* const copy = static_cast<char*>(std::malloc(size));
  return copy == nullptr ? nullptr : static_cast<char*>(std::memcpy(copy, text, size));
}

const char* inet_ntop(int family, const void* address, char* text, socklen_t size) noexcept {
  static auto* const real = next<const char*(int, const void*, char*, socklen_t)>("inet_ntop");
  return g_failAddressTexts ? nullptr : real(family, address, text, size);
}

int getprotobynumber_r(int number, protoent* entry, char* buffer, std::size_t size,
                       protoent** found) {
  static auto* const real =
      next<int(int, protoent*, char*, std::size_t, protoent**)>("getprotobynumber_r");
  if (number != g_protocol) return real(number, entry, buffer, size, found);
  *found = nullptr;
  if (size <= g_protocolName.size()) return ERANGE;
  std::memcpy(buffer, g_protocolName.c_str(), g_protocolName.size() + 1);
  entry->p_name = buffer;
  *found = entry;
  return 0;
}

ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
  static auto* const real = next<ssize_t(int, const void*, std::size_t, int)>("send");
  ++g_sends;
  return real(descriptor, bytes, std::min(size, g_transferLimit), flags);
}

ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
  static auto* const real = next<ssize_t(int, void*, std::size_t, int)>("recv");
  ++g_receives;
  return real(descriptor, bytes, std::min(size, g_transferLimit), flags);
}

}  // extern "C"

namespace LibcShim {

FailingCopies::FailingCopies(unsigned int from) { g_goodCopies = from; }
FailingCopies::~FailingCopies() { g_goodCopies = kAll; }

FailingAddressTexts::FailingAddressTexts() { g_failAddressTexts = true; }
FailingAddressTexts::~FailingAddressTexts() { g_failAddressTexts = false; }

HostProtocol::HostProtocol(int number, const std::string& name) {
  g_protocol = number;
  g_protocolName = name;
}
HostProtocol::~HostProtocol() { g_protocol = -1; }

ShortTransfers::ShortTransfers(std::size_t limit) {
  g_transferLimit = limit;
  g_sends = 0;
  g_receives = 0;
}
ShortTransfers::~ShortTransfers() { g_transferLimit = std::numeric_limits<std::size_t>::max(); }
unsigned int ShortTransfers::sends() const { return g_sends; }
unsigned int ShortTransfers::receives() const { return g_receives; }

}  // namespace LibcShim
