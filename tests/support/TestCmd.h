#pragma once

#include <cstring>
#include <functional>

#include "TarnFWCmd.h"

/// A command that does what a test says: number, body, size and reading of the reply.
class TestCmd : public TarnFirewall::CTarnFWCmd {
 public:
  explicit TestCmd(std::uint16_t number = 9, unsigned int size = 8,
                   const TarnFirewall::dvs_port_* port = nullptr)
      : CTarnFWCmd(port), number_(number), size_(size) {}

  unsigned int getMsgSize() const override { return size_; }
  int getType() const override { return 23 + number_; }
  std::string toString() const override { return "test " + std::to_string(number_); }
  std::uint16_t getCommand() const override { return number_; }

  bool writeCmdBody(void* body, unsigned int room, unsigned int* written, unsigned int) override {
    ++writes;
    if (refuse || size_ > room) return false;
    std::memset(body, 0x11, size_);
    *written = size_ - shortBy;
    return true;
  }

  void checkCmdReply(const void* reply, unsigned int size) override {
    replies.emplace_back(static_cast<const char*>(reply), size);
    if (onReply) onReply();
  }

  using CTarnFWCmd::dvsportToString;

  bool refuse = false;
  unsigned int shortBy = 0;
  int writes = 0;
  std::vector<std::string> replies;
  std::function<void()> onReply;

 private:
  std::uint16_t number_;
  unsigned int size_;
};
