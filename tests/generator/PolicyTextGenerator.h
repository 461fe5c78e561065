#pragma once

#include <string>

#include "Choices.h"

/// What a generated policy is made of, in percent.
struct PolicyShape {
  unsigned int names = 5;  // rule sets at most
  unsigned int chanceOfRuleSet = 60;
  unsigned int chanceOfJumpRule = 50;  // of a rule
  unsigned int chanceOfJump = 30;      // of a rule set
  unsigned int chanceOfRoot = 70;
  unsigned int chanceOfOpenLayer = 0;  // that the second layer of a root leads to nothing
};

/// The text of a policy of few names, so that two of them have much in common. What its rules and
/// its jumps refer to is there.
std::string generatedPolicyText(Choices& choices, const PolicyShape& shape = {});
