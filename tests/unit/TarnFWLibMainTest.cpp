#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

FWStatus_t initRefused(void*, void**) { return 7; }
void leave(void*) {}
FWStatus_t request(void*, void*, unsigned int, void*) { return 0; }

template <typename T>
const char* value(const T* address) {
  return reinterpret_cast<const char*>(address);
}

class TarnFWLibMain : public testing::Test {
 protected:
  FWStatus_t initialize(unsigned int version, FWIOType_t type, std::vector<const char*> items) {
    const FWStatus_t status = FW_Initialize(
        version, &reserved_, type, static_cast<unsigned int>(items.size()), items.data(), &handle_);
    library_.reset(fromLibHandle(handle_));
    return status;
  }

  FWStatus_t initializeOnMemory(unsigned int version = FW_INTERFACE_VERSION) {
    return initialize(version, FW_IO_MEMORY,
                      {"FWIOMemory", value(memory_.data()), "FWIOLength", value(&length_)});
  }

  int reserved_ = 0x5a5a;
  Bytes memory_{Bytes(64)};
  unsigned int length_ = 64;
  fwlibhandle_* handle_ = reinterpret_cast<fwlibhandle_*>(&reserved_);
  std::unique_ptr<CTarnFWLibHandle> library_;
};

}  // namespace

TEST_F(TarnFWLibMain, InitializeMakesAHandleOnTheChannelOfTheItems) {
  ASSERT_EQ(initializeOnMemory(), 0u);
  ASSERT_NE(library_, nullptr);
  void* body = nullptr;
  ASSERT_EQ(library_->getCommandBuffer(&body, 12), 0u);
  library_->addCommand(body, 12);
  EXPECT_EQ(library_->flushCommandBuffer(body, 12, nullptr, nullptr), 0u);
  library_->releaseCommandBuffer(body);
  EXPECT_EQ(memory_, Bytes(64).text(0, "TARN").at(4, {12}).at(12, {1, 1, 0, 1, 1}));
}

TEST_F(TarnFWLibMain, TheVersionIsNotLookedAtAndReservedIsNotWritten) {
  EXPECT_EQ(FW_INTERFACE_VERSION, 65536u);
  EXPECT_EQ(initializeOnMemory(0), 0u);
  EXPECT_EQ(initializeOnMemory(0xffffffffu), 0u);
  EXPECT_EQ(reserved_, 0x5a5a);
}

TEST_F(TarnFWLibMain, NullHandleOrReservedIsAnInvalidArgument) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  fwlibhandle_* kept = handle_;
  EXPECT_EQ(FW_Initialize(FW_INTERFACE_VERSION, nullptr, FW_IO_MEMORY, 0, nullptr, &handle_), 3u);
  EXPECT_EQ(handle_, kept);
  EXPECT_EQ(FW_Initialize(FW_INTERFACE_VERSION, &reserved_, FW_IO_MEMORY, 0, nullptr, nullptr), 3u);
  const std::string entry =
      "7|tarnfw:api TarnFWLibMain:FW_Initialize():N TARNFW 0.3. build # " TARNFW_BUILD ".\n";
  EXPECT_EQ(log.normalized(), (Lines{entry, entry}));
}

TEST_F(TarnFWLibMain, AnUnknownTypeGivesTenAndANullHandle) {
  LogCapture log;
  EXPECT_EQ(initialize(FW_INTERFACE_VERSION, static_cast<FWIOType_t>(9), {}), 10u);
  EXPECT_EQ(handle_, nullptr);
  EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnFWLibMain:FW_Initialize():N error 10: cannot "
                                    "initialize IO channel: 9\n"});
}

TEST_F(TarnFWLibMain, WrongKeysGiveTenAndANullHandle) {
  LogCapture log;
  EXPECT_EQ(initialize(FW_INTERFACE_VERSION, FW_IO_MEMORY,
                       {"FWIOLength", value(&length_), "FWIOMemory", value(memory_.data())}),
            10u);
  EXPECT_EQ(handle_, nullptr);
}

TEST_F(TarnFWLibMain, AChannelThatRefusesGivesItsStatusAndANullHandle) {
  LogCapture log;
  const FWLibGenericIO_ table = {initRefused, leave, request, nullptr};
  EXPECT_EQ(initialize(FW_INTERFACE_VERSION, FW_IO_GENERIC, {"FWIOGenericIO", value(&table)}), 7u);
  EXPECT_EQ(handle_, nullptr);
  EXPECT_TRUE(log.has(LOG_WARNING, "error 7: failed to initialize generic io channel\n"));
}

TEST_F(TarnFWLibMain, InitializeTracesTheVersionAndItsEnd) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  initializeOnMemory();
  EXPECT_EQ(
      log.normalized(),
      (Lines{"7|tarnfw:api TarnFWLibMain:FW_Initialize():N TARNFW 0.3. build # " TARNFW_BUILD ".\n",
             "7|tarnfw:api TarnFWLibMain:FW_Initialize():N Tarn Firewall library is "
             "initialized.\n",
             "7|tarnfw:api TarnFWLibMain:FW_Initialize():N FW_Initialize: ok\n"}));
}

TEST_F(TarnFWLibMain, ExitOfANullHandleIsAnInvalidArgument) { EXPECT_EQ(FW_Exit(nullptr), 3u); }
