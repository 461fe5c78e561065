// The option letters of the commands: which there are, and which of them take a value. Every other
// letter is refused.

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "CommandTable.h"
#include "HandlerKernel.h"
#include "RunCommand.h"

namespace {

/// Letters as getopt writes them: one colon after a letter that needs a value, two after one that
/// may have one, and one in front when getopt says nothing about a bad option.
struct Letters {
  const char* word;
  const char* letters;
  int badOption = 1;
  const char* endings = "";  // letters without a value that end the command by themselves
};
void PrintTo(const Letters& one, std::ostream* to) { *to << one.word; }

const Letters kLetters[] = {
    {"getfilters", "hia:c:dsn"},
    {"getfwconfig", "hv::m:fi"},
    {"getrules", "hv::m:f:r:spdi"},
    {"getaddrsets", "hv::m:f:a:s:oi"},
    {"getcontainers", "hv::m:f:a:s:oi"},
    {"tarnfwcli", "hv::m:f:l:c:"},
    {"getflows", "hf:t:T:F:avnR"},
    {"getconnections", "hf:t:v::"},
    {"getconncount", "hf:v::"},
    {"clrconnection", "hv:f:"},
    {"number2uuid", "hb"},
    {"uuid2number", "hb"},
    {"getspoofguard", "hv::m:f:s"},
    {"getfloodstat", "f:szh"},
    {"setfloodconfig", "f:u:i:t:o:s:b:r:zh"},
    {"gettimeout", "hv::f:t:"},
    {"settimeout", "hv::f:t:"},
    {"setfailpolicy", "hv:f:p:"},
    {"getfailpolicy", "hv:f:"},
    {"getkifflags", "hv::m:f:"},
    {"setkifflags", "f:n:e:v::h"},
    {"kiffastpath", "hf:s:i::"},
    {"setverbose", "hc:v:f:"},
    {"getthresholds", "h"},
    {"setthresholds", "hc:p:"},
    {"setfilterflags", "hpdDIAaGf:"},
    {"setsharedaddrset", "hv::m:f:s:"},
    {"getsharedaddrset", "hv::m:f:"},
    {"setaddrsetcfg", "hv:f:a:i:m:"},
    {"seticmperrpktdrop", "hv::f:e:"},
    {"getexportversion", "hv::f:"},
    {"setexportversion", "hv::f:e:"},
    {"setexportversionall", "ha:v::e:rx"},
    {"setdnsconfigprofile", "hv::f:t:n:a:"},
    {"getdnsconfigprofile", "hv::f:t:n:a:"},
    {"setcopymode", "hedv::f:"},
    {"getdiscoveredips", "hf:s"},
    {"setipdiscovery", "hf:dal:t:", 0},
    {"cleardiscoveredips", "hf:", 0},
    {"getfqdnentries", "hf:d::v::"},
    {"getsidcache", "hv::f:"},
    {"getmeminfo", "h"},
    {"addfilter", "hw:u:v:f:a:o:0:1:2:3:4:5:6:7:8:9:A:B:C:D:E:F:"},
    {"deletefilter", "hw:u:v:f:a:o:0:1:2:3:4:5:6:7:8:9:A:B:C:D:E:F:"},
    {"clearallfilters", "hea:do"},
    {"getfiltertables", "ha:n"},
    {"setfiltertables", "hf:a:edon:s:w:k"},
    {"clrwgttable", "hv:a:ie"},
    {"revalidatevm", "hw:u:"},
    {"createagent", "ha:"},
    {"destroyagent", "ha:"},
    {"deleterules", "hv::m:f:r:"},
    {"setflowexclusion", "h2:a:b:d:f:F:g:l:p:s:t:"},
    {"getflowexclusion", "hf:l"},
    {"createinstance", "fhi:n:d:s:t:"},
    {"replaceinstance", "fhi:n:d:s:t:"},
    {"destroyinstance", "fhi:n:d:s:t:"},
    {"getinstances", "hi:"},
    {"createprofile", "hp:i:f:v:t:"},
    {"destroyprofile", "hp:i:f:v:t:"},
    {"getprofiles", "hf:"},
    {"gre", "ha:f:k:e:m:g:"},
    {"getsisvmstats", "hp:"},
    {"getfilterstat", "hv::m:f:z"},
    {"clearfilterstat", "hv::f:"},
    {"rtt", "f:i:rh"},
    {"getattrinfo", "hv::a:x:C:U:f:t:S:D:s:d:p:i:o:m:"},
    {"getstatedpiinfo", "hv::f:s:"},
    {"getalginfo", "f:c:d:h"},
    {"getlbinfo", "hv::m:f:i:u:cad"},
    {"getlbstat", "hv::m:f:u:l:spdz"},
    {"tracehulld", "heqsc:v::m:i:ot:", 1, "e"},
    {"tracetarn", "heqsc:v::m:i:ot:f:", 1, "eqo"},
    {"getdpiinfo", ":hsedtclm:"},
};

class HandlerLetters : public testing::TestWithParam<Letters> {
 protected:
  CommandResult run(const std::vector<std::string>& options) const {
    std::vector<std::string> words{GetParam().word};
    if (dangerous_) words.emplace_back("-Override");
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(words);
  }

  CommandResult refused(const std::string& text) const {
    return {GetParam().badOption, help_.out,
            *GetParam().letters == ':'
                ? ""
                : (dangerous_ ? std::string("-Override") : GetParam().word) + ": " + text + "\n"};
  }

  const bool dangerous_ = (findCommand(GetParam().word)->flags & kCommandDangerous) != 0;
  const DefaultHandle none_{nullptr};
  const CommandResult help_ = run({"-h"});
};

}  // namespace

TEST_P(HandlerLetters, AreTheseAndNoOthers) {
  const std::string letters = GetParam().letters;
  for (const char letter :
       std::string("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) {
    const std::string option{'-', letter};
    const std::size_t at = letters.find(letter);
    if (letter == 'h') {
      EXPECT_NE(at, std::string::npos);
      EXPECT_EQ(help_.status, 0);
    } else if (at == std::string::npos) {
      EXPECT_EQ(run({option}), refused(std::string("invalid option -- '") + letter + "'"));
    } else if (letters.compare(at + 1, 2, "::") == 0) {
      EXPECT_EQ(run({option, "-h"}), help_) << "-" << letter << " may have a value";
      EXPECT_NE(run({option + "h"}), help_) << "-" << letter << " has the value h";
    } else if (letters.compare(at + 1, 1, ":") == 0) {
      EXPECT_EQ(run({option}),
                refused(std::string("option requires an argument -- '") + letter + "'"));
    } else if (std::string(GetParam().endings).find(letter) == std::string::npos) {
      EXPECT_EQ(run({option + "h"}), help_) << "-" << letter << " has no value";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, HandlerLetters, testing::ValuesIn(kLetters),
                         testing::PrintToStringParamName());
