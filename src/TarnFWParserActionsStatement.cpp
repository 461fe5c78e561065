#include "TarnFWParserActionsStatement.h"

#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"

namespace TarnFirewall {

namespace {

CTarnFWCmd* keepChannel(const FWParse& parse, std::unique_ptr<CTarnFWCmdConfig> config) {
  delete std::exchange(*parse.cmdConfig, config.release());
  return nullptr;
}

}  // namespace

void addStatement(const FWParse& parse, std::unique_ptr<CTarnFWCmd> command) {
  if (command != nullptr) (*parse.cmdList)->addCmd(std::move(command));
  parse.arena().release({});
}

CTarnFWCmd* setChannel(const FWParse& parse, FWIOType_t type, const FWParserText& name,
                       const FWParserText& saveTo) {
  return keepChannel(
      parse, std::make_unique<CTarnFWCmdConfig>(type == FW_IO_IOCTL, name.data, saveTo.data));
}

CTarnFWCmd* setChannel(const FWParse& parse, FWIOType_t type, const FWIPPort& address,
                       const FWParserText& saveTo) {
  return keepChannel(parse, std::make_unique<CTarnFWCmdConfig>(
                                type == FW_IO_SOCKET, address.address, address.port, saveTo.data));
}

}  // namespace TarnFirewall
