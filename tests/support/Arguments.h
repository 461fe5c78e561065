#pragma once

#include <string>
#include <vector>

/// An argument vector of its own, since getopt moves its elements.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> words) : words_(std::move(words)) {
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
  }
  int count() const { return static_cast<int>(words_.size()); }
  char** vector() { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};
