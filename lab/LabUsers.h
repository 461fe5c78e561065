// The users that a filter knows.
#ifndef TARNLAB_USERS_H
#define TARNLAB_USERS_H

#include "LabCommand.h"

namespace TarnLab {

/// Whether the filter has a mapping of that user's sid, 72 bytes.
bool hasUser(const CommandContext& context, ConstBytes sid);

}  // namespace TarnLab

#endif
