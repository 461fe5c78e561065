#include <fcntl.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <poll.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "Expect.h"
#include "LibcShim.h"
#include "Loopback.h"
#include "Sockets.h"

using Sockets::Socket;
using Sockets::SocketError;
using Sockets::SocketFactory;
using Sockets::SocketShutdown;

namespace {

template <typename Call>
void expectError(Call call, const std::string& name, int number, int descriptor) {
  try {
    call();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const SocketError& e) {
    EXPECT_EQ(e.call(), name);
    EXPECT_EQ(e.error(), number);
    EXPECT_EQ(e.descriptor(), descriptor);
    EXPECT_EQ(std::string(e.what()), "SocketError on sd " + std::to_string(descriptor) + ", in " +
                                         name + ": " + std::strerror(number) + " (" +
                                         std::to_string(number) + ")");
  }
}

}  // namespace

TEST(Sockets, ErrorsNameTheCallTheNumberAndTheDescriptor) {
  const SocketError error("recv", ECONNRESET, 7);
  EXPECT_STREQ(error.what(), "SocketError on sd 7, in recv: Connection reset by peer (104)");
  EXPECT_STREQ(SocketShutdown().what(), "SocketShutdown");
}

TEST(Sockets, ANewSocketHasNoConnection) {
  const Socket socket;
  EXPECT_EQ(socket.GetDescriptor(), -1);
}

TEST(Sockets, NullArgumentsAreRefusedByName) {
  Socket socket;
  try {
    socket.Connect(nullptr, nullptr);
    ADD_FAILURE();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "addr");
  }
  try {
    socket.Connect("127.0.0.1", nullptr);
    ADD_FAILURE();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "port");
  }
}

TEST(Sockets, WhatDoesNotResolveGivesTheResolversCodeAsASystemError) {
  Socket socket;
  // Only IPv4 addresses are looked for.
  struct Case {
    const char* address;
    const char* port;
    int code;
  };
  for (const Case& c :
       {Case{"127.0.0.1", "none such", EAI_SERVICE}, Case{"::1", "80", EAI_ADDRFAMILY}}) {
    expectError([&] { socket.Connect(c.address, c.port); }, "getaddrinfo", c.code, -1);
    EXPECT_EQ(socket.GetDescriptor(), -1);
  }
}

TEST(Sockets, AnAddressThatDoesNotResolveKeepsTheConnectionThatIsThere) {
  const StreamPair pair;
  Socket socket(pair.ours);
  expectError([&] { socket.Connect("::1", "80"); }, "getaddrinfo", EAI_ADDRFAMILY, pair.ours);
  EXPECT_EQ(socket.GetDescriptor(), pair.ours);
}

TEST(Sockets, ConnectsAtOnceAndMovesBytesBothWays) {
  const LoopbackListener listener;
  Socket socket("127.0.0.1", listener.port());
  const int peer = listener.accept();
  const unsigned char text[] = {'a', 'b', 'c'};
  bool wouldBlock = true;
  EXPECT_EQ(socket.Send(text, 3, wouldBlock), 3u);
  EXPECT_FALSE(wouldBlock);
  unsigned char got[3] = {};
  EXPECT_EQ(::recv(peer, got, 3, MSG_WAITALL), 3);
  EXPECT_EQ(std::memcmp(got, text, 3), 0);
  EXPECT_EQ(::send(peer, "xyz", 3, 0), 3);
  EXPECT_EQ(socket.RecvAll(got, 3), 3u);
  EXPECT_EQ(std::memcmp(got, "xyz", 3), 0);
  EXPECT_EQ(socket.GetErrorStatus(), 0);
  ::close(peer);
}

TEST(Sockets, ARefusedConnectionThrowsAndLeavesTheSocketClosed) {
  LoopbackListener listener;
  const std::string port = listener.port();
  listener.close();
  Socket socket;
  try {
    socket.Connect("127.0.0.1", port.c_str());
    ADD_FAILURE();
  } catch (const SocketError& e) {
    EXPECT_STREQ(e.call(), "connect");
    EXPECT_EQ(e.error(), ECONNREFUSED);
  }
  EXPECT_EQ(socket.GetDescriptor(), -1);
  EXPECT_THROW(Socket("127.0.0.1", port.c_str()), SocketError);
}

