#pragma once

/// The statement of the configuration language that selects an IO channel. It never goes to the
/// kernel: evaluating it makes a library handle on the channel.

#include <netinet/in.h>

#include <string>

#include "TarnFWCmd.h"

namespace TarnFirewall {

class CTarnFWCmdConfig final : public CTarnFWCmd {
 public:
  /// A TCP socket (type 2) or a ribs socket (type 3). The port is in host order.
  CTarnFWCmdConfig(bool socket, in_addr address, unsigned short port, const char* extra);

  /// A device (type 1) or a file (type 4).
  CTarnFWCmdConfig(bool device, const char* name, const char* extra);

  FWIOType_t getIOType() const { return type_; }

  /// The further text of the statement, where to save; empty when there is none.
  const std::string& getExtra() const { return extra_; }

  /// Makes a library handle on the channel. 3 for a null argument, else the result of
  /// `FW_Initialize`.
  FWStatus_t eval(fwlibhandle_** handle) const;

  unsigned int getMsgSize() const override { return 0; }
  int getType() const override;

  /// "config device NAME", "config file NAME", "config socket ADDRESS:PORT" or "config ribs ...".
  std::string toString() const override;

  std::uint16_t getCommand() const override { return 0; }

  /// Always false.
  bool writeCmdBody(void* body, unsigned int room, unsigned int* written,
                    unsigned int arg) override;

 private:
  std::string addressText() const;

  FWIOType_t type_;
  std::string name_;
  in_addr address_{};
  unsigned short port_ = 0;
  std::string extra_;
};

}  // namespace TarnFirewall
