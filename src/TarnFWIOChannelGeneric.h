#pragma once

/// A channel on functions of the caller, so that an in-process model of the kernel can answer.

#include "TarnFWIOChannel.h"

namespace TarnFirewall {

/// The table is copied; what its init gave back comes with every call. The selector is not passed
/// on.
class CTarnFWIOChannelGeneric final : public CTarnFWIOChannel {
 public:
  /// Calls init and stores the context through `context` unless that is null. Throws
  /// `CUnsupportedException` for a null or incomplete table and when init fails; exit is not called
  /// then.
  CTarnFWIOChannelGeneric(const FWLibGenericIO_* table, void* initArgument, void** context);
  ~CTarnFWIOChannelGeneric() override;

  /// Throws `CIoctlException` when request gives another status than 0.
  FWStatus_t sendIOCTL(dvs_port_* port, void* message, unsigned int size, void* context) override;

 private:
  FWLibGenericIO_ table_;
  void* context_ = nullptr;
};

}  // namespace TarnFirewall
