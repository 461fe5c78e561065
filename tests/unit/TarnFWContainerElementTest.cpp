#include <gtest/gtest.h>
#include <syslog.h>

#include <cstring>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWContainerElement.h"
#include "TarnFWL7Attribute.h"

using namespace TarnFirewall;

namespace {

/// APP_ID 33 as an element.
Bytes element() {
  return Bytes(26)
      .at(0, {1, 0, 0, 0, 18, 0, 0, 0})
      .at(8, {0, 0, 2, 0, 18, 0, 0, 0, 0, 0})
      .at(18, {33});
}

std::unique_ptr<CTarnFWContainerElement> build(const Bytes& bytes) {
  return CTarnFWContainerElement::buildContainerElement(
      reinterpret_cast<const FWtlvChainElem*>(bytes.data()),
      static_cast<unsigned int>(bytes.size()));
}

std::unique_ptr<CTarnFWContainerElement> app(long value) {
  return std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_APP_ID, value);
}

}  // namespace

TEST(TarnFWContainerElement, WritesItsHeadAndItsValue) {
  Bytes bytes(26, 0xee);
  unsigned int written = 0;
  EXPECT_TRUE(app(33)->toMessage(bytes.data(), 26, &written));
  EXPECT_EQ(written, 26u);
  EXPECT_EQ(bytes, element());
  EXPECT_TRUE(app(33)->toMessage(bytes.data(), 26, nullptr));
}

TEST(TarnFWContainerElement, FailsInABufferThatIsNullOrTooSmall) {
  unsigned int written = 77;
  EXPECT_FALSE(app(33)->toMessage(nullptr, 26, &written));
  for (unsigned int size = 0; size < 26; ++size) {
    Bytes bytes(size);
    LogCapture log;
    EXPECT_FALSE(app(33)->toMessage(bytes.data(), size, &written));
    EXPECT_EQ(log.has(LOG_ERR, "failed to serializeValue APP_ID : APP_UDP\n"), size >= 8);
  }
  EXPECT_EQ(written, 77u);
}

TEST(TarnFWContainerElement, ReadsAnAttribute) {
  const auto read = build(element());
  ASSERT_NE(read.get(), nullptr);
  EXPECT_EQ(read->toString(), "APP_ID : APP_UDP");
}

TEST(TarnFWContainerElement, NothingIsReadFromNullOrEveryTruncation) {
  EXPECT_EQ(CTarnFWContainerElement::buildContainerElement(nullptr, 26).get(), nullptr);
  const Bytes whole = element();
  for (std::size_t size = 1; size < whole.size(); ++size) {
    Bytes cut(size);
    std::memcpy(cut.data(), whole.data(), size);
    EXPECT_EQ(build(cut).get(), nullptr) << size;
  }
}

TEST(TarnFWContainerElement, AnUnknownKindIsLoggedAndRefused) {
  for (const int type : {1, 2, 255}) {
    LogCapture log;
    EXPECT_EQ(build(element().at(2, {type})).get(), nullptr);
    EXPECT_TRUE(log.has(LOG_ERR, "unknown container element\n"));
  }
}

TEST(TarnFWContainerElement, TheKindIsLookedAtOnceAHeadIsThere) {
  const Bytes head = {1, 0, 1, 0, 0, 0, 0, 0};
  LogCapture log;
  EXPECT_EQ(build(head).get(), nullptr);
  EXPECT_TRUE(log.has(LOG_ERR, "unknown container element\n"));
  log.clear();
  EXPECT_EQ(build(Bytes(head.begin(), head.end() - 1)).get(), nullptr);
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWContainerElement, ALengthThatIsNotTheRecordsIsRefused) {
  for (const int length : {0, 1, 9, 10, 17, 19, 255}) {
    EXPECT_EQ(build(element().at(4, {length})).get(), nullptr) << length;
  }
  EXPECT_EQ(build(element().at(4, {0xff, 0xff, 0xff, 0xff})).get(), nullptr);
  EXPECT_EQ(build(element().at(4, {0xf8, 0xff, 0xff, 0xff})).get(), nullptr);
}

TEST(TarnFWContainerElement, TheFirstFieldIsNotLookedAt) {
  EXPECT_NE(build(element().at(0, {0xff, 0xff})).get(), nullptr);
}

TEST(TarnFWContainerElement, WhatTheAttributeRefusesGivesNullWithoutItsText) {
  LogCapture log;
  EXPECT_EQ(build(element().at(8, {99})).get(), nullptr);
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWContainerElement, PointersCompareByTheirElementsAndNullIsFalse) {
  const std::unique_ptr<CTarnFWContainerElement> none;
  EXPECT_TRUE(app(1) == app(1));
  EXPECT_FALSE(app(1) == app(2));
  EXPECT_TRUE(app(1) < app(2));
  EXPECT_FALSE(app(2) < app(1));
  EXPECT_FALSE(none == app(1));
  EXPECT_FALSE(app(1) == none);
  EXPECT_FALSE(none == none);
  EXPECT_FALSE(none < app(1));
  EXPECT_FALSE(app(1) < none);
}
