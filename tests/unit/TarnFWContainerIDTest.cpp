#include <gtest/gtest.h>

#include <cstring>

#include "Expect.h"
#include "TarnFWContainerID.h"

using namespace TarnFirewall;

TEST(TarnFWContainerID, ANameOf37CharactersPassesAnd38Throws) {
  EXPECT_EQ(CTarnFWContainerID(std::string(37, 'n')).getContainerID(), std::string(37, 'n'));
  const std::string name(38, 'n');
  EXPECT_THROW_WITH(CTarnFWContainerID{name}, CInvalidContainerNameException, 69,
                    "invalid container name: " + name + "(size: 38greater than max size: 37)");
}

TEST(TarnFWContainerID, AnEmptyNameIsKept) {
  EXPECT_EQ(CTarnFWContainerID(std::string()).getContainerID(), "");
}

TEST(TarnFWContainerID, ARecordGivesItsTextUpToTheNul) {
  FWAddrSetID_t id{};
  std::memcpy(id.text, "web\0rest", 8);
  EXPECT_EQ(CTarnFWContainerID(id).getContainerID(), "web");
}

TEST(TarnFWContainerID, AFullRecordWithoutANulIsTakenWholeWithoutALengthTest) {
  FWAddrSetID_t id;
  std::memset(id.text, 'x', sizeof id.text);
  EXPECT_EQ(CTarnFWContainerID(id).getContainerID(), std::string(38, 'x'));
}
