#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "Expect.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "tarnfw.h"

/// The record of the address 10.0.0.`last`.
inline TarnFirewall::FWAddress_ ipv4(int last) {
  const Bytes bytes = Bytes(144).at(0, {1}).at(4, {10, 0, 0, last});
  return TarnFirewall::loadRecord<TarnFirewall::FWAddress_>(bytes.data());
}

/// What tests of the flat functions share: a handle on a library whose kernel is a script.
class LibraryTest : public testing::Test {
 protected:
  /// A call of a function, with the number and the body of the command that it sends.
  struct Request {
    int number;
    std::function<TarnFirewall::FWStatus_t(void* context)> call;
    Bytes body;
  };

  /// Each call sends this command, for `port` and with the context that it is given, and returns
  /// the kernel's status.
  void expectRequests(const std::vector<Request>& requests) {
    for (const Request& request : requests) {
      int context = 0;
      EXPECT_EQ(request.call(&context), 0u) << request.number;
      const FakeKernel::Message& message = kernel.last();
      EXPECT_EQ(command(), request.number);
      EXPECT_EQ(message.body(), request.body) << request.number;
      EXPECT_EQ(message.context, &context) << request.number;
      ASSERT_TRUE(message.port.has_value()) << request.number;
      EXPECT_STREQ(message.port->identifier, "nic-1") << request.number;
      kernel.answer(21);
      EXPECT_EQ(request.call(nullptr), 21u) << request.number;
    }
  }

  /// Number of the command that was sent last.
  int command() const {
    const Bytes envelope = kernel.last().envelope();
    return envelope[4] + 256 * envelope[5];
  }

  LogCapture log;
  FakeKernel kernel;
  TarnFirewall::fwlibhandle_* handle = kernel.handle();
  const TarnFirewall::dvs_port_ port = filterPort("nic-1");
};
