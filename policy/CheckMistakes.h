#pragma once

/// What the actions of the grammar refuse: where it stands, and what to do about it.

#include <span>
#include <string>

#include "CheckTokens.h"

/// A failure of an action, in the words that it came with.
struct Refusal {
  std::string message;
  Token token;       // the word that is to blame
  std::string help;  // empty where the message says it all
};

/// Finds the word that a message is about among the words that were read of the statement (and of
/// its last rule), of which there is at least one.
Refusal explainRefusal(const SourceText& source, std::string message, std::span<const Token> words);

/// The refusal without a message: of members of attribute sets, and of connections.
Refusal explainSilence(std::span<const Token> words);