TEST(Sockets, ANonBlockingConnectIsWaitedFor) {
  const LoopbackListener listener;
  Socket socket;
  socket.Connect("127.0.0.1", listener.port(), false);
  EXPECT_NE(::fcntl(socket.GetDescriptor(), F_GETFL) & O_NONBLOCK, 0);
  pollfd wait{socket.GetDescriptor(), POLLOUT, 0};
  ASSERT_EQ(::poll(&wait, 1, 5000), 1);
  EXPECT_EQ(socket.GetErrorStatus(), 0);
}

TEST(Sockets, ANonBlockingConnectReportsItsFailureLater) {
  LoopbackListener listener;
  const std::string port = listener.port();
  listener.close();
  Socket socket;
  try {
    socket.Connect("127.0.0.1", port.c_str(), false);
    pollfd wait{socket.GetDescriptor(), POLLOUT, 0};
    ASSERT_EQ(::poll(&wait, 1, 5000), 1);
    EXPECT_EQ(socket.GetErrorStatus(), ECONNREFUSED);
    EXPECT_EQ(socket.GetErrorStatus(), 0) << "reading the error clears it";
  } catch (const SocketError& e) {
    EXPECT_EQ(e.error(), ECONNREFUSED);
  }
}

TEST(Sockets, ASecondConnectClosesTheFirstConnection) {
  const LoopbackListener listener;
  Socket socket("127.0.0.1", listener.port());
  const int first = listener.accept();
  socket.Connect("127.0.0.1", listener.port());
  const int second = listener.accept();
  char byte = 0;
  EXPECT_EQ(::recv(first, &byte, 1, 0), 0);
  ::close(first);
  ::close(second);
}

TEST(Sockets, ANonBlockingSocketSaysThatItWouldBlock) {
  const StreamPair pair;
  Socket socket(pair.ours);
  socket.SetNonBlocking();
  unsigned char buffer[4096] = {};
  bool wouldBlock = false;
  EXPECT_EQ(socket.Recv(buffer, sizeof buffer, wouldBlock), 0u);
  EXPECT_TRUE(wouldBlock);

  wouldBlock = false;
  while (!wouldBlock) socket.Send(buffer, sizeof buffer, wouldBlock);
  EXPECT_EQ(socket.Send(buffer, sizeof buffer, wouldBlock), 0u);
  EXPECT_TRUE(wouldBlock);
}

TEST(Sockets, AnExchangeOnANonBlockingSocketReturnsShort) {
  const StreamPair pair;
  Socket socket(pair.ours);
  socket.SetNonBlocking();
  ASSERT_EQ(::send(pair.peer, "ab", 2, 0), 2);
  unsigned char buffer[8] = {};
  EXPECT_EQ(socket.RecvAll(buffer, 8), 2u);
  const std::vector<unsigned char> large(16u << 20);
  EXPECT_LT(socket.SendAll(large.data(), large.size()), large.size());
}

