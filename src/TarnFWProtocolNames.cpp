#include "TarnFWProtocolNames.h"

#include <netdb.h>

namespace TarnFirewall {

namespace {

/// A text with more protocols than this asks the host again for the further ones.
constexpr std::size_t kKnownLimit = 32;

}  // namespace

int CTarnFWProtocolNames::number(const char* name) {
  const std::string_view wanted(name);
  for (const Known& known : known_) {
    if (known.name == wanted) return known.number;
  }
  const protoent* entry = getprotobyname(name);
  const int number = entry == nullptr ? -1 : entry->p_proto;
  if (known_.size() < kKnownLimit) known_.push_back({std::string(wanted), number});
  return number;
}

}  // namespace TarnFirewall
