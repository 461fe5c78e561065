#pragma once

/// Actions of the list of statements, and of the statements that change the setup.

#include "TarnFWCmd.h"
#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// Adds the statement's command, if it has one, and frees the statement's texts.
void addStatement(const FWParse& parse, std::unique_ptr<CTarnFWCmd> command);

/// Replaces the channel that an earlier statement chose, by one with a name (`FW_IO_IOCTL`,
/// `FW_IO_FILE`) or one with an address (`FW_IO_SOCKET`, `FW_IO_RIBS`). No command comes of it:
/// null.
CTarnFWCmd* setChannel(const FWParse& parse, FWIOType_t type, const FWParserText& name,
                       const FWParserText& saveTo);
CTarnFWCmd* setChannel(const FWParse& parse, FWIOType_t type, const FWIPPort& address,
                       const FWParserText& saveTo);

}  // namespace TarnFirewall
