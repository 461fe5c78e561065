#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "LabBench.h"
#include "LabFaults.h"
#include "LabSelector.h"
#include "LabSetFile.h"
#include "LabStore.h"

namespace TarnLab {
namespace {

class LabStore : public LabBench {};

ByteVector bytesOf(const std::string& text) { return Record().text(text, text.size()); }

TEST_F(LabStore, ReplacesAFileWholeAndMakesItsFolders) {
  EXPECT_FALSE(store.read("a/b/c", 6).has_value());
  store.replace("a/b/c", {bytesOf("one"), bytesOf("two")});
  EXPECT_EQ(store.read("a/b/c", 6).value(), bytesOf("onetwo"));
  store.replace("a/b/c", {bytesOf("3")});
  EXPECT_EQ(store.read("a/b/c", 6).value(), bytesOf("3"));
  EXPECT_FALSE(store.exists("next"));
  EXPECT_THROW(store.read("host", 1000), StoreError);
}

TEST_F(LabStore, RemovesFilesAndTreesAndIsContentWithNone) {
  store.replace("tree/a/b", {bytesOf("x")});
  EXPECT_TRUE(store.remove("tree/a/b"));
  EXPECT_FALSE(store.remove("tree/a/b"));
  EXPECT_FALSE(store.remove("host/below-a-file"));
  store.replace("tree/a/b", {bytesOf("x")});
  store.removeTree("tree");
  EXPECT_FALSE(store.exists("tree"));
  EXPECT_FALSE(store.exists("trash"));
  store.removeTree("tree");
}

TEST_F(LabStore, ListsNamesInTheirOrder) {
  for (const char* name : {"b", "a.2", "a.10", "B"}) store.replace(std::string("list/") + name, {});
  EXPECT_EQ(store.list("list"), (std::vector<std::string>{"B", "a.10", "a.2", "b"}));
  EXPECT_TRUE(store.list("no such folder").empty());
}

TEST_F(LabStore, NamesOfAnyBytesBecomeFileNamesAndComeBack) {
  for (const std::string name :
       {"", "web", ".", "..", ".hidden", "a/b", "100%", "caf\xc3\xa9", " "}) {
    const std::string file = Selector::fileName(name);
    EXPECT_EQ(file.find('/'), std::string::npos);
    EXPECT_NE(file, ".");
    EXPECT_NE(file, "..");
    EXPECT_FALSE(file.empty());
    EXPECT_EQ(Selector::nameOfFile(file), name);
  }
}

TEST_F(LabStore, RefusesDamagedFilesByName) {
  std::ofstream(store.path("host"), std::ios::trunc) << "TARNLAB1 and no more";
  EXPECT_THROW(Host::load(store), StoreError);
  std::ofstream(store.path("faults")) << "x";
  EXPECT_THROW(Faults::load(store), StoreError);
  std::ofstream(store.path("set")) << std::string(SetHead::size, 'x');
  EXPECT_THROW(SetFile::open(store, "set"), StoreError);
  EXPECT_EQ(model.request(Device::firewall, 20, 0), EIO);
}

TEST_F(LabStore, ARequestOnADamagedLabFailsWithALineInTheLog) {
  for (const char* file : {"faults", "host"}) {
    std::ofstream(store.path(file), std::ios::trunc) << "x";
    EXPECT_EQ(model.request(Device::firewall, 20, reinterpret_cast<std::uintptr_t>(this)), EIO);
    EXPECT_EQ(note(), "damaged file " + store.path(file) + ": Invalid argument");
    store.remove(file);
  }
}

TEST_F(LabStore, WhatIsNoPlainFileIsDamagedAndNotWaitedFor) {
  for (const char* file : {"host", "faults", "log"}) {
    store.remove(file);
    ASSERT_EQ(::mkfifo(store.path(file).c_str(), 0600), 0);
    EXPECT_THROW(store.open(file), StoreError);
    EXPECT_EQ(model.request(Device::firewall, 20, reinterpret_cast<std::uintptr_t>(this)), EIO);
  }
  EXPECT_THROW(store.open("."), StoreError);
}

TEST_F(LabStore, RefusesAFileOfFaultsThatNobodyCouldHaveOrdered) {
  const ByteVector good = Record().u8(1).u8(3).u16(0).u32(5).to(20);
  const auto loads = [this](const ByteVector& record) {
    store.replace("faults", {record});
    try {
      return Faults::load(store).all().size() == 1;
    } catch (const StoreError&) {
      return false;
    }
  };
  EXPECT_TRUE(loads(good));
  EXPECT_FALSE(loads(Record().bytes(good).set(0, 4))) << "kind";
  EXPECT_FALSE(loads(Record().bytes(good).set(1, 4))) << "device";
  EXPECT_FALSE(loads(Record().bytes(good).set(4, 0))) << "no error at all";
  EXPECT_FALSE(loads(Record().bytes(good).set(7, 0x80))) << "no errno";
  EXPECT_FALSE(loads(Record().bytes(good).set(0, 3).set(1, 0))) << "absent, and no device";
  EXPECT_FALSE(loads(Record().bytes(good).set(0, 2).set(6, 0x7f))) << "delay of more than an hour";
}

TEST_F(LabStore, RefusesASetWhoseCountsDoNotAgreeWithItsSize) {
  const auto opens = [this](std::size_t offset, unsigned value) {
    SetHead head;
    head.counts[1] = 2;
    head.entryBytes = 2 * 892;
    SetFile::save(store, "set", head, ByteVector(2 * 892));
    ByteVector bytes = store.read("set", 10000).value();
    put8(bytes, offset, static_cast<std::uint8_t>(value));
    store.replace("set", {bytes});
    try {
      return SetFile::open(store, "set").has_value();
    } catch (const StoreError&) {
      return false;
    }
  };
  EXPECT_TRUE(opens(16, 2));
  EXPECT_FALSE(opens(16, 3)) << "another count";
  EXPECT_FALSE(opens(12, 1)) << "and one of another kind";
  EXPECT_FALSE(opens(8, 3)) << "neither rules nor addresses";
}

TEST_F(LabStore, TheLockKeepsThreadsApart) {
  std::atomic<int> inside = 0;
  std::atomic<bool> met = false;
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < 50; ++turn) {
        const StoreLock lock(store);
        if (inside.fetch_add(1) != 0) met = true;
        ++count;
        inside.fetch_sub(1);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(met);
  EXPECT_EQ(count, 200);
}

TEST_F(LabStore, AChildThatIsForkedWhileTheLockIsHeldDoesNotKeepIt) {
  pid_t child = -1;
  {
    const StoreLock lock(store);
    child = ::fork();
    if (child == 0) {
      ::pause();
      ::_exit(0);
    }
  }
  const int file = ::open(store.path("lock").c_str(), O_RDWR | O_CLOEXEC);
  EXPECT_EQ(::flock(file, LOCK_EX | LOCK_NB), 0);
  ::close(file);
  ::kill(child, SIGKILL);
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST_F(LabStore, AFolderThatIsMissingIsAnErrorAndNoDevice) {
  const Store missing(folder + "/none");
  EXPECT_THROW(StoreLock lock(missing), StoreError);
  EXPECT_EQ(Model(missing).openDevice(Device::firewall), ENOENT);
  EXPECT_NE(Model(missing).request(Device::firewall, 20, 0), 0);
}

}  // namespace
}  // namespace TarnLab
