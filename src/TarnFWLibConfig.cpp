#include "TarnFWLibConfig.h"

#include <strings.h>

#include <cstdlib>

#include "Locks.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

CTarnFWLibConfig* CTarnFWLibConfig::GetInstance() {
  return Locks::onlyInstance<CTarnFWLibConfig>([] { return new CTarnFWLibConfig; });
}

int CTarnFWLibConfig::readConfig(int key, bool* value) const {
  if (key != FW_CONFIG_EXEC_BATCH_CMD) return 0;
  const char* name = "tarnfwlib_exec_batch_cmd";
  const char* text = std::getenv(name);
  if (text == nullptr) return 0;
  TARNFW_INFO("Read config %s: %s\n\n", name, text);
  if (strcasecmp(text, "true") == 0) {
    *value = true;
    return 1;
  }
  if (strcasecmp(text, "false") == 0) {
    *value = false;
    return 1;
  }
  return 0;
}

}  // namespace TarnFirewall
