#include "TarnFWWire.h"

namespace TarnFirewall {

void clearBytes(void* at, std::size_t size) { std::memset(at, 0, size); }

}  // namespace TarnFirewall
