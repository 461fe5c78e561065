#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "LogCapture.h"
#include "TarnFWCmdConfig.h"
#include "TarnFWCmdList.h"
#include "TarnFWScanner.h"
#include "tarnfw_parser.h"

/// One parse of a configuration text: what it returned, what it built and what it logged.
class ParseText {
 public:
  explicit ParseText(const std::string& text) {
    TarnFirewall::fw_lex_extra_ extra;
    void* scanner = nullptr;
    EXPECT_EQ(yylex_init_extra(&extra, &scanner), 0);
    yy_buffer_state* buffer = yy_scan_string(text.c_str(), scanner);
    yyset_lineno(1, scanner);
    TarnFirewall::CTarnFWCmdList* commands = nullptr;
    TarnFirewall::CTarnFWCmdConfig* channel = nullptr;
    result = yyparse(&status, scanner, "name", &commands, &channel);
    list.reset(commands);
    config.reset(channel);
    yy_delete_buffer(buffer, scanner);
    yylex_destroy(scanner);
  }

  /// "status|message" of a parse that failed; "" of one that did not.
  std::string failure() const {
    if (result == 0) return "";
    EXPECT_EQ(result, 1);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(config, nullptr);
    std::string text = std::to_string(status) + "|";
    for (const LogCapture::Line& line : log.lines()) {
      if (line.priority != 3) continue;
      EXPECT_EQ(line.text.find("tarnfw: tarnfw_parser:yyerror():"), 0u) << line.text;
      const std::size_t place = line.text.find(" [name:");
      text += line.text.substr(line.text.find("] ", place) + 2);
    }
    if (text.back() == '\n') text.pop_back();
    return text;
  }

  std::size_t count() const { return list == nullptr ? 0 : list->size(); }
  const TarnFirewall::CTarnFWCmd& command(std::size_t index = 0) const { return list->at(index); }

  /// Text of a command.
  std::string text(std::size_t index = 0) const { return command(index).toString(); }

  /// Body of a command as it goes to the kernel.
  std::vector<std::uint8_t> body(std::size_t index = 0) const {
    auto& cmd = const_cast<TarnFirewall::CTarnFWCmd&>(command(index));
    std::vector<std::uint8_t> bytes(cmd.getMsgSize(), 0xee);
    unsigned int written = 0;
    EXPECT_TRUE(
        cmd.writeCmdBody(bytes.data(), static_cast<unsigned int>(bytes.size()), &written, 0));
    EXPECT_EQ(written, bytes.size());
    return bytes;
  }

  /// Text at an offset of a command's body.
  std::string field(std::size_t offset, std::size_t index = 0) const {
    return reinterpret_cast<const char*>(body(index).data() + offset);
  }

  /// Host-order word at an offset of a command's body.
  std::uint32_t word(std::size_t offset, std::size_t index = 0) const {
    std::uint32_t value;
    std::memcpy(&value, body(index).data() + offset, sizeof value);
    return value;
  }

  LogCapture log;
  int result = -1;
  TarnFirewall::FWStatus_t status = 0;
  std::unique_ptr<TarnFirewall::CTarnFWCmdList> list;
  std::unique_ptr<TarnFirewall::CTarnFWCmdConfig> config;
};

/// What a text fails with: "status|message", "" when it does not fail.
inline std::string parseFailure(const std::string& text) { return ParseText(text).failure(); }

/// "number|text" of the only command that a statement makes, which is for filter f.
inline std::string numberAndText(const std::string& statement) {
  const ParseText parse(statement + ";");
  EXPECT_EQ(parse.failure(), "") << statement;
  if (parse.count() != 1) return "(no command)";
  EXPECT_STREQ(parse.command().currentPort().identifier, "f") << statement;
  return std::to_string(parse.command().getCommand()) + "|" + parse.text();
}
