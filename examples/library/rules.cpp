// A C++ program that uses the installed library: loads configuration text into two filters, gives
// the first an address set, and prints what that filter holds then.

#include <tarnfw.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

void check(FWStatus_t status, const char* what) {
  if (status == TarnFirewall::FW_STATUS_OK) return;
  std::fprintf(stderr, "%s: %s\n", what, FW_StatusToString(status));
  std::exit(1);
}

}  // namespace

int main() {
  fwlibhandle_* firewall = FW_GetDefaultLibHandle();

  dvs_port_ filter{};
  std::strcpy(filter.identifier, "nic-1002672-eth0-kelpco-sfw.2");
  std::strcpy(filter.agent, "kelpco-sfw");
  TarnFirewall::setSelectorType(filter, TarnFirewall::FW_SELECTOR_FILTER);

  fwlibhandle_* channel = firewall;
  fwconfigfile_* configuration = nullptr;
  check(FW_LoadConfigString(
            "create ruleset \"web\" with {"
            "  rule 10 in protocol tcp from addrset \"clients\" to any port 80 accept;"
            "  rule 20 in protocol any from any to any drop;"
            "};",
            &channel, &configuration),
        "load");
  check(FW_EvaluateConfigFile(channel, configuration, &filter, nullptr), "evaluate");
  // For another filter nothing is parsed again, and the messages are built in the memory of the
  // first evaluation.
  dvs_port_ other = filter;
  std::strcpy(other.identifier, "nic-1002731-eth0-kelpco-sfw.2");
  check(FW_EvaluateConfigFile(channel, configuration, &other, nullptr), "evaluate again");
  check(FW_FreeConfigFile(configuration), "free");

  const FWAddrSetID_t clients{"clients"};
  FWAddress_ address{};
  address.type = TarnFirewall::FW_ADDRESS_IPV4_CIDR;
  std::memcpy(address.value, "\x0a\x01\x00\x00\x10", 5);  // 10.1.0.0/16
  check(FW_CreateAddrSet(firewall, &filter, nullptr, &clients, TarnFirewall::FW_ADDRSET_IP,
                         &address, 1),
        "create the address set");

  const FWRuleSetID_t web{"web"};
  unsigned int count = 0;
  check(FW_GetRuleCountOfRuleSet(firewall, &filter, nullptr, &web, 0, &count), "count the rules");
  std::vector<FWRule_> rules(count);
  check(FW_GetRuleOfRuleSet(firewall, &filter, nullptr, 0, count, 0, &web, nullptr, rules.data(),
                            &count),
        "read the rules");
  for (unsigned int i = 0; i < count; ++i) {
    char text[512];
    check(FW_GetRuleString(&rules[i], 1, text, sizeof text, 0), "print a rule");
    std::printf("%s\n", text);
  }

  FWAddress_ back{};
  check(FW_GetAddressOfAddrSet(firewall, &filter, nullptr, &clients, 1, 0, &back, &count),
        "read the address set");
  char text[64];
  check(FW_GetAddressString(&back, 1, text, sizeof text), "print the address");
  std::printf("%s: %s\n", clients.text, text);
  return 0;
}
