// What a filter does with traffic while it cannot enforce rules: a command sets it, and so does the
// creation of a filter.
#ifndef TARNLAB_FAIL_POLICY_H
#define TARNLAB_FAIL_POLICY_H

#include "LabSettings.h"

namespace TarnLab {

inline constexpr FlagSetting failClose{"fail.close",
                                       "traffic is dropped while rules cannot be enforced"};

}  // namespace TarnLab

#endif
