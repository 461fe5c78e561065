#pragma once

#include "TarnFWIOChannel.h"

/// A channel that fails by a status instead of an exception, as the one on a socket does. It leaves
/// the message as it is, so that the envelope says success.
class StatusChannel final : public TarnFirewall::CTarnFWIOChannel {
 public:
  StatusChannel(TarnFirewall::FWStatus_t status, int& sends) : status_(status), sends_(sends) {}

  TarnFirewall::FWStatus_t sendIOCTL(TarnFirewall::dvs_port_*, void*, unsigned int,
                                     void*) override {
    ++sends_;
    return status_;
  }

 private:
  TarnFirewall::FWStatus_t status_;
  int& sends_;
};
