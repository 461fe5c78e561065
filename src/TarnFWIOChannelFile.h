#pragma once

/// A channel that writes messages into a file, one after the other without a separator.

#include <string>

#include "TarnFWIOChannel.h"

namespace TarnFirewall {

/// No reply arrives: the message keeps what the request put there, so that every command counts as
/// done. The file is closed with the channel.
class CTarnFWIOChannelFile final : public CTarnFWIOChannel {
 public:
  /// Makes the file or empties it. Throws `CCannotOpenFileException`.
  explicit CTarnFWIOChannelFile(const char* name);
  ~CTarnFWIOChannelFile() override;

  /// Writes the selector's 100 bytes, if there is one, then the message. Throws `CIoctlException`
  /// when a write fails.
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override;

 private:
  void write(const void* bytes, std::size_t size);

  std::string name_;
  int descriptor_;
};

}  // namespace TarnFirewall
