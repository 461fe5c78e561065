#include "TarnFWProtocolNames.h"

#include <netdb.h>

#include <utility>

namespace TarnFirewall {

namespace {

/// A text with more protocols than this asks the host again for the further ones.
constexpr std::size_t kKnownLimit = 32;

}  // namespace

int CTarnFWProtocolNames::number(std::string_view name) {
  for (const Known& known : known_) {
    if (known.name == name) return known.number;
  }
  std::string wanted(name);
  const protoent* entry = getprotobyname(wanted.c_str());
  const int number = entry == nullptr ? -1 : entry->p_proto;
  if (known_.size() < kKnownLimit) known_.push_back({std::move(wanted), number});
  return number;
}

}  // namespace TarnFirewall
