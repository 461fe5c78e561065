#include "TarnFWIOChannelGeneric.h"

#include <cerrno>

#include "TarnFWException.h"
#include "TarnFWStatus.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

const FWLibGenericIO_& checked(const FWLibGenericIO_* table) {
  if (table == nullptr) throw CUnsupportedException("invalid generic io ops");
  if (table->request == nullptr) {
    throw CUnsupportedException("invalid generic io request function");
  }
  if (table->init == nullptr) throw CUnsupportedException("invalid generic io init function");
  if (table->exit == nullptr) throw CUnsupportedException("invalid generic io exit function");
  return *table;
}

}  // namespace

CTarnFWIOChannelGeneric::CTarnFWIOChannelGeneric(const FWLibGenericIO_* table, void* initArgument,
                                                 void** context)
    : table_(checked(table)) {
  if (table_.init(initArgument, &context_) != FW_STATUS_OK) {
    throw CUnsupportedException("failed to initialize generic io channel");
  }
  if (context != nullptr) *context = context_;
}

CTarnFWIOChannelGeneric::~CTarnFWIOChannelGeneric() { table_.exit(context_); }

FWStatus_t CTarnFWIOChannelGeneric::sendIOCTL(dvs_port_*, void* message, unsigned int size,
                                              void* context) {
  const FWStatus_t status = table_.request(context_, message, size, context);
  if (status != FW_STATUS_OK) {
    const int error = errno;
    throw CIoctlException(
        formatText("failed to write message to generic io: %s", statusText(status)), error);
  }
  return FW_STATUS_OK;
}

}  // namespace TarnFirewall
