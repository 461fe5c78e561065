// The flows that a host is made with.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "FlowBench.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

using LabFlowMaker = FlowBench;

TEST_F(LabFlowMaker, EveryFormOccursOnTheFirstFilter) {
  std::set<std::pair<unsigned, unsigned>> kindsAndProtocols, algs;
  std::set<std::tuple<unsigned, unsigned, bool>> translations;
  std::set<unsigned> directions, flags, states[2], types, keys;
  for (const ByteVector& record : allFlows()) {
    const bool six = familyOf(record) != 2;
    const std::size_t size = six ? 16 : 4;
    kindsAndProtocols.insert({kindOf(record), protocolOf(record)});
    directions.insert(get8(record, 141));
    if (kindOf(record) < 3) flags.insert(get8(record, 144));
    if (kindOf(record) < 4) {
      translations.insert({protocolOf(record), familyOf(record),
                           !isZero(part(ConstBytes(record), 145 + 2 * size, size))});
    }
    if (protocolOf(record) == 6) {
      states[0].insert(get16(record, six ? 233 : 181));
      states[1].insert(get16(record, six ? 235 : 183));
      algs.insert({get8(record, six ? 217 : 165), get8(record, six ? 218 : 166)});
    }
    for (std::size_t at = 251; at < record.size(); at += get32(record, at + 4)) {
      keys.insert(get16(record, at));
      types.insert(get16(record, at + 2));
    }
  }
  for (const unsigned protocol : {0u, 1u, 6u, 17u, 41u, 47u, 50u, 58u, 200u, 201u}) {
    for (const unsigned kind : {1u, 2u, 3u}) {
      EXPECT_EQ(kindsAndProtocols.count({kind, protocol}), 1u) << kind << " " << protocol;
    }
    const unsigned family =
        protocol == 41 || protocol == 50 || protocol == 58 || protocol == 201 ? 28 : 2;
    for (const bool translated : {false, true}) {
      EXPECT_EQ(translations.count({protocol, family, translated}), 1u) << protocol;
    }
  }
  for (const unsigned protocol : {6u, 17u}) {
    EXPECT_EQ(translations.count({protocol, 28, true}), 1u);
    EXPECT_EQ(translations.count({protocol, 28, false}), 1u);
  }
  for (const unsigned kind : {4u, 5u, 6u})
    EXPECT_EQ(kindsAndProtocols.count({kind, kind / 6 * 6}), 1u);
  EXPECT_EQ(directions, (std::set<unsigned>{0, 1, 2}));
  EXPECT_EQ(flags, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(states[0], (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}));
  EXPECT_EQ(states[1], (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13}));
  for (const unsigned type : {0u, 1u, 2u, 3u, 4u, 5u, 7u}) {
    EXPECT_EQ(algs.count({type, 1}), 1u) << type;
    EXPECT_EQ(algs.count({type, 2}), 1u) << type;
  }
  EXPECT_EQ(algs.count({6, 3}), 1u);
  EXPECT_EQ(types, (std::set<unsigned>{0, 1, 2, 3, 4, 7}));
  EXPECT_EQ(keys, (std::set<unsigned>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST_F(LabFlowMaker, WhatFlowsSayAgrees) {
  std::map<std::uint64_t, ByteVector> byId;
  for (const ByteVector& record : allFlows()) {
    EXPECT_TRUE(byId.emplace(idOf(record), record).second);
    EXPECT_LT(get32(record, 79), get32(record, 83)) << "it ends after it began";
    EXPECT_NE(part(record, 93, 6).front(), part(record, 99, 6).front()) << "two MAC addresses";
  }
  unsigned data = 0;
  for (const auto& [id, record] : byId) {
    const bool six = familyOf(record) == 28;
    const std::size_t alg = six ? 209 : 157;
    if ((protocolOf(record) != 6 && protocolOf(record) != 17) || familyOf(record) == 7 ||
        get8(record, alg + 9) != 2) {
      continue;
    }
    ++data;
    const auto control = byId.find(net64(record, alg));
    ASSERT_NE(control, byId.end()) << "a data flow has a control flow";
    const ByteVector& its = control->second;
    EXPECT_EQ(get8(its, alg + 9), 1u);
    EXPECT_EQ(get8(its, alg + 8), get8(record, alg + 8));
    EXPECT_EQ(ByteVector(its.begin() + 145, its.begin() + (six ? 177 : 153)),
              ByteVector(record.begin() + 145, record.begin() + (six ? 177 : 153)));
    EXPECT_EQ(getNet16(its, alg + 10), getNet16(record, alg + 18)) << "it led to this port";
    EXPECT_EQ(getNet16(record, alg + 10), getNet16(its, alg + 18));
    EXPECT_LT(get32(its, 79), get32(record, 79));
  }
  EXPECT_GE(data, 36u);
}

TEST_F(LabFlowMaker, TheSameHostHasTheSameFlows) {
  const auto before = allFlows();
  ASSERT_EQ(read(counts(), {.flush = 1}), 0);
  {
    const StoreLock lock(store);
    fillHost(store, Host::load(store));
  }
  EXPECT_EQ(allFlows(), before);
  EXPECT_NE(allFlows(other), before);
}

TEST_F(LabFlowMaker, AHostIsMadeWithAnyNumberOfThem) {
  {
    const StoreLock lock(store);
    Host host = Host::sample();
    host.setFlows(100000);
    host.save(store);
    fillHost(store, Host::load(store));
  }
  const ByteVector counted = counts(noTraffic);
  EXPECT_EQ(amounts(counted, 0).records + amounts(counted, 1).records + amounts(counted, 2).records,
            100000u);
  EXPECT_EQ(page(0, 64, noTraffic).size(), 64u);
}

TEST_F(LabFlowMaker, FlowsNameRulesOfTheFilterThatDecideThem) {
  const ByteVector accepting = ruleRecord(71);
  const ByteVector dropping = Record().bytes(ruleRecord(72, 2));
  const ByteVector rejecting = Record().bytes(ruleRecord(73, 3));
  const ByteVector onLayer2 = Record().bytes(ruleRecord(74)).set(790, 0);
  const ByteVector jump = Record().bytes(ruleRecord(75, 4));
  for (const ByteVector& record : allFlows()) EXPECT_EQ(get32(record, 137), 4095u);
  ASSERT_EQ(createRuleSet("web", {accepting, dropping, rejecting, onLayer2}), 0u) << note();
  std::map<unsigned, std::set<unsigned>> rules;
  for (const ByteVector& record : allFlows()) rules[kindOf(record)].insert(get32(record, 137));
  EXPECT_EQ(rules[1], (std::set<unsigned>{71}));
  EXPECT_EQ(rules[2], (std::set<unsigned>{71}));
  EXPECT_EQ(rules[3], (std::set<unsigned>{72, 73}));
  EXPECT_EQ(rules[4], (std::set<unsigned>{74}));
  EXPECT_EQ(rules[5], (std::set<unsigned>{4095})) << "no rule drops on layer 2";
  EXPECT_EQ(get32(page(0, 1)[0], 137), 71u);
  for (const ByteVector& record : allFlows(other)) EXPECT_EQ(get32(record, 137), 4095u);
}

}  // namespace
}  // namespace TarnLab
