#pragma once

/// The library's own settings, which come from the environment.

namespace TarnFirewall {

/// Keys of `CTarnFWLibConfig::readConfig`.
enum FWLibConfigKey_t : int {
  FW_CONFIG_EXEC_BATCH_CMD = 0,  // the variable `tarnfwlib_exec_batch_cmd`
};

class CTarnFWLibConfig {
 public:
  static CTarnFWLibConfig* GetInstance();

  /// 1 and the value for "true" or "false", ignoring case. 0 with `value` left alone for an unset
  /// variable, another value or an unknown key.
  int readConfig(int key, bool* value) const;

 private:
  CTarnFWLibConfig() = default;
};

}  // namespace TarnFirewall
