#include "TarnFWParserActionsAttribute.h"

#include <iterator>

#include "TarnFWAttributeUtils.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWLog.h"
#include "TarnFWUtilIdentifier.h"

namespace TarnFirewall {

namespace {

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

}  // namespace TarnFirewall
