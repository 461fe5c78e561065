// The room for a reply costs no memory before the kernel writes there: a hostile count asks for
// much.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "CommandMakers.h"
#include "Sanitizers.h"
#include "TarnFWCmdEnvelope.h"
#include "TarnFWIOChannel.h"
#include "TarnFWLibHandle.h"
#include "TarnFWMsgBuf.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Counts the pages of a message that are in memory when it is sent. Answers with what was asked.
class PageCounter final : public CTarnFWIOChannel {
 public:
  explicit PageCounter(std::vector<std::size_t>& resident) : resident_(resident) {}

  FWStatus_t sendIOCTL(dvs_port_*, void* message, unsigned int size, void*) override {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(message) / page * page;
    const std::size_t length = reinterpret_cast<std::uintptr_t>(message) + size - first;
    std::vector<unsigned char> pages((length + page - 1) / page);
    EXPECT_EQ(mincore(reinterpret_cast<void*>(first), length, pages.data()), 0);
    std::size_t resident = 0;
    for (const unsigned char flags : pages) resident += flags & 1u;
    resident_.push_back(resident * page);
    return FW_STATUS_OK;
  }

 private:
  std::vector<std::size_t>& resident_;
};

}  // namespace

TEST(TarnFWCmdReplyRoom, IsNotTouchedBeforeTheKernelWritesThere) {
  if (kThreadSanitizer) GTEST_SKIP() << "this sanitizer clears the pages of calloc itself";
  std::vector<std::size_t> resident;
  const auto library = CTarnFWLibHandle::GetInstance();
  library->setIOChannel(std::make_unique<PageCounter>(resident));
  fwlibhandle_* const handle = toLibHandle(library.get());
  const FWRuleSetID_t rules = ruleSet("web");
  const FWAddrSetID_t addresses = addrSet("web");
  constexpr unsigned int count = 1000000;
  unsigned int returned = 0;
  // The replies count nothing, so that nothing is copied to the one record here.
  FWAddress_ address{};
  EXPECT_EQ(
      FW_GetAddressOfAddrSet(handle, nullptr, nullptr, &addresses, count, 0, &address, &returned),
      0u);
  FWRuleSetID_t name{};
  EXPECT_EQ(FW_GetRuleSetList(handle, nullptr, nullptr, count, 0, &name, &returned), 0u);
  FWRuleStat_ stat{};
  EXPECT_EQ(
      FW_GetStatOfRuleSet(handle, nullptr, nullptr, 0, count, 0, &rules, nullptr, &stat, &returned),
      0u);
  ASSERT_EQ(resident.size(), 3u);
  // 64 to 144 MB are asked for. A large page of 2 MB may stand at either end.
  for (const std::size_t bytes : resident) EXPECT_LE(bytes, 8u * 1024 * 1024);
}
