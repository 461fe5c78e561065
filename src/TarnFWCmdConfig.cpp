#include "TarnFWCmdConfig.h"

#include <arpa/inet.h>

#include "TarnFWCmdCatalogue.h"
#include "TarnFWLibHandleStart.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

std::string textOf(const char* text) { return text == nullptr ? std::string() : text; }

}  // namespace

CTarnFWCmdConfig::CTarnFWCmdConfig(bool socket, in_addr address, unsigned short port,
                                   const char* extra)
    : CTarnFWCmd(nullptr),
      type_(socket ? FW_IO_SOCKET : FW_IO_RIBS),
      address_(address),
      port_(port),
      extra_(textOf(extra)) {}

CTarnFWCmdConfig::CTarnFWCmdConfig(bool device, const char* name, const char* extra)
    : CTarnFWCmd(nullptr),
      type_(device ? FW_IO_IOCTL : FW_IO_FILE),
      name_(textOf(name)),
      extra_(textOf(extra)) {}

int CTarnFWCmdConfig::getType() const { return kCmdObjectType; }

std::string CTarnFWCmdConfig::addressText() const {
  char text[INET_ADDRSTRLEN] = "";
  inet_ntop(AF_INET, &address_, text, sizeof text);
  return text;
}

std::string CTarnFWCmdConfig::toString() const {
  std::string text = "config ";
  switch (type_) {
    case FW_IO_IOCTL:
      text += "device " + name_;
      break;
    case FW_IO_FILE:
      text += "file " + name_;
      break;
    default:
      text += type_ == FW_IO_SOCKET ? "socket " : "ribs ";
      text += addressText();
      appendText(text, ":%d", port_);
  }
  return text;
}

bool CTarnFWCmdConfig::writeCmdBody(void*, unsigned int, unsigned int*, unsigned int) {
  return false;
}

FWStatus_t CTarnFWCmdConfig::eval(fwlibhandle_** handle) const {
  if (handle == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  const std::string address = addressText();
  const std::string port = formatText("%d", port_);
  const char* items[4] = {};
  unsigned int count = 2;
  switch (type_) {
    case FW_IO_IOCTL:
      items[0] = "FWIODeviceName";
      items[1] = name_.c_str();
      break;
    case FW_IO_FILE:
      items[0] = "FWIOFileName";
      items[1] = name_.c_str();
      break;
    case FW_IO_SOCKET:
    case FW_IO_RIBS:
      items[0] = "FWIOAddress";
      items[1] = address.c_str();
      items[2] = "FWIOPort";
      items[3] = port.c_str();
      count = 4;
      break;
    default:
      return FW_STATUS_INVALID_ARGUMENT;
  }
  return initializeLibrary(type_, count, items, handle);
}

}  // namespace TarnFirewall
