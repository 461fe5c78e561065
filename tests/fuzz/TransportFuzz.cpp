// Calls of one socket, and requests to the control devices, in any order and with any answer: a
// socket throws its own exceptions only, moves no more than it was given and forgets a descriptor
// that it closed; a device's request ends as the device says, with the errno that it left.
//
// The input: a byte for the calls, each of them a byte and what `call` takes, then the host (see
// FuzzHost). Bytes of the calls are used up before the host's.

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "Fuzz.h"
#include "FuzzHost.h"
#include "Sockets.h"
#include "TarnFWFilter.h"
#include "TarnFWIoctl.h"
#include "TarnFWLog.h"
#include "TarnSiIoctl.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kFrameSize = 32;

/// A log may leave any errno.
__attribute__((format(printf, 2, 0))) void format(int, const char* text, va_list arguments) {
  char line[1024];
  std::vsnprintf(line, sizeof line, text, arguments);
  errno = EDOM;
}

/// These stay open to the end of the process.
void openDevices() {
  const FuzzHost host({});
  require(CTarnFWIoctl::GetInstance()->descriptor() >= 0);
  require(TarnSi::CTarnSiIoctl::GetInstance()->descriptor() >= 0);
}

void onSocket(unsigned int number, std::size_t size, Sockets::Socket& socket) {
  // Exactly so much memory, so that a byte more is seen.
  std::vector<unsigned char> bytes(size);
  bool wouldBlock = true;
  unsigned long moved = 0;
  switch (number) {
    case 0:
      // The descriptor of a socket is the host's; -1 stands for no connection.
      socket.Connect("127.0.0.1", "7", size % 2 == 0);
      require(socket.GetDescriptor() >= 0);
      break;
    case 1:
      socket.Connect(size % 2 == 0 ? nullptr : "127.0.0.1", nullptr);
      break;
    case 2:
      socket.Close();
      require(socket.GetDescriptor() == -1);
      break;
    case 3:
      socket.Shutdown();
      break;
    case 4:
      socket.SetBlockingMode(size % 2 == 0);
      break;
    case 5:
      socket.SetNoDelay();
      break;
    case 6:
      socket.GetErrorStatus();
      break;
    case 7:
      moved = socket.Send(bytes.data(), size, wouldBlock);
      require(moved <= size && (!wouldBlock || moved == 0));
      break;
    case 8:
      moved = socket.Recv(bytes.data(), size, wouldBlock);
      require(moved <= size && (!wouldBlock || moved == 0));
      break;
    case 9:
      require(socket.SendAll(bytes.data(), size) <= size);
      break;
    default:
      require(socket.RecvAll(bytes.data(), size) <= size);
  }
}

/// A frame of text without an end, which the service-insertion device's log shows.
void onDevice(unsigned int number, unsigned int what, const FuzzHost& host) {
  std::vector<std::uint8_t> frame(kFrameSize, 'x');
  // No frame is known for numbers from 100 on.
  const int request = static_cast<int>(100 + what);
  void* const argument = what == 0 ? nullptr : frame.data();
  int result = 0;
  switch (number) {
    case 11:
      result = FW_Ioctl(request, argument);
      break;
    case 12:
      result = SI_Ioctl(request, argument);
      break;
    case 13:
      require(WGT_Ioctl(request, argument) == -1);
      return;
    case 14:
      require(WGT_GetFd() == -1);
      return;
    default: {
      std::uint32_t count = 1;
      const auto records = GetFilterDetailList(CTarnFWIoctl::GetInstance()->descriptor(),
                                               what == 0 ? nullptr : "agent", &count);
      require(records != nullptr || count == 0);
      // As many as it says can be read.
      std::uint32_t sum = 0;
      for (std::uint32_t i = 0; i < count; ++i) sum += records[i].lspId[47] != '\0' ? 1 : 0;
      require(sum <= count);
      return;
    }
  }
  if (result == -1) require(errno == host.error());
}

/// A byte for the call and 16 bits for its size or number.
constexpr std::size_t kCallSize = 3;
constexpr unsigned int kSocketCalls = 11;
constexpr unsigned int kCalls = 16;

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  startAnew();
  FW_RegisterLogger(format, 6);
  [[maybe_unused]] static const bool opened = (openDevices(), true);
  std::span<const std::uint8_t> bytes(data, size);
  if (bytes.empty()) return 0;
  if ((bytes[0] & 0x80) != 0) FW_SetLibVerboseLevel(FW_COMPONENT_ALL, 3);
  const std::size_t wanted = (bytes[0] & 0x7f) * kCallSize;
  bytes = bytes.subspan(1);
  const auto calls = bytes.first(std::min(wanted, bytes.size() / kCallSize * kCallSize));

  const int free = freeDescriptor();
  {
    const FuzzHost host(bytes.subspan(calls.size()), FuzzHost::Kind::kHostile);
    Sockets::Socket socket;
    for (std::size_t i = 0; i < calls.size(); i += kCallSize) {
      const unsigned int number = calls[i] % kCalls;
      const unsigned int what = calls[i + 1] + 256u * calls[i + 2];
      if (number >= kSocketCalls) {
        onDevice(number, what, host);
        continue;
      }
      try {
        onSocket(number, what, socket);
      } catch (const Sockets::SocketError& e) {
        require(std::strstr(e.what(), e.call()) != nullptr);
        if (number == 0 || number == 2) {
          require(socket.GetDescriptor() == -1);
        } else {
          require(e.error() == host.error() || e.error() == EBADF);
        }
      } catch (const Sockets::SocketShutdown&) {
        require(number == 8 || number == 10);
      } catch (const std::invalid_argument&) {
        require(number == 1);
      }
    }
  }
  require(freeDescriptor() == free);
  return 0;
}
