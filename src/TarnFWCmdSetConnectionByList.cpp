#include "TarnFWCmdSetConnectionByList.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 8;

unsigned int sizeFor(std::size_t count) {
  return countedSize(kHead, sizeof(FWConnection_), static_cast<unsigned int>(count),
                     "number of connections");
}

std::unique_ptr<CTarnFWConnectionList> listOf(unsigned int count,
                                              const FWConnection_* connections) {
  (void)sizeFor(count);  // refused before anything is copied
  auto list = std::make_unique<CTarnFWConnectionList>();
  for (unsigned int i = 0; i < count; ++i) list->addConnection(connections[i]);
  return list;
}

}  // namespace

CTarnFWCmdSetConnectionByList::CTarnFWCmdSetConnectionByList(
    const dvs_port_* port, std::unique_ptr<CTarnFWConnectionList> list)
    : CTarnFWSizedCmd(port, sizeFor(list->size())), list_(std::move(list)) {}

CTarnFWCmdSetConnectionByList::CTarnFWCmdSetConnectionByList(const dvs_port_* port,
                                                             unsigned int count,
                                                             const FWConnection_* connections)
    : CTarnFWCmdSetConnectionByList(port, listOf(count, connections)) {}

std::string CTarnFWCmdSetConnectionByList::toString() const {
  return "set connection" + dvsportToString("of") + " with " + list_->toString();
}

void CTarnFWCmdSetConnectionByList::fill(std::span<std::byte> body) const {
  storeAt(body, 0, host32(static_cast<std::uint32_t>(list_->size())));
  const std::span<std::byte> entries = body.subspan(kHead);
  unsigned int written = 0;
  list_->toMessage(entries.data(), static_cast<unsigned int>(entries.size()), &written);
}

}  // namespace TarnFirewall
