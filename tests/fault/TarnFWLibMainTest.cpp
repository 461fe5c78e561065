#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "DeviceShim.h"
#include "Expect.h"
#include "FakeKernel.h"
#include "Locks.h"
#include "LogCapture.h"
#include "TarnFWLibConfig.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

const char kDevice[] = "/dev/brq-tarn";

template <typename T>
const char* value(const T* address) {
  return reinterpret_cast<const char*>(address);
}

/// A generic channel that counts its ends in its context.
FWStatus_t init(void* argument, void** context) {
  *context = argument;
  return 0;
}
void countEnd(void* context) { ++*static_cast<int*>(context); }
FWStatus_t request(void*, void*, unsigned int, void*) { return 0; }

__attribute__((format(printf, 2, 3))) int printNothing(void*, const char*, ...) { return 0; }

/// Sends one empty command through the handle.
FWStatus_t send(fwlibhandle_* handle) {
  CTarnFWLibHandle& library = *fromLibHandle(handle);
  void* body = nullptr;
  EXPECT_EQ(library.getCommandBuffer(&body, 12), 0u);
  library.addCommand(body, 12);
  const FWStatus_t status = library.flushCommandBuffer(body, 12, nullptr, nullptr);
  EXPECT_EQ(library.releaseCommandBuffer(body), 0u);
  return status;
}

}  // namespace

TEST(TarnFWLibMain, TheDefaultHandleIsMadeOnceAndReachesTheDevice) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    fwlibhandle_* handle = FW_GetDefaultLibHandle();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(FW_GetDefaultLibHandle(), handle);
    EXPECT_EQ(log.normalized(),
              (Lines{"6|tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn "
                     "library.\n\n",
                     "6|tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initialized tarn "
                     "library\n\n"}));
    EXPECT_EQ(send(handle), 0u);
    EXPECT_EQ(DeviceShim::calls().size(), 1u);
  });
}

TEST(TarnFWLibMain, GetDefaultLibHandleTracesEntryAndEnd) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    FW_GetDefaultLibHandle();
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
    FW_GetDefaultLibHandle();
    const std::string place = "7|tarnfw:api TarnFWLibMain:FW_GetDefaultLibHandle():N ";
    EXPECT_EQ(log.normalized(), (Lines{place + "FW_GetDefaultLibHandle.\n",
                                       place + "Tarn Firewall library is initialized.\n"}));
  });
}

TEST(TarnFWLibMain, WithoutTheDeviceTheProcessEndsWithStatus255) {
  const FreshResult result = runFresh([] {
    DeviceShim::putFailing(kDevice, ENOENT);
    logToStandardError();
    std::atexit([] { std::fprintf(stderr, "what runs at the end has run\n"); });
    FW_GetDefaultLibHandle();
    std::fprintf(stderr, "not reached\n");
  });
  EXPECT_EQ(result.status, 255);
  EXPECT_EQ(result.errors,
            "6|tarnfw: TarnFWLibHandle:GetIoctlInstance():N Initializing tarn library.\n\n"
            "4|tarnfw: TarnFWLibMain:FW_Initialize():N error 12: cannot open device "
            "/dev/brq-tarn: 2\n"
            "3|tarnfw: TarnFWLibHandle:GetIoctlInstance():N Failed to initialize tarn library: "
            "cannot load file\n\n"
            "what runs at the end has run\n");
}

TEST(TarnFWLibMain, ExitOfTheDefaultHandleKeepsItUsable) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    fwlibhandle_* handle = FW_GetDefaultLibHandle();
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
    EXPECT_EQ(FW_Exit(handle), 0u);
    const std::string place = "7|tarnfw:api TarnFWLibMain:FW_Exit():N ";
    EXPECT_EQ(
        log.normalized(),
        (Lines{place + "FW_Exit.\n",
               place + "Not delete the lib handle since it's the global default one.\n",
               place + "Tarn Firewall library TARNFW 0.3 has exited.\n", place + "FW_Exit: ok\n"}));
    EXPECT_EQ(FW_GetDefaultLibHandle(), handle);
    EXPECT_EQ(send(handle), 0u);
    EXPECT_TRUE(DeviceShim::closes().empty());
  });
}

TEST(TarnFWLibMain, ExitOfAnotherHandleDeletesItAndMakesTheDefaultOne) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    int ends = 0;
    const FWLibGenericIO_ table = {init, countEnd, request, nullptr};
    const char* items[] = {"FWIOGenericIO", value(&table), "FWIOGenericIOInitArg", value(&ends)};
    int reserved = 0;
    fwlibhandle_* handle = nullptr;
    ASSERT_EQ(FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_GENERIC, 4, items, &handle), 0u);
    LogCapture log;
    g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
    EXPECT_EQ(FW_Exit(handle), 0u);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(DeviceShim::opens().size(), 1u);
    EXPECT_FALSE(
        log.has(LOG_DEBUG, "Not delete the lib handle since it's the global default one.\n"));
    EXPECT_TRUE(log.has(LOG_DEBUG, "Tarn Firewall library TARNFW 0.3 has exited.\n"));
  });
}

