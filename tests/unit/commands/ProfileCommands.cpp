// Requests and replies of the commands on what a filter learns of names and of layer 7.

#include "CommandFamily.h"
#include "TarnFWCmdConfigL7CopyMode.h"
#include "TarnFWCmdGetDnsConfigProfile.h"
#include "TarnFWCmdSetDnsConfigProfile.h"

using namespace TarnFirewall;

namespace {

CommandPtr setProfile() {
  const Bytes address = Bytes(144).at(0, {1}).at(4, {10, 0, 0, 53});
  return std::make_unique<CTarnFWCmdSetDnsConfigProfile>(
      nullptr, 0xf1, 0x04030201, std::vector{loadRecord<FWAddress_>(address.data())});
}

}  // namespace

CommandFamily profileCommands() {
  CommandFamily family;
  family.goldens = {
      {"CTarnFWCmdSetDnsConfigProfile", 83, 106, "SetDnsConfigProfile", 13, 10, 13, setProfile,
       Bytes(157)
           .at(4, {0xf1})
           .at(5, {1, 2, 3, 4})
           .at(9, {1, 0, 0, 0})
           .at(13, {1, 0, 0, 0, 10, 0, 0, 53})},
      {"CTarnFWCmdGetDnsConfigProfile", 84, 107, "GetDnsConfigProfile", 13, 0, 13,
       plain<CTarnFWCmdGetDnsConfigProfile>, Bytes(13)},
      {"CTarnFWCmdConfigL7CopyMode", 85, 108, "ConfigL7CopyMode", 4, 1, 4,
       plain<CTarnFWCmdConfigL7CopyMode, true>, Bytes({1, 0, 0, 0})},
  };
  family.replies = {
      {"CTarnFWCmdGetDnsConfigProfile",
       plain<CTarnFWCmdGetDnsConfigProfile>,
       Bytes(13, 0xff).at(4, {3}),
       {{13, "Time To Live Value : 4294967295 secs\n"}},
       {}},
  };
  readsNothing(family.replies, "CTarnFWCmdSetDnsConfigProfile", setProfile);
  readsNothing(family.replies, "CTarnFWCmdConfigL7CopyMode",
               plain<CTarnFWCmdConfigL7CopyMode, false>);
  return family;
}
