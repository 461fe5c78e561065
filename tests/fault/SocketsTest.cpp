#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>

#include "DeviceShim.h"
#include "Loopback.h"
#include "MemoryShim.h"
#include "Sockets.h"

using Sockets::Socket;
using Sockets::SocketError;

namespace {

/// The lowest descriptor that is free: the same before and after when nothing was lost.
int nextDescriptor() {
  const int descriptor = open("/dev/null", O_RDONLY);
  close(descriptor);
  return descriptor;
}

/// A port that nobody listens at.
std::string deadPort() {
  LoopbackListener listener;
  return listener.port();
}

}  // namespace

TEST(Sockets, ARefusedConnectionLosesNoDescriptor) {
  const std::string port = deadPort();
  const int before = nextDescriptor();
  EXPECT_THROW(Socket("127.0.0.1", port.c_str()), SocketError);
  EXPECT_EQ(nextDescriptor(), before);
}

TEST(Sockets, WithoutMemoryForTheErrorARefusedConnectionLosesNoDescriptor) {
  const std::string port = deadPort();
  const int before = nextDescriptor();
  const unsigned int failures = MemoryShim::failEachAllocation(
      [&] {
        try {
          const Socket socket("127.0.0.1", port.c_str());
          ADD_FAILURE() << "somebody listens";
        } catch (const SocketError&) {
          // As expected when there is memory.
        }
      },
      [&] { EXPECT_EQ(nextDescriptor(), before); });
  EXPECT_GT(failures, 0u);
}

TEST(Sockets, WithoutADescriptorTheFailingCallIsSocket) {
  const LoopbackListener listener;
  // Objects are looked at before and after the limit too: a sanitizer that meets a class for the
  // first time needs descriptors to check it.
  Socket socket;
  EXPECT_EQ(socket.GetDescriptor(), -1);
  const int free = nextDescriptor();
  rlimit kept{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &kept), 0);
  const rlimit none{static_cast<rlim_t>(free), kept.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  std::string said;
  try {
    socket.Connect("127.0.0.1", listener.port());
  } catch (const SocketError& e) {
    setrlimit(RLIMIT_NOFILE, &kept);
    said = e.what();
  }
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &kept), 0);
  EXPECT_EQ(said, "SocketError on sd -1, in socket: Too many open files (24)");
  EXPECT_EQ(socket.GetDescriptor(), -1);
}

TEST(Sockets, ACloseThatASignalInterruptedIsDone) {
  const StreamPair pair;
  Socket socket(pair.ours);
  DeviceShim::failNextClose(EINTR);
  socket.Close();
  EXPECT_EQ(socket.GetDescriptor(), -1);
}

TEST(Sockets, ACloseThatFailsOtherwiseThrowsAndIsNotTriedAgain) {
  const StreamPair pair;
  Socket socket(pair.ours);
  DeviceShim::failNextClose(EIO);
  try {
    socket.Close();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const SocketError& e) {
    EXPECT_EQ(std::string(e.what()), "SocketError on sd " + std::to_string(pair.ours) +
                                         ", in close: Input/output error (5)");
  }
  EXPECT_EQ(socket.GetDescriptor(), -1);
  socket.Close();
}
