#include <gtest/gtest.h>
#include <syslog.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "Expect.h"
#include "LibcShim.h"
#include "LogCapture.h"
#include "TarnFWAttrProfile.h"
#include "TarnFWContainer.h"
#include "TarnFWL7Attribute.h"

using namespace TarnFirewall;

namespace {

constexpr auto kPlain = static_cast<FWContainerType>(7);

std::unique_ptr<CTarnFWContainerElement> app(long value) {
  return std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_APP_ID, value);
}

/// A chain of APP_ID elements.
Bytes chainOf(std::initializer_list<int> apps) {
  const auto count = apps.size();
  Bytes bytes(12 + 26 * count);
  bytes.at(0, {7, 0, 0, 0, static_cast<int>(count), 0, 0, 0, static_cast<int>(26 * count)});
  std::size_t at = 12;
  for (const int value : apps) {
    bytes.at(at, {1, 0, 0, 0, 18, 0, 0, 0, 0, 0, 2, 0, 18, 0, 0, 0, 0, 0, value});
    at += 26;
  }
  return bytes;
}

bool parse(CTarnFWContainer& container, const Bytes& bytes) {
  return container.parseTLVChain(reinterpret_cast<const FWtlvChain*>(bytes.data()),
                                 static_cast<unsigned int>(bytes.size()));
}

/// Adds an element to the bytes of a chain.
void append(Bytes& chain, CTarnFWL7Attribute attribute) {
  Bytes element(attribute.getMsgSize());
  ASSERT_TRUE(attribute.toMessage(element.data(), attribute.getMsgSize(), nullptr));
  chain.insert(chain.end(), element.begin(), element.end());
}

/// Bytes in a block of their own size, so that a read after them is seen.
Bytes cutTo(const Bytes& whole, std::size_t size) {
  Bytes cut(size);
  std::memcpy(cut.data(), whole.data(), size);
  return cut;
}

/// An element that can't be written.
class BrokenElement final : public CTarnFWContainerElement {
 public:
  BrokenElement() : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {}
  FWContElementType getTlvType() const override { return elementType(); }
  unsigned int getTlvLength() const override { return 4; }
  bool serializeValue(void*, unsigned int, unsigned int*) const override { return false; }
  bool operator==(const CTarnFWContainerElement&) const override { return false; }
  bool operator<(const CTarnFWContainerElement&) const override { return false; }
  std::string toString() const override { return "broken"; }
};

}  // namespace

TEST(TarnFWContainer, HoldsItsNameAndType) {
  const CTarnFWContainer container("web", kPlain);
  EXPECT_EQ(container.getName(), "web");
  EXPECT_EQ(container.getContainerType(), 7u);
  EXPECT_EQ(container.getType(), 136);
  EXPECT_EQ(container.getCount(), 0u);
}

TEST(TarnFWContainer, ANameOf37CharactersPassesAnd38Throws) {
  EXPECT_EQ(CTarnFWContainer(std::string(37, 'n'), kPlain).getName().size(), 37u);
  const std::string name(38, 'n');
  EXPECT_THROW_WITH(CTarnFWContainer(name, kPlain), CInvalidContainerNameException, 69,
                    "invalid container name: " + name + "(size: 38greater than max size: 37)");
}

