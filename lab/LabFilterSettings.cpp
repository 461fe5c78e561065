// Settings of a filter that are one value each.
#include "LabFailPolicy.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

constexpr U8 policy{0, "policy"};

std::uint32_t setFailPolicy(Context context, Body& body) {
  const unsigned wanted = policy.get(body);
  if (wanted > 1) return context.refuse(Status::invalidArgument, format("policy %u", wanted));
  return changeSettings(context, [&](Settings& settings) {
    settings.set(failClose, wanted == 1);
    return Status::ok;
  });
}

std::uint32_t getFailPolicy(Context context, Body& body) {
  policy.put(body, settingsOf(context).get(failClose) ? 1 : 0);
  return Status::ok;
}

constexpr CommandKind commands[] = {
    {.number = 31, .least = 1, .answer = setFailPolicy, .request = {policy}},
    {.number = 35, .least = 1, .answer = getFailPolicy, .reply = {policy}},
};

constexpr Setting settings[] = {failClose};

}  // namespace

constinit const Family filterSettingsFamily{.commands = commands, .settings = settings};

}  // namespace TarnLab
