#pragma once

/// IP protocol numbers by the host's names, each asked of the host once. A look-up reads the host's
/// protocol database from its start, which a configuration of many rules can't afford per rule.

#include <string>
#include <string_view>
#include <vector>

namespace TarnFirewall {

class CTarnFWProtocolNames {
 public:
  /// The number, -1 for a name that the host does not know.
  int number(std::string_view name);

 private:
  struct Known {
    std::string name;
    int number;
  };
  std::vector<Known> known_;
};

}  // namespace TarnFirewall