TEST(TarnFWContainer, AnEmptyContainerHasTwelveBytesAndAnEmptyText) {
  CTarnFWContainer container("web", kPlain);
  EXPECT_EQ(container.getMsgSize(), 12u);
  EXPECT_EQ(container.toString(), "{ }");
  Bytes bytes(12, 0xee);
  unsigned int written = 0;
  EXPECT_TRUE(container.toMessage(bytes.data(), 12, &written));
  EXPECT_EQ(written, 12u);
  EXPECT_EQ(bytes, Bytes({7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(TarnFWContainer, ElementsStandInTheirOwnOrder) {
  CTarnFWContainer container("web", kPlain);
  EXPECT_TRUE(container.addElement(app(34)));
  EXPECT_TRUE(container.addElement(app(2)));
  EXPECT_TRUE(container.addElement(app(33)));
  EXPECT_EQ(container.toString(), "{APP_ID : APP_IP, APP_ID : APP_UDP, APP_ID : APP_ICMPV6 }");
  EXPECT_EQ(container.getMsgSize(), 12u + 3 * 26u);
  Bytes bytes(container.getMsgSize(), 0xee);
  unsigned int written = 0;
  EXPECT_TRUE(container.toMessage(bytes.data(), container.getMsgSize(), &written));
  EXPECT_EQ(written, 90u);
  EXPECT_EQ(bytes, chainOf({2, 33, 34}));
  EXPECT_TRUE(container.toMessage(bytes.data(), container.getMsgSize(), nullptr));
}

TEST(TarnFWContainer, AnEqualElementIsDroppedWithoutAnError) {
  CTarnFWContainer container("web", kPlain);
  LogCapture log;
  EXPECT_TRUE(container.addElement(app(33)));
  EXPECT_FALSE(container.addElement(app(33)));
  EXPECT_EQ(container.getCount(), 1u);
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWContainer, ANullElementChangesNothing) {
  CTarnFWContainer container("web", kPlain);
  EXPECT_FALSE(container.addElement(nullptr));
  EXPECT_EQ(container.getCount(), 0u);
}

TEST(TarnFWContainer, WritesNothingIntoAShortBuffer) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(app(33));
  unsigned int written = 77;
  EXPECT_FALSE(container.toMessage(nullptr, 100, &written));
  for (unsigned int size = 1; size < 38; ++size) {
    Bytes bytes(size, 0xee);
    LogCapture log;
    EXPECT_FALSE(container.toMessage(bytes.data(), size, &written));
    EXPECT_EQ(bytes, Bytes(size, 0xee));
    EXPECT_TRUE(log.has(LOG_ERR, "size of message buffer " + std::to_string(size) +
                                     " is less than required size 38\n"));
  }
  EXPECT_EQ(written, 77u);
}

TEST(TarnFWContainer, AnElementThatCantBeWrittenFailsTheContainer) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(std::make_unique<BrokenElement>());
  Bytes bytes(container.getMsgSize());
  LogCapture log;
  unsigned int written = 77;
  EXPECT_FALSE(container.toMessage(bytes.data(), container.getMsgSize(), &written));
  EXPECT_TRUE(log.has(LOG_ERR, "failed to serializeValue broken\n"));
  EXPECT_TRUE(log.has(LOG_ERR, "failed to serialize : broken\n"));
  EXPECT_EQ(written, 77u);
}

TEST(TarnFWContainer, ReadsAChainAndWritesItAgain) {
  const Bytes chain = chainOf({2, 33, 34});
  CTarnFWContainer container("web", kPlain);
  ASSERT_TRUE(parse(container, chain));
  Bytes bytes(container.getMsgSize());
  EXPECT_TRUE(container.toMessage(bytes.data(), container.getMsgSize(), nullptr));
  EXPECT_EQ(bytes, chain);
}

TEST(TarnFWContainer, ReadsElementsOfDifferentLengths) {
  CTarnFWContainer first("web", kPlain);
  first.addElement(app(33));
  first.addElement(std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_HTTP_PATH, 1UL, 2UL, "/abc"));
  first.addElement(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_WIN_SID, std::string("S-1-5-18")));
  Bytes bytes(first.getMsgSize());
  ASSERT_TRUE(first.toMessage(bytes.data(), first.getMsgSize(), nullptr));
  EXPECT_EQ(bytes.size(), 12u + (8 + 18) + (8 + 33) + (8 + 82));
  CTarnFWContainer second("web", kPlain);
  ASSERT_TRUE(parse(second, bytes));
  EXPECT_EQ(second.toString(),
            "{APP_ID : APP_UDP, HTTP_PATH : /abc(00000000-0000-0001-0000-000000000002), "
            "WIN_SID : S-1-5-18 }");
}

TEST(TarnFWContainer, ElementsOfAChainStandInTheirOwnOrder) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(app(4));
  ASSERT_TRUE(parse(container, chainOf({34, 2, 33, 2, 6, 4})));
  Bytes bytes(container.getMsgSize());
  EXPECT_TRUE(container.toMessage(bytes.data(), container.getMsgSize(), nullptr));
  EXPECT_EQ(bytes, chainOf({2, 4, 6, 33, 34}));
}

TEST(TarnFWContainer, TextsOfAChainThatBeginAlikeStandInTheirOwnOrder) {
  Bytes chain{7, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0};
  for (const char* const text :
       {"S-1-5-21-1-2-3-4-6", "S-1-5-21-1-2-3-4", "S-1-5-21-1-2-3-4-5", "S-1-5-21-1-2-3-4-6"}) {
    append(chain, CTarnFWL7Attribute(FW_ATTR_KEY_WIN_SID, text));
  }
  CTarnFWContainer container("web", kPlain);
  ASSERT_TRUE(parse(container, chain));
  EXPECT_EQ(container.getCount(), 3u);
  EXPECT_EQ(container.toString(),
            "{WIN_SID : S-1-5-21-1-2-3-4, WIN_SID : S-1-5-21-1-2-3-4-5, "
            "WIN_SID : S-1-5-21-1-2-3-4-6 }");
}

