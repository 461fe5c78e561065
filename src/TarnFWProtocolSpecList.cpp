#include "TarnFWProtocolSpecList.h"

#include <iterator>
#include <span>

#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

/// Names of the kinds in traces.
constexpr const char* kTraceWords[] = {"",          "l4port",      "l4port range", "l4port set",
                                       "tcp flags", "tcp options", "icmp type",    "stateless",
                                       "dscp",      "strict",      "sloppy"};

/// A line for each protocol spec that is written. It names the list's `toMessage` as its function,
/// whatever writes it.
void traceWritten(FWProtocolSpecType_t kind) {
  TARNFW_TRACE_IN("toMessage", LOG_DEBUG, FW_COMPONENT_PROTOCOL, 0, "    wrote protocol spec: %s\n",
                  kTraceWords[kind]);
}

/// Writes a spec's header and body into a place that has none, or one of its own kind when
/// `sameKindFits`.
void writeSpec(CTarnFWProtocolSpec& spec, FWSpecHeader_& header, std::span<std::uint8_t> body,
               bool sameKindFits, bool traced) {
  const unsigned int held = header.kind();
  const FWProtocolSpecType_t kind = spec.getSpecType();
  // Raised with the kind and not with the object type, unlike in addSpec: scripts match both texts.
  if (held != FW_SPEC_NONE && !(sameKindFits && held == kind))
    throw CDuplicateProtocolSpecException(static_cast<int>(kind));
  header = spec.header();
  spec.toMessage(body.data(), static_cast<unsigned int>(body.size()), nullptr);
  if (traced) traceWritten(kind);
}

}  // namespace

void CTarnFWProtocolSpecList::appendTo(CTarnFWText& text) const {
  if (!first_) return;
  if (rest_.empty()) {
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

void CTarnFWProtocolSpecList::refuseSecondOfAKind(const CTarnFWProtocolSpec& spec) const {
  if (((kinds_.held | kinds_.taken) & kindOf(spec)) != 0)
    throw CDuplicateProtocolSpecException(spec.getType());
}

void CTarnFWProtocolSpecList::append(Member spec) {
  const std::uint16_t kind = kindOf(*spec);
  if (!first_) {
    first_ = std::move(spec);
  } else {
    auto last = rest_.before_begin();
    while (std::next(last) != rest_.end()) ++last;
    rest_.insert_after(last, std::move(spec));
  }
  kinds_.held |= kind;
}

void CTarnFWProtocolSpecList::addSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
  refuseSecondOfAKind(*spec);
  append(std::move(spec));
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecList::deleteSpec(
    FWProtocolSpecType_t kind) {
  Member spec;
  if (first_ && first_->getSpecType() == kind) {
    spec = takeFirst();
  } else {
    auto before = rest_.before_begin();
    while (std::next(before) != rest_.end() && (*std::next(before))->getSpecType() != kind)
      ++before;
    if (std::next(before) == rest_.end()) return nullptr;
    spec = std::move(*std::next(before));
    rest_.erase_after(before);
    markTaken(*spec);
  }
  TARNFW_TRACE(FW_COMPONENT_PROTOCOL, 0, "Remove protocol spec %d\n\n", static_cast<int>(kind));
  return spec;
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecList::takeFirst() {
  Member spec = std::move(first_);
  if (!rest_.empty()) {
    first_ = std::move(rest_.front());
    rest_.pop_front();
  }
  if (spec) markTaken(*spec);
  return spec;
}

void CTarnFWProtocolSpecList::markTaken(const CTarnFWProtocolSpec& spec) {
  kinds_.held = static_cast<std::uint16_t>(kinds_.held & ~kindOf(spec));
  kinds_.taken |= kindOf(spec);
}

unsigned int CTarnFWProtocolSpecList::getSpecCount(FWProtocolSpecType_t kind) const {
  unsigned int count = 0;
  forEach([&](const CTarnFWProtocolSpec& spec) {
    if (kind == FW_SPEC_NONE || spec.getSpecType() == kind) ++count;
  });
  return count;
}

void CTarnFWProtocolSpecList::mergeSpecList(CTarnFWProtocolSpecList& other) {
  while (other.first_) {
    refuseSecondOfAKind(*other.first_);
    append(other.takeFirst());
  }
}

void CTarnFWProtocolSpecList::writePorts(FWPortBlock_& block, bool traced) const {
  forEach([&](CTarnFWProtocolSpec& spec) {
    switch (spec.getSpecType()) {
      case FW_SPEC_L4_PORT:
      case FW_SPEC_L4_PORT_RANGE:
      case FW_SPEC_L4_PORT_SET:
        writeSpec(spec, block.header, block.body, false, traced);
        break;
      default:
        break;
    }
  });
}

void CTarnFWProtocolSpecList::writeSession(FWSessionBlock_& block, bool traced) const {
  forEach([&](CTarnFWProtocolSpec& spec) {
    const FWProtocolSpecType_t kind = spec.getSpecType();
    switch (kind) {
      case FW_SPEC_TCP_FLAGS:
      case FW_SPEC_ICMP_TYPE:
        writeSpec(spec, block.flagsHeader, block.flagsBody, true, traced);
        break;
      case FW_SPEC_TCP_OPTIONS:
        writeSpec(spec, block.optionsHeader, block.options, true, traced);
        break;
      case FW_SPEC_STATELESS:
      case FW_SPEC_DSCP:
      case FW_SPEC_STRICT:
      case FW_SPEC_SLOPPY:
        spec.toMessage(&block, sizeof block, nullptr);
        if (traced) traceWritten(kind);
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
    writePorts(block, true);
    return writeBody(block, buffer, size, written);
  }
  FWSessionBlock_ block{};
  writeSession(block, true);
  return writeBody(block, buffer, size, written);
}

}  // namespace TarnFirewall
