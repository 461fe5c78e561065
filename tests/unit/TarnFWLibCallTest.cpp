#include <gtest/gtest.h>

#include <stdexcept>

#include "LogCapture.h"
#include "TarnFWException.h"
#include "TarnFWLibCall.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

using Lines = std::vector<std::string>;

FWStatus_t FW_Probe(fwlibhandle_* handle, FWStatus_t status, int thrown = 0) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle&) -> FWStatus_t {
    if (thrown == 1) throw CInvalidTimeoutException(7u);
    if (thrown == 2) throw std::runtime_error("x");
    if (thrown == 3) throw 5;
    return status;
  });
}

const std::string kTrace = "7|tarnfw:api TarnFWLibMain:FW_Probe():N ";
const std::string kWarning = "4|tarnfw: TarnFWLibMain:FW_Probe():N ";

class TarnFWLibCall : public testing::Test {
 protected:
  std::unique_ptr<CTarnFWLibHandle> library_ = CTarnFWLibHandle::GetInstance();
  fwlibhandle_* handle_ = toLibHandle(library_.get());
};

}  // namespace

TEST_F(TarnFWLibCall, TracesEntryAndExitUnderTheFunctionsName) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  EXPECT_EQ(FW_Probe(handle_, 0), 0u);
  EXPECT_EQ(FW_Probe(handle_, 26), 26u);
  EXPECT_EQ(log.normalized(), (Lines{kTrace + "FW_Probe.\n", kTrace + "FW_Probe: ok\n",
                                     kTrace + "FW_Probe.\n", kTrace + "FW_Probe: bad state\n"}));
}

TEST_F(TarnFWLibCall, CutsASourcesNameThatIsVeryLong) {
  LogCapture log;
  const std::string path = "/src/" + std::string(100, 'f') + ".cpp";
  EXPECT_EQ(callFrame(
                "FW_Other", []() -> FWStatus_t { throw 5; }, path.c_str(), 12),
            5u);
  EXPECT_EQ(log.normalized(), Lines{"4|tarnfw: " + std::string(63, 'f') +
                                    ":FW_Other():N FW_Other: encountered internal error\n"});
}

TEST_F(TarnFWLibCall, IsSilentAtLevelZero) {
  LogCapture log;
  EXPECT_EQ(FW_Probe(handle_, 5), 5u);
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(TarnFWLibCall, ANullHandleReturnsTwoAtOnce) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  EXPECT_EQ(FW_Probe(nullptr, 0, 1), 2u);
  EXPECT_EQ(log.normalized(), Lines{kTrace + "FW_Probe.\n"});
}

TEST_F(TarnFWLibCall, AnExceptionOfTheLibraryGivesItsCodeAndAWarningAtAnyLevel) {
  LogCapture log;
  EXPECT_EQ(FW_Probe(handle_, 0, 1), 58u);
  EXPECT_EQ(log.normalized(), Lines{kWarning + "error 58: unrecognized timeout id 7\n"});
}

TEST_F(TarnFWLibCall, AnythingElseThrownGivesFive) {
  for (const int thrown : {2, 3}) {
    LogCapture log;
    EXPECT_EQ(FW_Probe(handle_, 0, thrown), 5u);
    EXPECT_EQ(log.normalized(), Lines{kWarning + "FW_Probe: encountered internal error\n"});
  }
}

TEST_F(TarnFWLibCall, TheExitLineTellsTheStatusOfTheException) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  FW_Probe(handle_, 0, 1);
  EXPECT_EQ(log.normalized(),
            (Lines{kTrace + "FW_Probe.\n", kWarning + "error 58: unrecognized timeout id 7\n",
                   kTrace + "FW_Probe: invalid timeout\n"}));
}

TEST_F(TarnFWLibCall, TheBodyGetsTheLibraryOfItsHandle) {
  CTarnFWLibHandle* seen = nullptr;
  callLibrary("FW_Other", handle_, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    seen = &library;
    return 0;
  });
  EXPECT_EQ(seen, library_.get());
}
