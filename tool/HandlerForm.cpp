#include "HandlerForm.h"

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

#include "TarnFWUtilNumber.h"

OwnOption::OwnOption(char which, bool* flag)
    : OwnOption(which, [flag](const char*, const Target&) {
        *flag = true;
        return kGoOn;
      }) {}

OwnOption::OwnOption(char which, const char** text)
    : OwnOption(which, [text](const char* value, const Target&) {
        *text = value;
        return kGoOn;
      }) {}

OwnOption::OwnOption(char which, const char** text, std::size_t most, const char* tooLong)
    : OwnOption(which, [=](const char* value, const Target&) {
        if (std::strlen(value) > most) return printWith(stderr, tooLong, value), 1;
        *text = value;
        return kGoOn;
      }) {}

OwnOption::OwnOption(char which, std::optional<std::uint32_t>* number)
    : OwnOption(which, [number](const char* value, const Target&) {
        constexpr unsigned long kLimit = 1ul << 32;
        long parsed = 0;
        if (!TarnFirewall::str2Limited(value, 10, kLimit, &parsed)) return kNotTaken;
        *number = static_cast<std::uint32_t>(parsed);
        return kGoOn;
      }) {}

OwnOption::OwnOption(char which, std::optional<bool>* choice, const char* bad)
    : OwnOption(which, [=](const char* value, const Target& target) {
        int number = 0;
        if (!decimalOption(value, &number) || number < 0 || number > 1)
          return printWith(stderr, bad, value), target.usage(1);
        *choice = number == 1;
        return kGoOn;
      }) {}

OwnOptions::OwnOptions(std::initializer_list<OwnOption> options)
    : count_(std::min(options.size(), kMost)) {
  assert(options.size() <= kMost);
  std::copy_n(options.begin(), count_, options_.begin());
}

const OwnOption* OwnOptions::find(int letter) const {
  for (std::size_t i = 0; i < count_; ++i)
    if (options_[i].letter == letter) return &options_[i];
  return nullptr;
}

namespace {

/// Takes an option that handlers share. A long option may stand for a letter that the handler does
/// not have, and is not taken then.
int takeShared(const HandlerForm& form, Target& target, int letter) {
  if (letter == 'h') return target.usage(0);
  if (std::strchr(form.letters, letter) == nullptr) return kNotTaken;
  const char* const value = target.options.value();
  switch (letter) {
    case 'f':
      return target.filter.take(value) == 0 ? kGoOn : 1;
    case 'v':
      target.verbosity.raise(value);
      return kGoOn;
    case 'm':
      return target.verbosity.takeComponent(value) == 0 ? kGoOn : 1;
    default:
      return kNotTaken;
  }
}

int takeOption(const HandlerForm& form, Target& target, int letter) {
  if (const OwnOption* const own = form.own.find(letter))
    return own->take(target.options.value(), target);
  return takeShared(form, target, letter);
}

int takeOptions(const HandlerForm& form, Target& target, Options& options) {
  for (int letter; (letter = options.next()) != -1;) {
    const int status = takeOption(form, target, letter);
    if (status == kNotTaken) return target.usage(form.badOption);
    if (status != kGoOn) return status;
  }
  return kGoOn;
}

int runStep(const HandlerForm::Step& step, const Target& target) {
  return step ? step(target) : kGoOn;
}

int needFilter(const HandlerForm& form, const Target& target) {
  if (!form.needsFilter || target.filter.given) return kGoOn;
  std::fputs(form.missing.text, stderr);
  return form.missing.usage ? target.usage(form.missing.status) : form.missing.status;
}

int settle(const HandlerForm& form, Target& target) {
  target.filter.settleAgent(form.alwaysTakesAgent);
  if (form.announces) target.verbosity.announce(target.filter);
  if (form.raisesLibraryLevel) target.verbosity.raiseLibrary();
  if (form.prints) FW_SetLibPrettyPrinting(pretty_printing, stdout);
  return kGoOn;
}

int openLibrary(const HandlerForm& form, Target& target) {
  if (initFWLibrary(&target.handle) == 0) return kGoOn;
  std::fputs(form.libraryFailure.text, stderr);
  return form.libraryFailure.status;
}

}  // namespace

int onFilter(const char* cmd, int argc, char** argv, const HandlerForm& form,
             const HandlerBody& body) {
  const Usage usage(form.usage, cmd);
  Options options(argc, argv, form.letters, form.words);
  Target target(usage, options);

  const bool opensFirst = form.opensLibrary && form.opensLibraryFirst;
  const bool opensLast = form.opensLibrary && !form.opensLibraryFirst;
  int status = takeOptions(form, target, options);
  if (status == kGoOn) status = runStep(form.parsed, target);
  if (status == kGoOn && opensFirst) status = openLibrary(form, target);
  if (status == kGoOn) status = needFilter(form, target);
  if (status == kGoOn) status = runStep(form.check, target);
  if (status == kGoOn) status = settle(form, target);
  if (status == kGoOn && opensLast) status = openLibrary(form, target);
  if (status != kGoOn) return status;

  status = body(target);
  if (form.removesPrinter) FW_SetLibPrettyPrinting(nullptr, nullptr);
  return status;
}

int onHost(const char* cmd, int argc, char** argv, HandlerForm form, const HandlerBody& body) {
  form.needsFilter = false;
  form.opensLibrary = false;
  return onFilter(cmd, argc, argv, form, body);
}

HandlerForm::Step given(const char* const& value, const char* missing) {
  return [&value, missing](const Target& target) {
    return value != nullptr ? kGoOn : target.usage.error("%s", missing);
  };
}

int outcome(FWStatus_t status, const char* text) {
  if (status == TarnFirewall::FW_STATUS_OK) return 0;
  printWith(stderr, text, FW_StatusToString(status));
  return 1;
}
