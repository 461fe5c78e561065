#include "TarnFWAddress.h"

namespace TarnFirewall {

unsigned int CTarnFWAddress::getMsgSize() const { return sizeof(FWAddress_); }

bool CTarnFWAddress::isIPAddress() const { return false; }
bool CTarnFWAddress::isMACAddress() const { return false; }
bool CTarnFWAddress::isContainer() const { return false; }
bool CTarnFWAddress::isIPv4Address() const { return false; }
bool CTarnFWAddress::isIPv6Address() const { return false; }

std::string CTarnFWAddress::getName() const { return {}; }

void CTarnFWAddress::appendTo(CTarnFWText& text) const { text += toString(); }

}  // namespace TarnFirewall