TEST(TarnFWLibMain, ALockThatFailsGivesNoDefaultHandleAndAWarning) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    LogCapture log;
    DeviceShim::failNextLock();
    EXPECT_EQ(FW_GetDefaultLibHandle(), nullptr);
    EXPECT_EQ(log.normalized(),
              Lines{"4|tarnfw: TarnFWLibMain:FW_GetDefaultLibHandle():N FW_GetDefaultLibHandle: "
                    "encountered internal error\n"});
    EXPECT_NE(FW_GetDefaultLibHandle(), nullptr);
  });
}

TEST(TarnFWLibMain, ALockThatFailsMakesExitAnUnknownError) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    fwlibhandle_* handle = FW_GetDefaultLibHandle();
    LogCapture log;
    DeviceShim::failNextLock();
    EXPECT_EQ(FW_Exit(handle), 5u);
    EXPECT_TRUE(log.has(LOG_WARNING, "FW_Exit: encountered internal error\n"));
  });
}

TEST(TarnFWLibMain, HandlesOnTheDeviceShareItsDescriptorAndCountForThemselves) {
  EXPECT_FRESH([] {
    std::vector<std::uint8_t> sequences;
    DeviceShim::put(kDevice, [&](const DeviceShim::Call& call) {
      std::uint64_t address = 0;
      std::memcpy(&address, static_cast<const char*>(call.argument) + 12, 8);
      std::memcpy(&address, reinterpret_cast<const char*>(address) + 104, 8);
      sequences.push_back(reinterpret_cast<const std::uint8_t*>(address)[8]);
      return 0;
    });
    fwlibhandle_* standard = FW_GetDefaultLibHandle();
    send(standard);
    send(standard);
    int reserved = 0;
    fwlibhandle_* handle = nullptr;
    ASSERT_EQ(FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_IOCTL, 0, nullptr, &handle), 0u);
    send(handle);
    EXPECT_EQ(FW_Exit(handle), 0u);
    send(standard);
    EXPECT_EQ(sequences, (std::vector<std::uint8_t>{0, 1, 0, 2}));
    EXPECT_EQ(DeviceShim::opens().size(), 1u);
  });
}

TEST(TarnFWLibMain, ThreadsGetOneDefaultHandle) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    fwlibhandle_* one = nullptr;
    fwlibhandle_* two = nullptr;
    std::thread first([&] { one = FW_GetDefaultLibHandle(); });
    std::thread second([&] { two = FW_GetDefaultLibHandle(); });
    first.join();
    second.join();
    EXPECT_EQ(one, two);
    EXPECT_EQ(DeviceShim::opens().size(), 1u);
  });
}

TEST(TarnFWLibMain, InitializeWithoutMemoryForTheHandleGivesEight) {
  EXPECT_FRESH([] {
    DeviceShim::put(kDevice);
    int reserved = 0;
    fwlibhandle_* handle = reinterpret_cast<fwlibhandle_*>(&reserved);
    LogCapture log;
    DeviceShim::failNextNothrowNew();
    EXPECT_EQ(FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_IOCTL, 0, nullptr, &handle), 8u);
    EXPECT_EQ(handle, nullptr);
    EXPECT_TRUE(log.has(LOG_WARNING, "error 8: out of memory while trying to alloc " +
                                         std::to_string(sizeof(CTarnFWLibHandle)) +
                                         " bytes memory\n"));
    EXPECT_TRUE(DeviceShim::opens().empty());
  });
}

TEST(TarnFWLog, ALockThatFailsRegistersNoComponentAndPassesNoException) {
  LogCapture log;
  unsigned int component = 77;
  DeviceShim::failNextLock();
  EXPECT_EQ(FW_RegisterComponent("mine", &component), 5u);
  EXPECT_EQ(component, 77u);
  EXPECT_EQ(FW_GetComponentCount(), 19u);
  EXPECT_EQ(
      log.normalized(),
      Lines{"4|tarnfw: TarnFWLibMain:FW_RegisterComponent():N FW_RegisterComponent: encountered "
            "internal error\n"});
}

TEST(TarnFWLog, ALockThatFailsKeepsThePrinterAndPassesNoException) {
  LogCapture log;
  int context = 0;
  DeviceShim::failNextLock();
  FW_SetLibPrettyPrinting(printNothing, &context);
  EXPECT_EQ(g_tarnfw_pretty_printing, nullptr);
  EXPECT_EQ(g_tarnfw_pretty_printing_context, nullptr);
  EXPECT_EQ(log.normalized(),
            Lines{"4|tarnfw: TarnFWLibMain:FW_SetLibPrettyPrinting():N FW_SetLibPrettyPrinting: "
                  "encountered internal error\n"});
}

