#include <gtest/gtest.h>

#include <cerrno>

#include "Expect.h"
#include "TarnFWIOChannelGeneric.h"

using namespace TarnFirewall;

namespace {

/// What the functions below saw and what they are to answer.
struct Peer {
  int inits = 0;
  int exits = 0;
  int requests = 0;
  FWStatus_t initStatus = 0;
  FWStatus_t requestStatus = 0;
  int error = 0;
  void* callerContext = nullptr;
  unsigned int size = 0;
};

FWStatus_t init(void* argument, void** context) {
  auto* peer = static_cast<Peer*>(argument);
  ++peer->inits;
  *context = peer;
  return peer->initStatus;
}

void leave(void* context) { ++static_cast<Peer*>(context)->exits; }

FWStatus_t request(void* context, void* message, unsigned int size, void* callerContext) {
  auto* peer = static_cast<Peer*>(context);
  ++peer->requests;
  peer->size = size;
  peer->callerContext = callerContext;
  static_cast<std::uint8_t*>(message)[0] = 0x99;
  errno = peer->error;
  return peer->requestStatus;
}

void neverCalled() { ADD_FAILURE() << "the fourth function was called"; }

FWLibGenericIO_ table() { return {init, leave, request, neverCalled}; }

}  // namespace

TEST(TarnFWIOChannelGeneric, InitContextReachesRequestExitAndTheCaller) {
  Peer peer;
  void* context = nullptr;
  const FWLibGenericIO_ functions = table();
  Bytes message(24);
  int callers = 0;
  {
    CTarnFWIOChannelGeneric channel(&functions, &peer, &context);
    EXPECT_EQ(context, &peer);
    EXPECT_EQ(channel.sendIOCTL(nullptr, message.data(), 24, &callers), 0u);
    EXPECT_EQ(peer.exits, 0);
  }
  EXPECT_EQ(peer.inits, 1);
  EXPECT_EQ(peer.requests, 1);
  EXPECT_EQ(peer.exits, 1);
  EXPECT_EQ(peer.size, 24u);
  EXPECT_EQ(peer.callerContext, &callers);
}

TEST(TarnFWIOChannelGeneric, TheAnswerStandsInTheMessage) {
  Peer peer;
  const FWLibGenericIO_ functions = table();
  Bytes message(24);
  CTarnFWIOChannelGeneric(&functions, &peer, nullptr)
      .sendIOCTL(nullptr, message.data(), 24, nullptr);
  EXPECT_EQ(message, Bytes(24).at(0, {0x99}));
}

TEST(TarnFWIOChannelGeneric, TheTableIsCopied) {
  Peer peer;
  FWLibGenericIO_ functions = table();
  Bytes message(24);
  CTarnFWIOChannelGeneric channel(&functions, &peer, nullptr);
  functions = FWLibGenericIO_{};
  EXPECT_EQ(channel.sendIOCTL(nullptr, message.data(), 24, nullptr), 0u);
  EXPECT_EQ(peer.requests, 1);
}

TEST(TarnFWIOChannelGeneric, RefusesATableInTheOrderTableRequestInitExit) {
  Peer peer;
  FWLibGenericIO_ functions{};
  EXPECT_THROW_WITH(CTarnFWIOChannelGeneric(nullptr, &peer, nullptr), CUnsupportedException, 7,
                    "invalid generic io ops");
  EXPECT_THROW_WITH(CTarnFWIOChannelGeneric(&functions, &peer, nullptr), CUnsupportedException, 7,
                    "invalid generic io request function");
  functions.request = request;
  EXPECT_THROW_WITH(CTarnFWIOChannelGeneric(&functions, &peer, nullptr), CUnsupportedException, 7,
                    "invalid generic io init function");
  functions.init = init;
  EXPECT_THROW_WITH(CTarnFWIOChannelGeneric(&functions, &peer, nullptr), CUnsupportedException, 7,
                    "invalid generic io exit function");
  EXPECT_EQ(peer.inits, 0);
}

TEST(TarnFWIOChannelGeneric, TheFourthFunctionMayBeNull) {
  Peer peer;
  FWLibGenericIO_ functions = table();
  functions.reserved = nullptr;
  { const CTarnFWIOChannelGeneric channel(&functions, &peer, nullptr); }
  EXPECT_EQ(peer.exits, 1);
}

TEST(TarnFWIOChannelGeneric, AFailingInitRefusesTheChannelAndExitIsNotCalled) {
  Peer peer;
  peer.initStatus = 1;
  const FWLibGenericIO_ functions = table();
  void* context = nullptr;
  EXPECT_THROW_WITH(CTarnFWIOChannelGeneric(&functions, &peer, &context), CUnsupportedException, 7,
                    "failed to initialize generic io channel");
  EXPECT_EQ(peer.exits, 0);
  EXPECT_EQ(context, nullptr);
}

TEST(TarnFWIOChannelGeneric, AFailingRequestTellsItsStatusText) {
  Peer peer;
  peer.requestStatus = 28;
  const FWLibGenericIO_ functions = table();
  Bytes message(24);
  CTarnFWIOChannelGeneric channel(&functions, &peer, nullptr);
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 24, nullptr), CIoctlException, 19,
                    "failed to write message to generic io: no ruleset");
}

TEST(TarnFWIOChannelGeneric, ENOMEMOfAFailingRequestIsTheKernelOutOfMemory) {
  Peer peer;
  peer.requestStatus = 5;
  peer.error = ENOMEM;
  const FWLibGenericIO_ functions = table();
  Bytes message(24);
  CTarnFWIOChannelGeneric channel(&functions, &peer, nullptr);
  EXPECT_THROW_WITH(channel.sendIOCTL(nullptr, message.data(), 24, nullptr), CIoctlException, 65,
                    "failed to write message to generic io: unknown error");
}