TEST(Sockets, BlockingModeIsSetBack) {
  const StreamPair pair;
  Socket socket(pair.ours);
  socket.SetNonBlocking();
  socket.SetBlocking();
  EXPECT_EQ(::fcntl(socket.GetDescriptor(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(Sockets, AnExchangeGoesOnAfterEveryShortTransfer) {
  StreamPair pair;
  Socket socket(pair.ours);
  std::vector<unsigned char> bytes(100);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i);
  std::vector<unsigned char> got(bytes.size());
  {
    const LibcShim::ShortTransfers seven(7);
    EXPECT_EQ(socket.SendAll(bytes.data(), bytes.size()), bytes.size());
    EXPECT_EQ(seven.sends(), 15u);
  }
  EXPECT_EQ(pair.arrived(), bytes);
  ASSERT_EQ(::send(pair.peer, bytes.data(), bytes.size(), 0), 100);
  {
    const LibcShim::ShortTransfers seven(7);
    EXPECT_EQ(socket.RecvAll(got.data(), 99), 99u);
    EXPECT_EQ(seven.receives(), 15u);
  }
  EXPECT_EQ(got[99], 0) << "nothing is taken beyond what was asked for";
  got[99] = 99;
  EXPECT_EQ(got, bytes);
}

TEST(Sockets, ASizeOfZeroReturnsAtOnce) {
  Socket socket;
  EXPECT_EQ(socket.SendAll(nullptr, 0), 0u);
  EXPECT_EQ(socket.RecvAll(nullptr, 0), 0u);
}

TEST(Sockets, APeerThatClosesDuringAnExchangeIsAShutdownAlsoAfterSomeBytes) {
  StreamPair pair;
  Socket socket(pair.ours);
  ASSERT_EQ(::send(pair.peer, "abc", 3, 0), 3);
  pair.closePeer();
  unsigned char buffer[8] = {};
  EXPECT_THROW(socket.RecvAll(buffer, 8), SocketShutdown);
  EXPECT_EQ(std::memcmp(buffer, "abc", 3), 0);
}

TEST(Sockets, ASendOnAClosedConnectionReportsThePipeAndRaisesNoSignal) {
  static volatile std::sig_atomic_t raised;
  raised = 0;
  const auto before = std::signal(SIGPIPE, [](int) { raised = 1; });
  StreamPair pair;
  Socket socket(pair.ours);
  pair.closePeer();
  const unsigned char byte = 0;
  bool wouldBlock = false;
  expectError([&] { socket.Send(&byte, 1, wouldBlock); }, "send", EPIPE, pair.ours);
  std::signal(SIGPIPE, before);
  EXPECT_EQ(raised, 0);
}

TEST(Sockets, CloseTwiceIsHarmless) {
  const StreamPair pair;
  Socket socket(pair.ours);
  socket.Close();
  EXPECT_EQ(socket.GetDescriptor(), -1);
  socket.Close();
  socket.Shutdown();
  EXPECT_EQ(::fcntl(pair.ours, F_GETFD), -1);
}

TEST(Sockets, AFailingCloseLeavesTheSocketClosed) {
  const StreamPair pair;
  Socket socket(pair.ours);
  ::close(pair.ours);
  expectError([&] { socket.Close(); }, "close", EBADF, pair.ours);
  EXPECT_EQ(socket.GetDescriptor(), -1);
}

TEST(Sockets, ShutdownEndsBothDirections) {
  const StreamPair pair;
  Socket socket(pair.ours);
  socket.Shutdown();
  char byte = 0;
  EXPECT_EQ(::recv(pair.peer, &byte, 1, 0), 0);
  unsigned char got = 0;
  bool wouldBlock = false;
  EXPECT_THROW(socket.Recv(&got, 1, wouldBlock), SocketShutdown);
}

TEST(Sockets, TheDestructorClosesTheDescriptor) {
  const StreamPair pair;
  { const Socket socket(pair.ours); }
  EXPECT_EQ(::fcntl(pair.ours, F_GETFD), -1);
}

TEST(Sockets, NoDelayReachesTheSystem) {
  const LoopbackListener listener;
  Socket socket("127.0.0.1", listener.port());
  socket.SetNoDelay();
  int on = 0;
  socklen_t size = sizeof on;
  ASSERT_EQ(getsockopt(socket.GetDescriptor(), IPPROTO_TCP, TCP_NODELAY, &on, &size), 0);
  EXPECT_NE(on, 0);
}

TEST(Sockets, OperationsOnAClosedSocketNameTheFailingCall) {
  Socket socket;
  unsigned char byte = 0;
  bool wouldBlock = false;
  expectError([&] { socket.Send(&byte, 1, wouldBlock); }, "send", EBADF, -1);
  expectError([&] { socket.Recv(&byte, 1, wouldBlock); }, "recv", EBADF, -1);
  expectError([&] { (void)socket.GetErrorStatus(); }, "getsockopt", EBADF, -1);
  expectError([&] { socket.SetNoDelay(); }, "setsockopt", EBADF, -1);
  expectError([&] { socket.SetNonBlocking(); }, "fcntl", EBADF, -1);
}

TEST(Sockets, ShutdownOfAnUnconnectedSocketThrows) {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
  Socket socket(descriptor);
  expectError([&] { socket.Shutdown(); }, "shutdown", ENOTCONN, descriptor);
}

TEST(Sockets, TheFactoryMakesConnectedSocketsOfTypeZeroOnly) {
  const LoopbackListener listener;
  const auto socket =
      SocketFactory::createSocket(Sockets::SOCKET_TCP, "127.0.0.1", listener.port());
  ASSERT_NE(socket, nullptr);
  EXPECT_NE(socket->GetDescriptor(), -1);
  EXPECT_THROW_WITH(SocketFactory::createSocket(static_cast<Sockets::SocketType_t>(1), "127.0.0.1",
                                                listener.port()),
                    TarnFirewall::CUnknownSocketTypeException, 11, "unknown socket type: 1");
}
