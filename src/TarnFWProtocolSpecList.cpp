#include "TarnFWProtocolSpecList.h"

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
  // Raised with the kind and not with the object type, unlike in addSpec: scripts match both texts.
  if (held != FW_SPEC_NONE && !(sameKindFits && held == kind))
    throw CDuplicateProtocolSpecException(static_cast<int>(kind));
  header = spec.header();
  spec.toMessage(body.data(), static_cast<unsigned int>(body.size()), nullptr);
  TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "    wrote protocol spec: %s\n", kTraceWords[kind]);
}

}  // namespace

void CTarnFWProtocolSpecList::appendTo(std::string& text) const {
  if (!first_) return;
  if (!first_->next_) {
    first_->appendTo(text);
    return;
  }
  const char* separator = "with {";
  forEach([&](const CTarnFWProtocolSpec& spec) {
    text += separator;
    spec.appendTo(text);
    separator = ", ";
  });
  text += '}';
}

void CTarnFWProtocolSpecList::setDir(unsigned char dir) {
  CTarnFWProtocolSpec::setDir(dir);
  forEach([dir](CTarnFWProtocolSpec& spec) { spec.setDir(dir); });
}

void CTarnFWProtocolSpecList::claimKind(const CTarnFWProtocolSpec& spec) {
  const std::uint32_t bit = std::uint32_t{1} << (spec.getType() - kFirstType);
  if ((kinds_ & bit) != 0) throw CDuplicateProtocolSpecException(spec.getType());
  kinds_ |= bit;
}

std::unique_ptr<CTarnFWProtocolSpec>& CTarnFWProtocolSpecList::end() {
  auto* place = &first_;
  while (*place) place = &(*place)->next_;
  return *place;
}

void CTarnFWProtocolSpecList::addSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  claimKind(*spec);
  end() = std::move(spec);
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecList::deleteSpec(
    FWProtocolSpecType_t kind) {
  auto* place = &first_;
  while (*place && (*place)->getSpecType() != kind) place = &(*place)->next_;
  if (!*place) return nullptr;
  TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "Remove protocol spec %d\n\n", static_cast<int>(kind));
  std::unique_ptr<CTarnFWProtocolSpec> spec = std::move(*place);
  *place = std::move(spec->next_);
  return spec;
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecList::takeFirst() {
  std::unique_ptr<CTarnFWProtocolSpec> spec = std::move(first_);
  if (spec) first_ = std::move(spec->next_);
  return spec;
}

unsigned int CTarnFWProtocolSpecList::getSpecCount(FWProtocolSpecType_t kind) const {
  unsigned int count = 0;
  forEach([&](const CTarnFWProtocolSpec& spec) {
    if (kind == FW_SPEC_NONE || spec.getSpecType() == kind) ++count;
  });
  return count;
}

std::uint32_t CTarnFWProtocolSpecList::kindsOfMembers() const {
  std::uint32_t kinds = 0;
  forEach([&](const CTarnFWProtocolSpec& spec) { kinds |= 1u << spec.getSpecType(); });
  return kinds;
}

void CTarnFWProtocolSpecList::mergeSpecList(CTarnFWProtocolSpecList& other) {
  while (other.first_) {
    claimKind(*other.first_);
    end() = other.takeFirst();
  }
}

void CTarnFWProtocolSpecList::writePorts(FWPortBlock_& block) const {
  forEach([&](CTarnFWProtocolSpec& spec) {
    switch (spec.getSpecType()) {
      case FW_SPEC_L4_PORT:
      case FW_SPEC_L4_PORT_RANGE:
      case FW_SPEC_L4_PORT_SET:
        writeSpec(spec, block.header, block.body, false);
        break;
      default:
        break;
    }
  });
}

void CTarnFWProtocolSpecList::writeSession(FWSessionBlock_& block) const {
  forEach([&](CTarnFWProtocolSpec& spec) {
    const FWProtocolSpecType_t kind = spec.getSpecType();
    switch (kind) {
      case FW_SPEC_TCP_FLAGS:
      case FW_SPEC_ICMP_TYPE:
        writeSpec(spec, block.flagsHeader, block.flagsBody, true);
        break;
      case FW_SPEC_TCP_OPTIONS:
        writeSpec(spec, block.optionsHeader, block.options, true);
        break;
      case FW_SPEC_STATELESS:
      case FW_SPEC_DSCP:
      case FW_SPEC_STRICT:
      case FW_SPEC_SLOPPY:
        spec.toMessage(&block, sizeof block, nullptr);
        TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "    wrote protocol spec: %s\n", kTraceWords[kind]);
        break;
      default:
        break;
    }
  });
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
