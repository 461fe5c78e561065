#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <chrono>
#include <csignal>

#include "LabBench.h"
#include "LabFaults.h"

namespace TarnLab {
namespace {

class LabFaults : public LabBench {
 protected:
  void order(Fault::Kind kind, std::uint32_t value, std::uint32_t count,
             std::optional<std::uint32_t> only = std::nullopt, Device device = Device::none) {
    const StoreLock lock(store);
    Faults faults = Faults::load(store);
    faults.add({kind, value, count, only, device});
    faults.save(store);
  }
  std::size_t left() { return Faults::load(store).all().size(); }
};

TEST_F(LabFaults, AStatusIsAnsweredTheOrderedNumberOfTimes) {
  order(Fault::Kind::status, 26, 2);
  EXPECT_EQ(createRuleSet("web", {}), 26u);
  EXPECT_EQ(createRuleSet("web", {}), 26u);
  EXPECT_EQ(left(), 0u);
  EXPECT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(get32(reply, 0), 0u) << "the failed commands were not carried out";
}

TEST_F(LabFaults, AStatusForOneCommandSparesTheOthers) {
  order(Fault::Kind::status, 65, 1, 3);
  EXPECT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(createRuleSet("web", {}), 65u);
  EXPECT_EQ(createRuleSet("web", {}), 0u);
}

TEST_F(LabFaults, AFaultLetsTheOrderedNumberPassFirst) {
  {
    const StoreLock lock(store);
    Faults faults;
    Fault fault{Fault::Kind::status, 65, 1, 3, Device::none};
    fault.skipped = 2;
    EXPECT_EQ(fault.toString(),
              "messages are answered with status 65, those with command 3 only, after 2 more, the "
              "next 1");
    faults.add(fault);
    faults.save(store);
  }
  EXPECT_EQ(createRuleSet("a", {}), 0u);
  EXPECT_EQ(command(1, ByteVector(4)), 0u) << "another command does not count";
  EXPECT_EQ(createRuleSet("b", {}), 0u);
  EXPECT_EQ(left(), 1u);
  EXPECT_EQ(createRuleSet("c", {}), 65u);
  EXPECT_EQ(left(), 0u);
}

TEST_F(LabFaults, AnErrnoFailsRequestsUntilItIsCleared) {
  order(Fault::Kind::error, ENOMEM, 0);
  ByteVector body(116);
  EXPECT_EQ(direct(20, body), ENOMEM);
  EXPECT_EQ(direct(20, body), ENOMEM);
  EXPECT_EQ(left(), 1u);
  EXPECT_EQ(note(), "ordered fault");
  const StoreLock lock(store);
  Faults().save(store);
  EXPECT_FALSE(store.exists("faults"));
}

TEST_F(LabFaults, AnErrnoForOneRequestOrDeviceSparesTheOthers) {
  order(Fault::Kind::error, EPERM, 1, 21);
  order(Fault::Kind::error, EIO, 1, std::nullopt, Device::serviceInsertion);
  ByteVector body(116);
  EXPECT_EQ(direct(20, body), 0);
  EXPECT_EQ(direct(21, body), EPERM);
  EXPECT_EQ(model.request(Device::filterTables, 99, 0), ENOTTY);
  EXPECT_EQ(model.request(Device::serviceInsertion, 1, 0), EIO);
}

TEST_F(LabFaults, AnAbsentDeviceCannotBeOpened) {
  order(Fault::Kind::absent, 0, 0, std::nullopt, Device::filterTables);
  EXPECT_EQ(model.openDevice(Device::filterTables), ENOENT);
  EXPECT_EQ(model.openDevice(Device::firewall), 0);
}

TEST_F(LabFaults, ADelayHoldsARequestUp) {
  order(Fault::Kind::delay, 60, 1);
  const auto start = std::chrono::steady_clock::now();
  ByteVector body(116);
  EXPECT_EQ(direct(20, body), 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
  EXPECT_EQ(left(), 0u);
}

TEST_F(LabFaults, ASignalMakesADelayNoShorter) {
  order(Fault::Kind::delay, 200, 1);
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) {};
  ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0);
  const itimerval soon{{0, 0}, {0, 50000}};
  ASSERT_EQ(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
  const auto start = std::chrono::steady_clock::now();
  ByteVector body(116);
  EXPECT_EQ(direct(20, body), 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
  ASSERT_EQ(::sigaction(SIGALRM, &before, nullptr), 0);
}

TEST_F(LabFaults, ASignalComesOnceTheRequestIsAnswered) {
  order(Fault::Kind::signal, SIGUSR1, 1);
  static volatile std::sig_atomic_t seen;
  seen = 0;
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int number) { seen = number; };
  ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
  ByteVector body(116);
  EXPECT_EQ(direct(20, body), 0);
  EXPECT_EQ(seen, SIGUSR1);
  EXPECT_EQ(left(), 0u);
  seen = 0;
  EXPECT_EQ(direct(20, body), 0);
  EXPECT_EQ(seen, 0);
  ASSERT_EQ(::sigaction(SIGUSR1, &before, nullptr), 0);
}

TEST_F(LabFaults, AFaultOfOnePeerSparesTheOtherAndAllAreKept) {
  {
    const StoreLock lock(store);
    Faults faults;
    faults.add({Fault::Kind::peer, 7, 1, std::nullopt, Device::trace, PeerFault::cut});
    faults.add({Fault::Kind::peer, 9, 0, PeerLength::less, Device::inspection, PeerFault::length});
    faults.save(store);
  }
  Faults faults = Faults::load(store);
  EXPECT_FALSE(faults.takePeer(Device::inspection).cut);
  const PeerManner manner = faults.takePeer(Device::trace);
  EXPECT_EQ(manner.cut, 7u);
  EXPECT_FALSE(manner.length);
  EXPECT_TRUE(faults.changed());
  ASSERT_EQ(faults.all().size(), 1u);
  EXPECT_EQ(faults.takePeer(Device::inspection).length->of(100), 91u);
  EXPECT_EQ(faults.takeError(Device::firewall, 15), std::nullopt) << "no fault of a device";
}

TEST_F(LabFaults, AFileWithAFaultThatNobodyOrdersIsDamaged) {
  // Kind, device, whether there is a restriction, what a peer does; value, how often, restriction.
  const ByteVector damaged[] = {
      Record().u8(4).u8(1).u8(0).u8(0).u32(0).u32(0).u64(0),         // no peer
      Record().u8(4).u8(6).u8(0).u8(0).u32(0).u32(0).u64(0),         // nor that
      Record().u8(4).u8(4).u8(0).u8(10).u32(0).u32(0).u64(0),        // no fault of a peer
      Record().u8(4).u8(5).u8(1).u8(6).u32(0).u32(0).u32(3).u32(0),  // no relation
      Record().u8(4).u8(4).u8(0).u8(4).u32(3600001).u32(0).u64(0),   // longer than an hour
      Record().u8(5).u8(0).u8(0).u8(0).u32(0).u32(0).u64(0),         // no signal
      Record().u8(5).u8(0).u8(0).u8(0).u32(65).u32(0).u64(0),        // nor that
      Record().u8(6).u8(0).u8(0).u8(0).u32(0).u32(0).u64(0),         // no kind
  };
  for (const ByteVector& content : damaged) {
    const StoreLock lock(store);
    store.replace("faults", {content});
    EXPECT_THROW(Faults::load(store), StoreError);
  }
}

TEST_F(LabFaults, EachHasItsLineOfText) {
  const auto text = [](Fault fault) { return fault.toString(); };
  using Kind = Fault::Kind;
  EXPECT_EQ(text({Kind::status, 26, 3, 10, Device::none}),
            "messages are answered with status 26, those with command 10 only, the next 3");
  EXPECT_EQ(text({Kind::error, ENOMEM, 0, std::nullopt, Device::firewall}),
            "requests fail with ENOMEM on the device firewall, until cleared");
  EXPECT_EQ(text({Kind::error, 4000, 1, 15, Device::none}),
            "requests fail with 4000, request 15 only, the next 1");
  EXPECT_EQ(text({Kind::delay, 5, 0, std::nullopt, Device::none}),
            "requests are held up for 5 ms, until cleared");
  EXPECT_EQ(text({Kind::signal, SIGHUP, 2, std::nullopt, Device::none}),
            "programs get SIGHUP with the answer to a request, the next 2");
  EXPECT_EQ(text({Kind::signal, 64, 0, std::nullopt, Device::none}),
            "programs get signal 64 with the answer to a request, until cleared");
  EXPECT_EQ(text({Kind::absent, 0, 0, std::nullopt, Device::serviceInsertion}),
            "the device insertion is absent");
  EXPECT_EQ(text({Kind::peer, 0, 0, std::nullopt, Device::trace, PeerFault::refuse}),
            "the peer trace refuses connections, until cleared");
  EXPECT_EQ(text({Kind::peer, 250, 2, std::nullopt, Device::none, PeerFault::slow}),
            "every peer waits 250 ms before each piece of its answer, the next 2");
  EXPECT_EQ(text({Kind::peer, 3, 0, PeerLength::more, Device::inspection, PeerFault::length}),
            "the peer inspection announces 3 bytes more, until cleared");
}

}  // namespace
}  // namespace TarnLab
