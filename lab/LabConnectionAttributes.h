// What is known about a connection besides its flow: attributes of layer 7.
#ifndef TARNLAB_CONNECTION_ATTRIBUTES_H
#define TARNLAB_CONNECTION_ATTRIBUTES_H

#include "LabFlowRecord.h"
#include "LabTable.h"

namespace TarnLab {

/// Whether a connection's description of 40 bytes is that of a flow. What it leaves open, every
/// flow has.
bool describes(ConstBytes connection, ConstBytes flow);

/// The attributes of the flows of a filter: those that the kernel learned, and those that the flow
/// was given by its id or its description.
class ConnectionAttributes {
 public:
  ConnectionAttributes(const Store& store, const std::string& folder);

  /// Appends all of them to a buffer that ends with the flow's record, as many as its length and
  /// its count allow. What it learned it is not given again.
  FlowAttributes::Size append(ByteVector& buffer, ConstBytes flow) const;

 private:
  Table::Records given_;
};

}  // namespace TarnLab

#endif
