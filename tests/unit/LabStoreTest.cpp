#include <fcntl.h>
#include <gtest/gtest.h>
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
  EXPECT_FALSE(store.read("a/b/c").has_value());
  store.replace("a/b/c", {bytesOf("one"), bytesOf("two")});
  EXPECT_EQ(store.read("a/b/c").value(), bytesOf("onetwo"));
  store.replace("a/b/c", {bytesOf("3")});
  EXPECT_EQ(store.read("a/b/c").value(), bytesOf("3"));
  EXPECT_FALSE(store.exists("next"));
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

TEST_F(LabStore, AFolderThatIsMissingIsAnErrorAndNoDevice) {
  const Store missing(folder + "/none");
  EXPECT_THROW(StoreLock lock(missing), StoreError);
  EXPECT_EQ(Model(missing).openDevice(Device::firewall), ENOENT);
  EXPECT_NE(Model(missing).request(Device::firewall, 20, 0), 0);
}

}  // namespace
}  // namespace TarnLab
