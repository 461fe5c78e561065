/// Properties of rules over many generated ones. TARNFW_PROPERTY_RULES sets how many (100,000 where
/// it is not set), TARNFW_PROPERTY_SEED where they begin.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "RuleGenerator.h"
#include "TarnFWException.h"
#include "TarnFWRuleFactory.h"
#include "TarnFWRuleRecord.h"

using namespace TarnFirewall;

namespace {

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

FWRule_ written(CTarnFWRule& rule) {
  FWRule_ record;
  std::memset(static_cast<void*>(&record), 0xa5, sizeof record);
  unsigned int size = 0;
  EXPECT_TRUE(rule.toMessage(&record, sizeof record, &size));
  EXPECT_EQ(size, sizeof record);
  return record;
}

/// Clears in a record what a reading is known to lose.
void forget(FWRule_& record, const RuleLosses& losses) {
  auto* bytes = reinterpret_cast<std::uint8_t*>(&record);
  if (losses.dscp) {
    bytes[796] = static_cast<std::uint8_t>(bytes[796] & 0x1f);
    bytes[797] = static_cast<std::uint8_t>(bytes[797] & ~0x07);
  }
  if (losses.tcpOptions) std::memset(bytes + 808, 0, 44);
  if (losses.lbWithoutOptions) {
    bytes[460 + 282] = static_cast<std::uint8_t>(bytes[460 + 282] & ~0x40);
  }
}

unsigned int tcpOptionsLength(const FWRule_& record) {
  std::uint16_t length = 0;
  std::memcpy(&length, reinterpret_cast<const std::uint8_t*>(&record) + 810, sizeof length);
  return length;
}

}  // namespace

TEST(RuleProperty, WriteReadWriteGivesTheSameBytesAndTextBesidesWhatIsKnownToBeLost) {
  const std::uint64_t count = fromEnvironment("TARNFW_PROPERTY_RULES", 100000);
  const std::uint64_t seed = fromEnvironment("TARNFW_PROPERTY_SEED", 1);
  std::uint64_t compared = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed + i));
    RuleGenerator generator{Choices(seed + i)};
    RuleLosses losses;
    const auto rule = generator.rule(&losses);
    ASSERT_NE(rule, nullptr);
    const std::string text = rule->toString();
    FWRule_ first = written(*rule);
    if (losses.macRange) {
      // A range of MAC addresses is written, and no reader takes it.
      EXPECT_THROW(CTarnFWRuleFactory::newFromMsgBuf(&first), CInvalidAddressException);
      continue;
    }
    if (losses.tcpOptions && tcpOptionsLength(first) >= 8) {
      // From 8 bytes of options on their length word is taken for the header of some spec, which
      // the rule may or may not accept; it must not do anything else.
      try {
        const auto other = CTarnFWRuleFactory::newFromMsgBuf(&first);
        if (other != nullptr) {
          EXPECT_FALSE(other->toString().empty());
        }
      } catch (const CTarnFWException& e) {
        EXPECT_NE(e.retcode(), FW_STATUS_OK);
      }
      continue;
    }
    const auto again = CTarnFWRuleFactory::newFromMsgBuf(&first);
    ASSERT_NE(again, nullptr) << text;
    FWRule_ second = written(*again);
    forget(first, losses);
    forget(second, losses);
    ASSERT_EQ(std::memcmp(&first, &second, sizeof first), 0) << text;
    if (!losses.any()) {
      ASSERT_EQ(again->toString(), text);
    }
    ++compared;
  }
  EXPECT_GT(compared, count / 2);
}

TEST(RuleProperty, NoRecordMakesTheReaderFailOtherThanByARefusal) {
  const std::uint64_t count = fromEnvironment("TARNFW_PROPERTY_RULES", 100000) / 4;
  const std::uint64_t seed = fromEnvironment("TARNFW_PROPERTY_SEED", 1);
  std::uint64_t read = 0;
  std::uint64_t refused = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed + i));
    RuleGenerator generator{Choices(seed + i)};
    RuleLosses losses;
    const auto rule = generator.rule(&losses);
    ASSERT_NE(rule, nullptr);
    FWRule_ record = written(*rule);
    Choices& choices = generator.choices();
    auto* bytes = reinterpret_cast<std::uint8_t*>(&record);
    for (std::uint32_t n = 1 + choices.below(8); n > 0; --n) {
      bytes[choices.below(sizeof record)] = choices.chance(30) ? 0xff : choices.byte();
    }
    try {
      const auto other = CTarnFWRuleFactory::newFromMsgBuf(&record);
      if (other == nullptr) {
        ++refused;
        continue;
      }
      ++read;
      EXPECT_FALSE(other->toString().empty());
      EXPECT_FALSE(other->toString2().empty());
      written(*other);
    } catch (const CTarnFWException&) {
      ++refused;
    }
  }
  EXPECT_GT(read, 0u);
  EXPECT_GT(refused, 0u);
}
