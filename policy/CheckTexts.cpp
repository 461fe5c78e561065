#include "CheckTexts.h"

#include "CheckNames.h"
#include "CheckParse.h"
#include "CheckShadow.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsSelector.h"

namespace {

/// What a check changes in the process and puts back: a text may set the default selector, and what
/// the library logs of a text is found by the check itself.
class Undisturbed {
 public:
  Undisturbed()
      : selector_(TarnFirewall::g_tarnfw_default_dvsport),
        logger_(TarnFirewall::gTarnFWLogger.load()) {
    TarnFirewall::gTarnFWLogger.store({[](int, const char*, va_list) {}, 0});
  }
  ~Undisturbed() {
    TarnFirewall::g_tarnfw_default_dvsport = selector_;
    TarnFirewall::gTarnFWLogger.store(logger_);
  }
  Undisturbed(const Undisturbed&) = delete;
  Undisturbed& operator=(const Undisturbed&) = delete;

 private:
  TarnFirewall::dvs_port_ selector_;
  TarnFirewall::FWLogger_ logger_;
};

}  // namespace

Diagnostics checkTexts(const SourceTexts& sources, const HeldNames* held) {
  const Undisturbed undisturbed;
  Diagnostics diagnostics;
  ShadowCheck shadows(diagnostics);
  NameCheck names(sources, held, shadows, diagnostics);
  for (std::uint32_t file = 0; file < sources.size(); ++file) {
    names.beginFile(file);
    readText(sources[file], file, names, diagnostics);
  }
  names.finish();
  shadows.finish();
  diagnostics.sort();
  return diagnostics;
}
