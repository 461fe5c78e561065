#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "Expect.h"
#include "TarnFWIOChannelFactory.h"
#include "TarnFWIOChannelFile.h"
#include "TarnFWIOChannelGeneric.h"
#include "TarnFWIOChannelMemory.h"

using namespace TarnFirewall;

namespace {

FWStatus_t init(void* argument, void** context) {
  *context = argument;
  return 0;
}
void leave(void*) {}
FWStatus_t request(void*, void*, unsigned int, void*) { return 0; }

const FWLibGenericIO_ g_table = {init, leave, request, nullptr};

/// The address of anything as the value of a pair.
template <typename T>
const char* value(const T* address) {
  return reinterpret_cast<const char*>(address);
}

template <typename Channel>
void expectMade(FWIOType_t type, std::vector<const char*> items) {
  const auto channel =
      create_io_channel(type, static_cast<unsigned int>(items.size()), items.data());
  EXPECT_NE(dynamic_cast<Channel*>(channel.get()), nullptr);
}

void expectRefused(FWIOType_t type, std::vector<const char*> items) {
  EXPECT_THROW_WITH(create_io_channel(type, static_cast<unsigned int>(items.size()), items.data()),
                    CCannotInitializeIOException, 10,
                    "cannot initialize IO channel: " + std::to_string(static_cast<int>(type)));
}

}  // namespace

TEST(TarnFWIOChannelFactory, UnknownTypesCannotBeInitialized) {
  expectRefused(static_cast<FWIOType_t>(0), {});
  expectRefused(static_cast<FWIOType_t>(7), {});
  expectRefused(static_cast<FWIOType_t>(0x7fffffff), {"FWIOFileName", "x"});
}

TEST(TarnFWIOChannelFactory, TheDeviceTakesNothingOrItsNameOnly) {
  expectRefused(FW_IO_IOCTL, {"FWIODeviceName"});
  expectRefused(FW_IO_IOCTL, {"FWIOFileName", "/dev/brq-tarn"});
  expectRefused(FW_IO_IOCTL, {"FWIODeviceName", "a", "FWIODeviceName", "b"});
}

TEST(TarnFWIOChannelFactory, SocketKeysMustStandInOrder) {
  expectRefused(FW_IO_SOCKET, {"FWIOPort", "1", "FWIOAddress", "127.0.0.1"});
  expectRefused(FW_IO_SOCKET, {"FWIOAddress", "127.0.0.1"});
  expectRefused(FW_IO_SOCKET, {});
  expectRefused(FW_IO_RIBS, {"FWIOPort", "1", "FWIOAddress", "127.0.0.1"});
}

TEST(TarnFWIOChannelFactory, FileTakesOneName) {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarnfw.XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const std::string name = pattern + "/messages";
  expectMade<CTarnFWIOChannelFile>(FW_IO_FILE, {"FWIOFileName", name.c_str()});
  EXPECT_TRUE(std::filesystem::exists(name));
  std::filesystem::remove_all(pattern);
  expectRefused(FW_IO_FILE, {});
  expectRefused(FW_IO_FILE, {"FWIOFileName"});
  expectRefused(FW_IO_FILE, {"fwiofilename", name.c_str()});
  expectRefused(FW_IO_FILE, {"FWIOFileName", name.c_str(), "FWIOFileName", name.c_str()});
  EXPECT_FALSE(std::filesystem::exists(name));
}

TEST(TarnFWIOChannelFactory, MemoryTakesItsAddressAndAPointerToItsLength) {
  Bytes memory(8);
  const unsigned int length = 4;
  const std::vector<const char*> items = {"FWIOMemory", value(memory.data()), "FWIOLength",
                                          value(&length)};
  expectMade<CTarnFWIOChannelMemory>(FW_IO_MEMORY, items);
  const auto channel = create_io_channel(FW_IO_MEMORY, 4, const_cast<const char**>(items.data()));
  Bytes message = {1, 2, 3, 4};
  EXPECT_EQ(channel->sendIOCTL(nullptr, message.data(), 4, nullptr), 0u);
  EXPECT_EQ(memory, (Bytes{1, 2, 3, 4, 0, 0, 0, 0}));
  Bytes five(5);
  EXPECT_THROW_WITH(channel->sendIOCTL(nullptr, five.data(), 5, nullptr), COutOfMemoryException, 8,
                    "out of memory while trying to alloc 5 bytes memory");
  expectRefused(FW_IO_MEMORY, {"FWIOLength", value(&length), "FWIOMemory", value(memory.data())});
  expectRefused(FW_IO_MEMORY, {"FWIOMemory", value(memory.data())});
}

TEST(TarnFWIOChannelFactory, GenericTakesTheTableThenArgumentThenContext) {
  int argument = 0;
  void* context = nullptr;
  expectMade<CTarnFWIOChannelGeneric>(FW_IO_GENERIC, {"FWIOGenericIO", value(&g_table)});
  expectMade<CTarnFWIOChannelGeneric>(
      FW_IO_GENERIC, {"FWIOGenericIO", value(&g_table), "FWIOGenericIOInitArg", value(&argument)});
  EXPECT_EQ(context, nullptr);
  expectMade<CTarnFWIOChannelGeneric>(
      FW_IO_GENERIC, {"FWIOGenericIO", value(&g_table), "FWIOGenericIOInitArg", value(&argument),
                      "FWIOGenericIOContext", value(&context)});
  EXPECT_EQ(context, &argument);
  expectRefused(FW_IO_GENERIC, {});
  expectRefused(FW_IO_GENERIC,
                {"FWIOGenericIO", value(&g_table), "FWIOGenericIOContext", value(&context)});
  expectRefused(FW_IO_GENERIC,
                {"FWIOGenericIOInitArg", value(&argument), "FWIOGenericIO", value(&g_table)});
}

TEST(TarnFWIOChannelFactory, AMissingTableIsTheChannelsOwnRefusal) {
  std::vector<const char*> items = {"FWIOGenericIO", nullptr};
  EXPECT_THROW_WITH(create_io_channel(FW_IO_GENERIC, 2, items.data()), CUnsupportedException, 7,
                    "invalid generic io ops");
}

TEST(TarnFWIOChannelFactory, NullItemsKeysAndValuesAreRefused) {
  EXPECT_THROW_WITH(create_io_channel(FW_IO_FILE, 2, nullptr), CCannotInitializeIOException, 10,
                    "cannot initialize IO channel: 4");
  expectRefused(FW_IO_FILE, {nullptr, "name"});
  expectRefused(FW_IO_FILE, {"FWIOFileName", nullptr});
  const unsigned int length = 4;
  expectRefused(FW_IO_MEMORY, {"FWIOMemory", nullptr, "FWIOLength", value(&length)});
  expectRefused(FW_IO_MEMORY, {"FWIOMemory", value(&length), "FWIOLength", nullptr});
}

TEST(TarnFWIOChannelFactory, TheFactoryItselfRefusesTypesOutsideOneToSix) {
  for (const int type : {-1, 0, 7}) {
    EXPECT_THROW_WITH(CTarnFWIOChannelFactory::newIOChannel(type), CUnknownIOTypeException, 15,
                      "unknown IO channel type: " + std::to_string(type));
  }
}
