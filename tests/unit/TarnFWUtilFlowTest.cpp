#include <gtest/gtest.h>

#include <string>

#include "TarnFWUtilFlow.h"

namespace {

std::string alg(int flowType, int type, std::uint16_t port = 21, std::uint64_t id = 0x4d2,
                std::size_t room = 64) {
  char buffer[64];
  for (char& c : buffer) c = 'x';
  StateAlgStr(static_cast<std::uint8_t>(flowType), static_cast<std::uint8_t>(type), port, id,
              {buffer, room});
  return buffer;
}

}  // namespace

TEST(TarnFWUtilFlow, AControlFlowHasItsPort) {
  EXPECT_EQ(alg(1, 0), " alg ctrl(?\?) 21");
  EXPECT_EQ(alg(1, 1), " alg ctrl(FTP) 21");
  EXPECT_EQ(alg(1, 2), " alg ctrl(ORACLE) 21");
  EXPECT_EQ(alg(1, 3), " alg ctrl(SUNRPC) 21");
  EXPECT_EQ(alg(1, 4), " alg ctrl(DCERPC) 21");
  EXPECT_EQ(alg(1, 5, 65535), " alg ctrl(TFTP) 65535");
}

TEST(TarnFWUtilFlow, ADataFlowHasTheIdOfItsControlFlowToo) {
  EXPECT_EQ(alg(2, 1), " alg data(FTP) 21 4d2");
  EXPECT_EQ(alg(2, 1, 0, ~0ull), " alg data(FTP) 0 ffffffffffffffff");
}

TEST(TarnFWUtilFlow, ATypeWithoutANameIsUnknown) {
  EXPECT_EQ(alg(1, 6), " alg ctrl(?\?) 21");
  EXPECT_EQ(alg(2, 255), " alg data(?\?) 21 4d2");
}

TEST(TarnFWUtilFlow, AnyOtherFlowHasNoText) {
  EXPECT_EQ(alg(0, 1), "");
  EXPECT_EQ(alg(3, 1), "");
  EXPECT_EQ(alg(255, 1), "");
}

TEST(TarnFWUtilFlow, ATextIsCutToItsBuffer) {
  EXPECT_EQ(alg(2, 4, 65535, 0x1234567890abcdef, 40), " alg data(DCERPC) 65535 1234567890abcde");
  EXPECT_EQ(alg(2, 4, 65535, 0x1234567890abcdef, 41), " alg data(DCERPC) 65535 1234567890abcdef");
  EXPECT_EQ(alg(1, 1, 21, 0, 1), "");
}