TEST(TarnFWLog, ALockThatFailsWhileACommandPrintsIsThrown) {
  DeviceShim::failNextLock();
  EXPECT_THROW(PrettyPrinting(), Locks::LockException);
}

TEST(TarnFWSimpleMsgBuf, WithoutMemoryABufferIsRefusedWithAWarning) {
  LogCapture log;
  const auto library = CTarnFWLibHandle::GetInstance();
  void* body = nullptr;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(library->getCommandBuffer(&body, 300), 8u);
  EXPECT_EQ(body, nullptr);
  EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: TarnFWSimpleMsgBuf:getBuffer():N failed to get "
                                    "message buffer of size 300\n\n"});
}

TEST(TarnFWSimpleMsgBuf, TheLargestSizeThatDoesNotOverflowGoesToTheAllocator) {
  LogCapture log;
  const auto library = CTarnFWLibHandle::GetInstance();
  void* body = nullptr;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(library->getCommandBuffer(&body, 4294967275u), 8u);
  EXPECT_TRUE(log.has(LOG_WARNING, "failed to get message buffer of size 4294967275\n\n"));
}

TEST(Mutex, EveryCallThatFailsThrowsTheSystemsError) {
  const auto expectThrown = [](const char* what, auto call) {
    try {
      call();
      ADD_FAILURE() << what << ": nothing was thrown";
    } catch (const Locks::LockException& e) {
      EXPECT_EQ(e.error(), EINVAL) << what;
      EXPECT_STREQ(e.what(), "LockException: Invalid argument") << what;
    }
  };
  DeviceShim::failNextMutex();
  expectThrown("init", [] { const Locks::Mutex unmade; });
  Locks::Mutex mutex;
  DeviceShim::failNextLock();
  expectThrown("lock", [&] { mutex.lock(); });
  mutex.lock();
  DeviceShim::failNextUnlock();
  expectThrown("unlock", [&] { mutex.unlock(); });
}

TEST(Mutex, AnUnlockThatFailsAtTheEndOfAScopeThrowsNothing) {
  Locks::Mutex mutex;
  {
    const Locks::Guard guard(mutex);
    DeviceShim::failNextUnlock();
  }
  mutex.lock();
  mutex.unlock();
}

TEST(TarnFWLibConfig, ALockThatFailsGivesNoConfiguration) {
  DeviceShim::failNextLock();
  EXPECT_THROW(CTarnFWLibConfig::GetInstance(), Locks::LockException);
  EXPECT_NE(CTarnFWLibConfig::GetInstance(), nullptr);
}

TEST(TarnFWSimpleMsgBuf, ALockThatFailsThrowsAndLosesNoMemory) {
  const auto library = CTarnFWLibHandle::GetInstance();
  void* body = nullptr;
  DeviceShim::failNextLock();
  EXPECT_THROW(library->getCommandBuffer(&body, 12), Locks::LockException);
  EXPECT_EQ(body, nullptr);
  ASSERT_EQ(library->getCommandBuffer(&body, 12), 0u);
  EXPECT_EQ(static_cast<std::uint8_t*>(body)[-12], 0) << "no sequence number was lost";
  library->releaseCommandBuffer(body);
}

TEST(TarnFWSimpleMsgBuf, AnUnlockThatFailsThrowsAndLosesNoMemory) {
  const auto library = CTarnFWLibHandle::GetInstance();
  void* body = nullptr;
  DeviceShim::failNextUnlock();
  EXPECT_THROW(library->getCommandBuffer(&body, 12), Locks::LockException);
  EXPECT_EQ(body, nullptr);
}

// --- What a call does not allocate

TEST(TarnFWLibCall, ARefusedCallTakesNoBuffer) {
  FakeKernel kernel;
  const FWRuleSetID_t id{};
  unsigned int count = 77;
  // Message buffers come from calloc: a failure that is still to come shows that none was asked
  // for.
  DeviceShim::failNextCalloc();
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(nullptr, nullptr, nullptr, &id, 0, &count), 2u);
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(kernel.handle(), nullptr, nullptr, &id, 0, nullptr), 3u);
  EXPECT_EQ(FW_GetRuleCountOfRuleSet(kernel.handle(), nullptr, nullptr, &id, 4, &count), 7u);
  EXPECT_EQ(FW_GetRuleSetCount(kernel.handle(), nullptr, nullptr, &count), 8u);
  EXPECT_EQ(count, 77u);
  EXPECT_TRUE(kernel.messages().empty());
  EXPECT_EQ(FW_GetRuleSetCount(kernel.handle(), nullptr, nullptr, &count), 0u);
}
