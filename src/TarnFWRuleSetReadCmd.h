#pragma once

/// What the commands that read from a rule set by index or by id have in common.

#include <memory>

#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWFixedCmd.h"
#include "TarnFWIDList.h"

namespace TarnFirewall {

/// Which rules are meant: `max` rules of a kind from an index on, or those of an id list.
class CTarnFWRuleSelection {
 public:
  CTarnFWRuleSelection(unsigned int max, unsigned int from, unsigned int kind);

  /// Throws `CUnsupportedException` for a kind above 3; the list is never null.
  CTarnFWRuleSelection(std::unique_ptr<CTarnFWIDList> ids, unsigned int kind);
  CTarnFWRuleSelection(unsigned int count, const unsigned int* ids, unsigned int kind);

  /// Rules that are asked for.
  unsigned int number() const { return number_; }

  /// Writes the fields from offset 64 on, and the ids at `idArea`.
  void store(std::span<std::byte> body, std::size_t idArea) const;

  /// "describe KIND WHAT of ruleset NAME from N" and so on.
  std::string statement(const char* what, const std::string& name,
                        const std::string& selector) const;

 private:
  std::unique_ptr<CTarnFWIDList> ids_;
  unsigned int number_;
  unsigned int from_ = 0;
  unsigned int kind_;
};

/// Body:  +0  64 bytes  name of the rule set
///       +64  u32       rules asked for, or ids in the list
///       +68  u32       index of the first rule, without an id list
///       +72  u16       bit 0: by index, without an id list
///       +74  low two bits  kind
///       +76  u32       records returned, reply
///     +Head  u32 each  ids of the list, nothing by index; the reply's records begin after as many
///                      ids as the kernel says at +64
/// A size that needs more than 32 bits throws
/// `CIntegerOverflowException`.
template <std::uint16_t Number, unsigned int Head, typename Record>
class CTarnFWRuleSetReadCmd
    : public CTarnFWPrinted<CTarnFWNamed<CTarnFWSizedCmd<Number>, FWRuleSetID_t>> {
  using Named = CTarnFWNamed<CTarnFWSizedCmd<Number>, FWRuleSetID_t>;

 public:
  CTarnFWRuleSetReadCmd(const dvs_port_* port, const FWRuleSetID_t& id, unsigned int max,
                        unsigned int from, unsigned int kind)
      : CTarnFWRuleSetReadCmd(port, id, CTarnFWRuleSelection(max, from, kind)) {}
  CTarnFWRuleSetReadCmd(const dvs_port_* port, const FWRuleSetID_t& id,
                        std::unique_ptr<CTarnFWIDList> ids, unsigned int kind)
      : CTarnFWRuleSetReadCmd(port, id, CTarnFWRuleSelection(std::move(ids), kind)) {}
  CTarnFWRuleSetReadCmd(const dvs_port_* port, const FWRuleSetID_t& id, unsigned int count,
                        const unsigned int* ids, unsigned int kind)
      : CTarnFWRuleSetReadCmd(port, id, CTarnFWRuleSelection(count, ids, kind)) {}

  CTarnFWReplyRecords<Record> records(const CTarnFWCmdReply& reply) const {
    const std::size_t first = Head + sizeof(host32) * std::size_t{reply.word(64)};
    return reply.records<Record>(first, reply.word(76), selection_.number());
  }

 protected:
  std::string readStatement(const char* what) const {
    return selection_.statement(what, this->name(), this->dvsportToString("of"));
  }

  /// The ids in front of the records, as many as the kernel counts records.
  CTarnFWReplyRecords<host32> ids(const CTarnFWCmdReply& reply) const {
    return reply.records<host32>(Head, reply.word(76), selection_.number());
  }

 private:
  CTarnFWRuleSetReadCmd(const dvs_port_* port, const FWRuleSetID_t& id,
                        CTarnFWRuleSelection&& selection)
      : CTarnFWRuleSetReadCmd::CTarnFWPrinted(
            port, id,
            countedSize(Head, sizeof(host32) + sizeof(Record), selection.number(),
                        "integer overflow for the number of rule id")),
        selection_(std::move(selection)) {}

  void fill(std::span<std::byte> body) const final {
    Named::fill(body);
    selection_.store(body, Head);
  }

  CTarnFWRuleSelection selection_;
};

}  // namespace TarnFirewall
