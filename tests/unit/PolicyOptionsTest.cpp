#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Options.h"

namespace {

constexpr OptionForm kForms[] = {
    {"filter", 'f', true, true}, {"format", 'F', false, true}, {"strict", 's', false, false}};

/// What a reader makes of the words: its options as "f=value", then its operands, or "error: TEXT".
std::string read(std::vector<std::string> words) {
  words.insert(words.begin(), "sub");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  std::string result;
  try {
    OptionReader reader(static_cast<int>(words.size()), argv.data(), kForms);
    while (const char letter = reader.next()) {
      result += letter;
      if (reader.argument() != nullptr) result += std::string("=") + reader.argument();
      result += ' ';
    }
    for (const char* operand : reader.operands()) result += std::string("[") + operand + "]";
  } catch (const CallError& e) {
    return std::string("error: ") + e.what();
  } catch (const HelpWanted&) {
    return "help";
  } catch (const VersionWanted&) {
    return "version";
  }
  return result;
}

TEST(PolicyOptions, ReadsShortAndLongForms) {
  EXPECT_EQ(read({"-f", "nic"}), "f=nic ");
  EXPECT_EQ(read({"-fnic"}), "f=nic ");
  EXPECT_EQ(read({"--filter", "nic"}), "f=nic ");
  EXPECT_EQ(read({"--filter=nic"}), "f=nic ");
  EXPECT_EQ(read({"--fi=nic"}), "f=nic ");
  EXPECT_EQ(read({"--strict", "--format=json"}), "s F=json ");
}

TEST(PolicyOptions, OperandsStandAnywhereAndADashIsOne) {
  EXPECT_EQ(read({"a", "--strict", "b", "-"}), "s [a][b][-]");
  EXPECT_EQ(read({"--", "--strict"}), "[--strict]");
  EXPECT_EQ(read({}), "");
}

TEST(PolicyOptions, AReaderBeginsAnew) {
  EXPECT_EQ(read({"-x", "-f"}), "error: no option -x");
  EXPECT_EQ(read({"-f", "nic"}), "f=nic ");
}

TEST(PolicyOptions, RefusesWhatIsNoOption) {
  EXPECT_EQ(read({"--frobnicate"}), "error: no option --frobnicate");
  EXPECT_EQ(read({"--f"}), "error: no option --f");
  EXPECT_EQ(read({"-x"}), "error: no option -x");
  EXPECT_EQ(read({"-F", "json"}), "error: no option -F");
  EXPECT_EQ(read({"a", "-s"}), "error: no option -s");
}

TEST(PolicyOptions, RefusesArgumentsThatAreMissingOrHaveNoPlace) {
  EXPECT_EQ(read({"-f"}), "error: option -f needs an argument");
  EXPECT_EQ(read({"--filter"}), "error: option --filter needs an argument");
  EXPECT_EQ(read({"--strict=yes"}), "error: option --strict takes no argument");
}

TEST(PolicyOptions, HelpAndVersionAreAlwaysThere) {
  EXPECT_EQ(read({"-h"}), "help");
  EXPECT_EQ(read({"a", "--help"}), "help");
  EXPECT_EQ(read({"a", "--version"}), "version");
  EXPECT_EQ(read({"-V"}), "error: no option -V");
}

}  // namespace
