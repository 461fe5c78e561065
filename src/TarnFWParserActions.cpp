#include "TarnFWParserActions.h"

#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWText.h"
#include "tarnfw_parser.h"

namespace TarnFirewall {

void FWParse::begin() const {
  extra().memory = std::make_shared<CTarnFWLoadMemory>();
  *cmdList = new CTarnFWCmdList(extra().memory);
}

void dropParseResults(const FWParse& parse) {
  delete std::exchange(*parse.cmdList, nullptr);
  delete std::exchange(*parse.cmdConfig, nullptr);
}

void reportParseFailure(const FWParse& parse) {
  const auto report = [&](const char* message) {
    yyerror(nullptr, parse.status, parse.scanner, parse.filename, parse.cmdList, parse.cmdConfig,
            message);
  };
  try {
    throw;
  } catch (const SilentParseFailure&) {
    dropParseResults(parse);
  } catch (const CTarnFWException& e) {
    *parse.status = static_cast<FWStatus_t>(e.retcode());
    report(e.what());
  } catch (...) {
    report("internal error");
  }
}

std::uint32_t number32(std::int64_t number, const char* message) {
  return numberUpTo<std::uint32_t>(number, 0xffffffff, message);
}

std::uint16_t portNumber(std::int64_t number) {
  if (number < 0 || number > 0xffff) {
    throw CParseFailure(formatText("TCP/UDP port number (%d) is invalid", static_cast<int>(number)),
                        FW_STATUS_INVALID_L4_PORT);
  }
  return static_cast<std::uint16_t>(number);
}

}  // namespace TarnFirewall