TEST(TarnFWContainer, OfEqualElementsOfAChainTheFirstStays) {
  // The text of an identifier plays no part in what is equal.
  Bytes chain{7, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0};
  for (const auto& [low, text] : {std::pair{2UL, "/c"}, {1UL, "/b"}, {1UL, "/a"}})
    append(chain, CTarnFWL7Attribute(FW_ATTR_KEY_HTTP_PATH, 1UL, low, text));
  CTarnFWContainer container("web", kPlain);
  ASSERT_TRUE(parse(container, chain));
  EXPECT_EQ(container.toString(),
            "{HTTP_PATH : /b(00000000-0000-0001-0000-000000000001), "
            "HTTP_PATH : /c(00000000-0000-0001-0000-000000000002) }");
}

TEST(TarnFWContainer, TwoEqualAttributesInAChainGiveOne) {
  CTarnFWContainer container("web", kPlain);
  LogCapture log;
  EXPECT_TRUE(parse(container, chainOf({33, 33})));
  EXPECT_EQ(container.getCount(), 1u);
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWContainer, ANullChainIsRefusedSilently) {
  CTarnFWContainer container("web", kPlain);
  LogCapture log;
  EXPECT_FALSE(container.parseTLVChain(nullptr, 100));
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWContainer, AChainUnderItsHeadIsRefused) {
  for (std::size_t size = 1; size < 12; ++size) {
    CTarnFWContainer container("web", kPlain);
    LogCapture log;
    EXPECT_FALSE(parse(container, Bytes(size)));
    EXPECT_TRUE(log.has(LOG_ERR, "size of tlv chain message less than minimum size : 12\n"));
  }
}

TEST(TarnFWContainer, ACountOfZeroIsAcceptedWhateverTheSizeFieldSaysUpToTheBuffer) {
  for (const int size : {0, 1, 26, 37, 38}) {
    CTarnFWContainer container("web", kPlain);
    EXPECT_TRUE(parse(container, chainOf({33}).at(4, {0}).at(8, {size}))) << size;
    EXPECT_EQ(container.getCount(), 0u);
  }
}

TEST(TarnFWContainer, ASizeFieldAboveTheBufferIsRefused) {
  CTarnFWContainer container("web", kPlain);
  LogCapture log;
  EXPECT_FALSE(parse(container, chainOf({33}).at(8, {39})));
  EXPECT_TRUE(log.has(LOG_ERR, "size of tlv chain 39 is greater than the buffer size 38\n"));
  log.clear();
  EXPECT_FALSE(parse(container, chainOf({33}).at(8, {0xff, 0xff, 0xff, 0xff})));
  EXPECT_TRUE(
      log.has(LOG_ERR, "size of tlv chain 4294967295 is greater than the buffer size 38\n"));
  EXPECT_EQ(container.getCount(), 0u);
}

TEST(TarnFWContainer, TheSizeFieldDoesNotBoundTheElements) {
  CTarnFWContainer container("web", kPlain);
  EXPECT_TRUE(parse(container, chainOf({2, 33}).at(8, {0})));
  EXPECT_EQ(container.getCount(), 2u);
}

TEST(TarnFWContainer, ACountAboveTheElementsFailsAfterTheLastAndReadsNoFurther) {
  for (const std::initializer_list<int> count :
       {std::initializer_list<int>{3, 0, 0, 0}, {0xff, 0xff, 0xff, 0xff}}) {
    CTarnFWContainer container("web", kPlain);
    LogCapture log;
    EXPECT_FALSE(parse(container, chainOf({2, 33}).at(4, count)));
    EXPECT_TRUE(log.has(LOG_ERR, "failed to create element at index 2\n\n"));
    EXPECT_EQ(container.getCount(), 2u);
  }
}

TEST(TarnFWContainer, EveryTruncationOfAChainIsRefused) {
  const Bytes whole = chainOf({2, 33, 34});
  for (std::size_t size = 12; size < whole.size(); ++size) {
    const std::string index = std::to_string((size - 12) / 26);
    CTarnFWContainer container("web", kPlain);
    LogCapture log;
    // A size field that fits, so that only the elements themselves are at fault.
    EXPECT_FALSE(parse(container, cutTo(whole, size).at(8, {0})));
    EXPECT_TRUE(log.has(LOG_ERR, "failed to create element at index " + index + "\n\n")) << size;
    EXPECT_EQ(std::to_string(container.getCount()), index);
  }
}

