#include "TarnFWProtocolSpecList.h"

#include <algorithm>
#include <span>

#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

/// Names of the kinds in traces.
constexpr const char* kTraceWords[] = {"",          "l4port",      "l4port range", "l4port set",
                                       "tcp flags", "tcp options", "icmp type",    "stateless",
                                       "dscp",      "strict",      "sloppy"};

/// Writes a spec's header and body into a place that has none, or one of its own kind when
/// `sameKindFits`.
void writeSpec(CTarnFWProtocolSpec& spec, FWSpecHeader_& header, std::span<std::uint8_t> body,
               bool sameKindFits) {
  const unsigned int held = header.kind();
  const FWProtocolSpecType_t kind = spec.getSpecType();
  // Raised with the kind and not with the object type, unlike in addSpec: this is meant.
  if (held != FW_SPEC_NONE && !(sameKindFits && held == kind))
    throw CDuplicateProtocolSpecException(static_cast<int>(kind));
  header = spec.header();
  spec.toMessage(body.data(), static_cast<unsigned int>(body.size()), nullptr);
  TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "    wrote protocol spec: %s\n", kTraceWords[kind]);
}

}  // namespace

void CTarnFWProtocolSpecList::appendTo(std::string& text) const {
  const bool several = specs_.size() > 1;
  if (several) text += "with {";
  const char* separator = "";
  for (const auto& spec : specs_) {
    text += separator;
    spec->appendTo(text);
    separator = ", ";
  }
  if (several) text += '}';
}

void CTarnFWProtocolSpecList::setDir(unsigned char dir) {
  CTarnFWProtocolSpec::setDir(dir);
  for (const auto& spec : specs_) spec->setDir(dir);
}

void CTarnFWProtocolSpecList::claimKind(const CTarnFWProtocolSpec& spec) {
  const std::uint64_t bit = std::uint64_t{1} << (spec.getType() - kFirstType);
  if ((kinds_ & bit) != 0) throw CDuplicateProtocolSpecException(spec.getType());
  kinds_ |= bit;
}

void CTarnFWProtocolSpecList::addSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  claimKind(*spec);
  specs_.push_back(std::move(spec));
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecList::deleteSpec(
    FWProtocolSpecType_t kind) {
  const auto place = std::find_if(specs_.begin(), specs_.end(),
                                  [kind](const auto& spec) { return spec->getSpecType() == kind; });
  if (place == specs_.end()) return nullptr;
  TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "Remove protocol spec %d\n\n", static_cast<int>(kind));
  std::unique_ptr<CTarnFWProtocolSpec> spec = std::move(*place);
  specs_.erase(place);
  return spec;
}

unsigned int CTarnFWProtocolSpecList::getSpecCount(FWProtocolSpecType_t kind) const {
  if (kind == FW_SPEC_NONE) return static_cast<unsigned int>(specs_.size());
  return static_cast<unsigned int>(
      std::count_if(specs_.begin(), specs_.end(),
                    [kind](const auto& spec) { return spec->getSpecType() == kind; }));
}

void CTarnFWProtocolSpecList::mergeSpecList(CTarnFWProtocolSpecList& other) {
  auto& from = other.specs_;
  while (!from.empty()) {
    claimKind(*from.front());
    specs_.push_back(std::move(from.front()));
    from.erase(from.begin());
  }
}

void CTarnFWProtocolSpecList::writePorts(FWPortBlock_& block) const {
  for (const auto& spec : specs_) {
    switch (spec->getSpecType()) {
      case FW_SPEC_L4_PORT:
      case FW_SPEC_L4_PORT_RANGE:
      case FW_SPEC_L4_PORT_SET:
        writeSpec(*spec, block.header, block.body, false);
        break;
      default:
        break;
    }
  }
}

void CTarnFWProtocolSpecList::writeSession(FWSessionBlock_& block) const {
  for (const auto& spec : specs_) {
    const FWProtocolSpecType_t kind = spec->getSpecType();
    switch (kind) {
      case FW_SPEC_TCP_FLAGS:
      case FW_SPEC_ICMP_TYPE:
        writeSpec(*spec, block.flagsHeader, block.flagsBody, true);
        break;
      case FW_SPEC_TCP_OPTIONS:
        writeSpec(*spec, block.optionsHeader, block.options, true);
        break;
      case FW_SPEC_STATELESS:
      case FW_SPEC_DSCP:
      case FW_SPEC_STRICT:
      case FW_SPEC_SLOPPY:
        spec->toMessage(&block, sizeof block, nullptr);
        TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "    wrote protocol spec: %s\n", kTraceWords[kind]);
        break;
      default:
        break;
    }
  }
}

bool CTarnFWProtocolSpecList::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (size < getMsgSize()) return false;
  if (portMode_) {
    FWPortBlock_ block{};
    writePorts(block);
    return writeBody(block, buffer, size, written);
  }
  FWSessionBlock_ block{};
  writeSession(block);
  return writeBody(block, buffer, size, written);
}

}  // namespace TarnFirewall
