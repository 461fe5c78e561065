#pragma once

/// Actions of layer-7 attributes, and of the statements that have some.

#include <vector>

#include "TarnFWAddressList.h"
#include "TarnFWCmd.h"
#include "TarnFWConnectionRecord.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// An identifier with a name, which may be empty.
struct FWNamedUuid {
  FWParserText name;
  CTarnFWL7Attribute::Uuid uuid;
};

using FWTexts = std::vector<FWParserText>;
using FWNumbers = std::vector<std::int64_t>;
using FWNamedUuids = std::vector<FWNamedUuid>;
using FWL7Attributes = std::vector<std::unique_ptr<CTarnFWL7Attribute>>;

/// The identifier in normal form with its name; throws `CParseFailure` for another text.
FWNamedUuid* namedUuid(const FWParse& parse, const FWParserText& name, const FWParserText& uuid);

/// The list with one value more; null begins a list.
template <typename Value>
std::unique_ptr<std::vector<Value>> withValue(std::unique_ptr<std::vector<Value>> list,
                                              const Value& value) {
  if (list == nullptr) list = std::make_unique<std::vector<Value>>();
  list->push_back(value);
  return list;
}

/// One attribute for each value. Throws `CParseFailure` for a name that is no key and
/// `CInvalidAttrValue` for a value that the key does not take.
std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWTexts> values);
std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWNumbers> values);
std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWNamedUuids> values);

/// The first list with what the second one holds at its end.
std::unique_ptr<FWL7Attributes> joined(std::unique_ptr<FWL7Attributes> first,
                                       std::unique_ptr<FWL7Attributes> second);

std::unique_ptr<CTarnFWCmd> createAttrProfile(const dvs_port_* port, const FWParserText& name,
                                              std::unique_ptr<FWL7Attributes> attributes);

/// The domain is an attribute of the key FQDN.
std::unique_ptr<CTarnFWCmd> addDomainAddresses(const dvs_port_* port, const FWNamedUuid& domain,
                                               std::unique_ptr<CTarnFWAddressList> addresses);

/// Throws `CParseFailure` for a text that is no security identifier.
std::unique_ptr<CTarnFWCmd> setUserMap(const dvs_port_* port, const FWParserText& user,
                                       std::unique_ptr<FWTexts> sids);

/// For the connection, or without one (null) for the state id, which is 64 bits. With neither (0)
/// the parse ends silently.
std::unique_ptr<CTarnFWCmd> setConnectionAttributes(const dvs_port_* port,
                                                    const FWConnection_* connection,
                                                    std::int64_t state,
                                                    std::unique_ptr<FWL7Attributes> attributes);

}  // namespace TarnFirewall