TEST(TarnFWContainer, EveryBadLengthOfAnElementFailsTheChainAtItsIndex) {
  // The second element's length: nothing, one less, one more than fits, what wraps around, all
  // ones.
  for (const std::initializer_list<int> length : {std::initializer_list<int>{0, 0, 0, 0},
                                                  {17, 0, 0, 0},
                                                  {19, 0, 0, 0},
                                                  {0xf0, 0xff, 0xff, 0xff},
                                                  {0xff, 0xff, 0xff, 0xff}}) {
    CTarnFWContainer container("web", kPlain);
    LogCapture log;
    EXPECT_FALSE(parse(container, chainOf({2, 33}).at(12 + 26 + 4, length)));
    EXPECT_TRUE(log.has(LOG_ERR, "failed to create element at index 1\n\n"));
    EXPECT_EQ(container.getCount(), 1u);
  }
}

TEST(TarnFWContainer, AnElementOfAnotherKindFailsTheChainAtItsIndex) {
  CTarnFWContainer container("web", kPlain);
  LogCapture log;
  EXPECT_FALSE(parse(container, chainOf({2, 33}).at(12 + 26 + 2, {1})));
  EXPECT_TRUE(log.has(LOG_ERR, "unknown container element\n"));
  EXPECT_TRUE(log.has(LOG_ERR, "failed to create element at index 1\n\n"));
}

TEST(TarnFWContainer, BytesAfterTheLastElementAreIgnored) {
  Bytes bytes = chainOf({33});
  bytes.resize(bytes.size() + 5, 0xff);
  CTarnFWContainer container("web", kPlain);
  EXPECT_TRUE(parse(container, bytes));
  EXPECT_EQ(container.getCount(), 1u);
}

TEST(TarnFWContainer, IsBuiltByItsType) {
  const auto profile = CTarnFWContainer::BuildContainer("p", FW_CONTAINER_ATTR_PROFILE);
  EXPECT_NE(dynamic_cast<CTarnFWAttrProfile*>(profile.get()), nullptr);
  const auto plain = CTarnFWContainer::BuildContainer("p", kPlain);
  EXPECT_EQ(dynamic_cast<CTarnFWAttrProfile*>(plain.get()), nullptr);
  EXPECT_EQ(plain->getContainerType(), 7u);
}

TEST(TarnFWContainer, IsBuiltFromAChainThroughItsOwnWayOfAdding) {
  const Bytes chain = chainOf({2, 33});
  const auto* const head = reinterpret_cast<const FWtlvChain*>(chain.data());
  const auto profile = CTarnFWContainer::BuildContainer("p", FW_CONTAINER_ATTR_PROFILE, head, 64);
  ASSERT_NE(profile.get(), nullptr);
  EXPECT_EQ(profile->toString(), "p with {\n[ APP_ID : APP_IP, APP_UDP]\n}");
  EXPECT_EQ(CTarnFWContainer::BuildContainer("p", kPlain, head, 63).get(), nullptr);
  EXPECT_EQ(CTarnFWContainer::BuildContainer("p", kPlain, nullptr, 64).get(), nullptr);
}

TEST(TarnFWContainer, GivesItsElementsAsTextsThatTheCallerOwns) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(app(34));
  container.addElement(app(33));
  char* texts[3] = {nullptr, nullptr, nullptr};
  ASSERT_TRUE(container.elementsToCharArray(texts, 3));
  EXPECT_STREQ(texts[0], "APP_ID : APP_UDP");
  EXPECT_STREQ(texts[1], "APP_ID : APP_ICMPV6");
  EXPECT_EQ(texts[2], nullptr);
  std::free(texts[0]);
  std::free(texts[1]);
}

TEST(TarnFWContainer, ATextThatCannotBeCopiedFailsAndTakesBackTheOthers) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(app(34));
  container.addElement(app(33));
  char* texts[2] = {nullptr, nullptr};
  LogCapture log;
  for (const unsigned int good : {0u, 1u}) {
    const LibcShim::FailingCopies failing(good);
    EXPECT_FALSE(container.elementsToCharArray(texts, 2)) << good;
  }
  EXPECT_TRUE(log.lines().empty());
  const LibcShim::FailingCopies enough(2);
  ASSERT_TRUE(container.elementsToCharArray(texts, 2));
  EXPECT_STREQ(texts[0], "APP_ID : APP_UDP");
  std::free(texts[0]);
  std::free(texts[1]);
}

TEST(TarnFWContainer, TooFewPlacesForTheTextsAreRefused) {
  CTarnFWContainer container("web", kPlain);
  container.addElement(app(34));
  container.addElement(app(33));
  char* texts[1] = {nullptr};
  LogCapture log;
  EXPECT_FALSE(container.elementsToCharArray(texts, 1));
  EXPECT_TRUE(log.has(LOG_ERR, "number of elements mismatch 1 != 2\n"));
  EXPECT_EQ(texts[0], nullptr);
}
