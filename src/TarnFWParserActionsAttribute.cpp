#define TARNFW_SOURCE "tarnfw_parser.y"

#include "TarnFWParserActionsAttribute.h"

#include <iterator>

#include "TarnFWAttributeUtils.h"
#include "TarnFWCmdAddDomain2IPMapping.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWCmdSetConnAttr.h"
#include "TarnFWCmdSetUid2SidMapping.h"
#include "TarnFWLog.h"
#include "TarnFWSid.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

namespace {

/// The time for which an address belongs to a domain, as the interface wants one. It is not sent.
constexpr unsigned int kDomainTimeToLive = 100;

FWAttrKeyID keyOf(const FWParserText& name) {
  const _FWAttrKey* const key = str2attrkey(asString(name));
  if (key == nullptr) throw CParseFailure("invalid key " + asString(name));
  return key->keyId;
}

CTarnFWL7Attribute attributeOf(FWAttrKeyID key, const FWParserText& text) {
  return {key, asString(text)};
}

/// A number of all its 64 bits: cut to fewer, one that names nothing could name something.
CTarnFWL7Attribute attributeOf(FWAttrKeyID key, std::int64_t number) {
  return {key, static_cast<long>(number)};
}

CTarnFWL7Attribute attributeOf(FWAttrKeyID key, const FWNamedUuid& value) {
  return {key, value.uuid, asString(value.name)};
}

template <typename Value>
std::unique_ptr<FWL7Attributes> attributesOf(const FWParserText& name,
                                             const std::vector<Value>& values) {
  const FWAttrKeyID key = keyOf(name);
  auto attributes = std::make_unique<FWL7Attributes>();
  for (const Value& value : values) {
    attributes->push_back(std::make_unique<CTarnFWL7Attribute>(attributeOf(key, value)));
  }
  return attributes;
}

}  // namespace

FWNamedUuid* namedUuid(const FWParse& parse, const FWParserText& name, const FWParserText& uuid) {
  FWNamedUuid value = {name, {}};
  if (!normalstr2uuid(value.uuid.data(), uuid.data)) {
    throw CParseFailure("invalid uuid value " + asString(uuid));
  }
  return parse.keep(value);
}

std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWTexts> values) {
  return attributesOf(key, *values);
}

std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWNumbers> values) {
  return attributesOf(key, *values);
}

std::unique_ptr<FWL7Attributes> l7Attributes(const FWParserText& key,
                                             std::unique_ptr<FWNamedUuids> values) {
  return attributesOf(key, *values);
}

std::unique_ptr<FWL7Attributes> joined(std::unique_ptr<FWL7Attributes> first,
                                       std::unique_ptr<FWL7Attributes> second) {
  first->insert(first->end(), std::make_move_iterator(second->begin()),
                std::make_move_iterator(second->end()));
  return first;
}

std::unique_ptr<CTarnFWCmd> createAttrProfile(const dvs_port_* port, const FWParserText& name,
                                              std::unique_ptr<FWL7Attributes> attributes) {
  auto command =
      std::make_unique<CTarnFWCmdCreateContainer>(port, asString(name), FW_CONTAINER_ATTR_PROFILE);
  for (auto& attribute : *attributes) {
    TARNFW_TRACE(FW_COMPONENT_PARSER, 0, "adding element\n");
    command->addElement(std::move(attribute));
  }
  return command;
}

std::unique_ptr<CTarnFWCmd> addDomainAddresses(const dvs_port_* port, const FWNamedUuid& domain,
                                               std::unique_ptr<CTarnFWAddressList> addresses) {
  auto command = std::make_unique<CTarnFWCmdAddDomain2IPMapping>(
      port, std::make_unique<CTarnFWL7Attribute>(attributeOf(FW_ATTR_KEY_FQDN, domain)));
  for (auto& address : addresses->takeAddresses()) {
    command->addAddress(std::move(address), kDomainTimeToLive);
  }
  return command;
}

std::unique_ptr<CTarnFWCmd> setUserMap(const dvs_port_* port, const FWParserText& user,
                                       std::unique_ptr<FWTexts> sids) {
  fwattr_sid uid;
  if (!sid_str2bin(user.data, &uid)) throw CParseFailure("invalid uid");
  auto command = std::make_unique<CTarnFWCmdSetUid2SidMapping>(port, FW_UID2SID_ADD, uid);
  for (const FWParserText& text : *sids) {
    fwattr_sid sid;
    // Readers of the log match the message with its own line end.
    if (!sid_str2bin(text.data, &sid)) {
      throw CParseFailure(formatText("invalid sid : %s\n", text.data));
    }
    command->addSid(&sid, 1);
  }
  return command;
}

std::unique_ptr<CTarnFWCmd> setConnectionAttributes(const dvs_port_* port,
                                                    const FWConnection_* connection,
                                                    std::int64_t state,
                                                    std::unique_ptr<FWL7Attributes> attributes) {
  if (connection == nullptr && state == 0) throw SilentParseFailure();
  auto command = connection != nullptr
                     ? std::make_unique<CTarnFWCmdSetConnAttr>(port, *connection, FW_ATTR_OP_SET)
                     : std::make_unique<CTarnFWCmdSetConnAttr>(
                           port, htonll(static_cast<std::uint64_t>(state)), FW_ATTR_OP_SET);
  for (auto& attribute : *attributes) command->addAttribute(std::move(attribute));
  return command;
}

}  // namespace TarnFirewall
