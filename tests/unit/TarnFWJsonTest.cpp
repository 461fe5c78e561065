// The printed form of replies that are JSON objects.

#include <gtest/gtest.h>

#include <string>

#include "Expect.h"
#include "FakeKernel.h"
#include "TarnFWCmdJson.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

/// What is printed by `print`.
template <typename Print>
std::string printed(Print print) {
  const Printed text;
  const PrettyPrinting out;
  CTarnFWJson json(out);
  print(json);
  json.end();
  return text.text();
}

}  // namespace

TEST(TarnFWJson, AnObjectWithoutItemsHasAnEmptyLine) {
  EXPECT_EQ(printed([](CTarnFWJson&) {}), "{\n\n}\n");
}

TEST(TarnFWJson, ItemsAreFourColumnsALevelWithCommasBetweenThem) {
  EXPECT_EQ(printed([](CTarnFWJson& json) {
              json.number("first", 0);
              json.text("second", "word");
              json.beginList("empty");
              json.end();
              json.beginList("list");
              json.beginObject();
              json.end();
              json.beginObject();
              json.number("last", ~0ull);
              json.end();
              json.end();
            }),
            "{\n"
            "    \"first\": 0,\n"
            "    \"second\": \"word\",\n"
            "    \"empty\": [\n"
            "    ],\n"
            "    \"list\": [\n"
            "        {\n"
            "\n"
            "        },\n"
            "        {\n"
            "            \"last\": 18446744073709551615\n"
            "        }\n"
            "    ]\n"
            "}\n");
}

TEST(TarnFWJson, TextStaysInsideItsQuotes) {
  EXPECT_EQ(printed([](CTarnFWJson& json) {
              json.text("t", std::string_view("\"\\/\n\t\x01\x7f\x80\xff%s\0z", 13));
            }),
            "{\n    \"t\": \"\\\"\\\\/\\u000a\\u0009\\u0001\\u007f\\u0080\\u00ff%s\\u0000z\"\n}\n");
}

TEST(TarnFWJson, BytesAreHexadecimal) {
  const Bytes bytes{0x00, 0x0f, 0xa5, 0xff};
  EXPECT_EQ(printed([&](CTarnFWJson& json) { json.bytes("b", std::as_bytes(std::span(bytes))); }),
            "{\n    \"b\": \"000fa5ff\"\n}\n");
}
