#include "TarnFWCmdSetAddrSetCfg.h"

namespace TarnFirewall {

namespace {

struct AddressBlock {
  std::uint8_t address[16];
};

const char* stateName(std::uint32_t state) {
  switch (state) {
    case 0:
      return "unset";
    case 1:
      return "enabled";
    default:
      return "disabled";
  }
}

}  // namespace

std::string CTarnFWCmdSetAddrSetCfg::toString() const {
  return "set addrset config" + dvsportToString("of");
}

void CTarnFWCmdSetAddrSetCfg::fill(std::span<std::byte> body) const {
  AddressBlock block;
  std::memcpy(block.address, configuration_.address, sizeof block.address);
  storeAt(body, 0, configuration_.operation);
  storeAt(body, 4, configuration_.name);
  storeAt(body, 42, configuration_.component);
  storeAt(body, 46, block);
  storeAt(body, 186, configuration_.first);
  storeAt(body, 190, configuration_.second);
}

void CTarnFWCmdSetAddrSetCfg::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const std::uint32_t operation = reply.word(0);
  const std::uint32_t firstValue = first(reply);
  const std::uint32_t secondValue = second(reply);
  if (operation == FW_ADDRSET_SET_VALID || operation == FW_ADDRSET_CLEAR_VALID) {
    out.print(out.context, "kentry valid field changed from 0x%x to 0x%x\n", firstValue,
              secondValue);
  } else if (fieldText(configuration_.name.text).empty()) {
    out.print(out.context, "kif stats = %s\n", stateName(firstValue));
  } else {
    // Without a line end, as scripts know it.
    out.print(out.context, "kif stats = %s, table stats = %s", stateName(firstValue),
              stateName(secondValue));
  }
}

}  // namespace TarnFirewall
