#include <fstream>

#include "LabBench.h"
#include "LabFamily.h"
#include "LabSettings.h"

namespace TarnLab {
namespace {

class LabSettings : public LabBench {
 protected:
  static constexpr const char* ofWeb = "filters/0";

  /// Puts this text in place of the settings of the filter `web`.
  void write(const std::string& text) {
    const StoreLock lock(store);
    store.replace("filters/0/settings", {std::as_bytes(std::span<const char>(text))});
  }

  std::string written() const {
    const auto content = store.read("filters/0/settings", 1 << 20);
    return content ? std::string(reinterpret_cast<const char*>(content->data()), content->size())
                   : "none";
  }

  /// What loading these settings fails with; empty when it does not fail.
  std::string damage(const std::string& text) {
    write(text);
    try {
      Settings::load(store, ofWeb);
    } catch (const StoreError& failure) {
      return failure.what();
    }
    return "";
  }
};

constexpr FlagSetting onOff{"test.flag"}, usuallyOn{"test.on", "it is on", true};
constexpr NumberSetting number{"test.number", 7};
constexpr TextSetting text{"test.text", "usual"};
constexpr BytesSetting bytes{"test.bytes"};

/// The settings of this test, in the place of the families'.
const Setting* known(std::string_view name) {
  static constexpr Setting all[] = {onOff, usuallyOn, number, text, bytes};
  for (const Setting& setting : all) {
    if (setting.name == name) return &setting;
  }
  return nullptr;
}

TEST_F(LabSettings, HaveTheirUsualValuesUntilTheyAreSet) {
  const Settings settings = Settings::load(store, ofWeb);
  EXPECT_FALSE(settings.get(onOff));
  EXPECT_TRUE(settings.get(usuallyOn));
  EXPECT_EQ(settings.get(number), 7u);
  EXPECT_EQ(settings.get(text), "usual");
  EXPECT_TRUE(settings.get(bytes).empty());
  EXPECT_TRUE(settings.lines().empty());
}

TEST_F(LabSettings, EveryKindIsWrittenAsALineThatCanBeRead) {
  Settings settings;
  settings.set(onOff, true);
  settings.set(usuallyOn, false);
  settings.set(number, 0xffffffffffffffff);
  settings.set(text, "two words\n\"\\\xff");
  settings.set(bytes, Record().u16(0x0a01).u8(0xff));
  EXPECT_TRUE(settings.get(onOff));
  EXPECT_FALSE(settings.get(usuallyOn));
  EXPECT_EQ(settings.get(number), 0xffffffffffffffffu);
  EXPECT_EQ(settings.get(text), "two words\n\"\\\xff");
  EXPECT_EQ(settings.get(bytes), (ByteVector{std::byte{1}, std::byte{0x0a}, std::byte{0xff}}));
  settings.save(store, ofWeb);
  EXPECT_EQ(written(),
            "test.bytes 010aff\ntest.flag on\ntest.number 18446744073709551615\ntest.on off\n"
            "test.text two words\\x0a\\x22\\x5c\\xff\n");
  const Settings again = Settings::load(store, ofWeb, known);
  EXPECT_TRUE(again.get(onOff));
  EXPECT_FALSE(again.get(usuallyOn));
  EXPECT_EQ(again.get(number), 0xffffffffffffffffu);
  EXPECT_EQ(again.get(text), "two words\n\"\\\xff");
  EXPECT_EQ(again.get(bytes), settings.get(bytes));
}

TEST_F(LabSettings, AValueOfAnotherKindIsDamage) {
  for (const char* line :
       {"test.flag 1", "test.flag On", "test.number -1", "test.number", "test.number 1 ",
        "test.number 18446744073709551616", "test.text \x01", "test.text \"", "test.text \\x4",
        "test.text \\x41", "test.text \\", "test.bytes 0", "test.bytes 0g", "test.bytes 00 "}) {
    write(std::string(line) + "\n");
    EXPECT_THROW(Settings::load(store, ofWeb, known), StoreError) << line;
  }
  for (const char* line : {"test.text ", "test.bytes ", "test.number 0x7f", "test.text a b "}) {
    write(std::string(line) + "\n");
    EXPECT_NO_THROW(Settings::load(store, ofWeb, known)) << line;
  }
}

TEST_F(LabSettings, WhatHasItsUsualValueAgainIsNotInTheFile) {
  Settings settings;
  settings.set(number, 8);
  settings.save(store, ofWeb);
  EXPECT_EQ(written(), "test.number 8\n");
  settings.set(number, 7);
  settings.set(text, "usual");
  settings.set(bytes, {});
  settings.save(store, ofWeb);
  EXPECT_EQ(written(), "none");
}

TEST_F(LabSettings, WhatACommandSetsIsInTheFileAndIsShown) {
  ASSERT_EQ(command(44, Record().u32(1)), 0u);
  EXPECT_EQ(written(), "addrsets.shared on\n");
  const Settings settings = Settings::load(store, ofWeb);
  EXPECT_EQ(settings.lines(), (std::vector<std::string>{"address sets are shared"}));
  ASSERT_EQ(command(44, Record().u32(0)), 0u);
  EXPECT_EQ(written(), "none");
}

TEST_F(LabSettings, BytesAreShownInTheWordsOfTheirSetting) {
  write("spoofguard.mac 02000a0b0cff\nspoofguard.addresses 01000000" + std::string(280, '0') +
        "\n");
  EXPECT_EQ(Settings::load(store, ofWeb).lines(),
            (std::vector<std::string>{"spoofguard.mac: 02:00:0a:0b:0c:ff",
                                      "spoofguard.addresses: ip 0.0.0.0"}));
  write("spoofguard.mac 02\nspoofguard.addresses 0100\n");
  EXPECT_EQ(Settings::load(store, ofWeb).lines(),
            (std::vector<std::string>{"spoofguard.mac: 02", "spoofguard.addresses: "}));
  std::string many;
  for (int i = 0; i < 1024; ++i) many += "01000000" + std::string(280, '0');
  write("spoofguard.addresses " + many + "\n");
  const std::string line = Settings::load(store, ofWeb).lines().at(0);
  EXPECT_EQ(line.substr(line.rfind(',')), ", ... (1024 addresses)");
}

TEST_F(LabSettings, ATableIsDeclaredAsOneAfterTheOther) {
  constexpr auto all = settingsIn(std::array{number}, std::array{onOff, usuallyOn});
  static_assert(all.size() == 3);
  EXPECT_EQ(all[0].name, "test.number");
  EXPECT_EQ(all[0].number, 7u);
  EXPECT_EQ(all[2].name, "test.on");
  EXPECT_STREQ(all[2].sentence, "it is on");
}

TEST_F(LabSettings, ADamagedFileIsRefusedByItsPath) {
  const std::string refusal = "damaged file " + store.path("filters/0/settings");
  for (const char* content :
       {"addrsets.shared", "addrsets.shared\n", "addrsets.shared yes\n", "addrsets.shared  on\n",
        "addrsets.shared on", "other on\n", "addrsets.shared on\naddrsets.shared on\n", "\n", " \n",
        "ADDRSETS.SHARED on\n"}) {
    EXPECT_EQ(damage(content).substr(0, refusal.size()), refusal) << content;
  }
  EXPECT_EQ(damage(std::string("addrsets.shared on\n\0", 20)).substr(0, refusal.size()), refusal);
  EXPECT_EQ(damage("addrsets.shared on\n"), "");
  EXPECT_EQ(damage(""), "");
}

TEST_F(LabSettings, ACommandOnDamagedSettingsFailsWithALineInTheLog) {
  write("addrsets.shared perhaps\n");
  ByteVector sent = message(45, ByteVector(4));
  EXPECT_EQ(send(sent, filterSelector(web)), EIO);
  EXPECT_NE(note().find("damaged file"), std::string::npos) << note();
}

TEST_F(LabSettings, NoTwoFamiliesHaveTheSameCommandRequestOrSetting) {
  for (const Family* family : families()) {
    for (const CommandKind& kind : family->commands) {
      EXPECT_EQ(findCommand(kind.number), &kind) << kind.number;
      EXPECT_NE(kind.answer, nullptr) << kind.number;
    }
    for (const DirectKind& kind : family->requests) {
      EXPECT_EQ(findDirect(kind.device, kind.number), &kind) << kind.number;
      EXPECT_NE(kind.title, nullptr) << kind.number;
      EXPECT_NE(kind.answer != nullptr, kind.whole != nullptr) << kind.number;
    }
    for (const Setting& setting : family->settings) {
      EXPECT_EQ(findSetting(setting.name), &setting) << setting.name;
      EXPECT_EQ(setting.name.find_first_of(" \n"), std::string_view::npos) << setting.name;
    }
  }
}

}  // namespace
}  // namespace TarnLab
