// How a filter is shown.
#include <gtest/gtest.h>

#include <string>

#include "FilterRecords.h"
#include "RunCommand.h"

using namespace FilterRecords;

TEST(PrintFilter, ShowsWhatTheRecordHolds) { EXPECT_EQ(printed(webFilter()), kWebText); }

TEST(PrintFilter, ShowsIdsAndProfileWhenThereAreAny) {
  EXPECT_EQ(printed(webFilter().vif("vif-1").lsp("lsp-9").profile("silver").ruleConfig(0)),
            "\n"
            "Filter Name              : nic-1002672-eth0-kelpco-sfw.2\n"
            "VM UUID                  : 50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff\n"
            "VNIC Index               : 1\n"
            "VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.001\n"
            "VIF ID                   : vif-1\n"
            "LSP ID                   : lsp-9\n"
            "Service Profile          : silver\n"
            "Filter Rule Config       : none\n"
            "Filter Hash              : 40961\n");
}

TEST(PrintFilter, SaysThatAVmUuidThatDoesNotScanIsBad) {
  EXPECT_EQ(printed(Record().name("x").vmUuid("50 19 4b")),
            "\n"
            "Filter Name              : x\n"
            "VM UUID                  : 50 19 4b\n"
            "VNIC Index               : 0\n"
            "VNIC UUID                : bad vnic uuid\n"
            "Filter Rule Config       : none\n"
            "Filter Hash              : 0\n");
}

TEST(PrintFilter, FlowKindsAreOffWhenTheirBitIsSetAndTheOverrideIsOn) {
  EXPECT_EQ(printed(webFilter().flowFlags(0x55)), std::string(kWebText) +
                                                      "Flow Collection Flags   \n"
                                                      "   L2 Pass Flows         : Off   \n"
                                                      "   L2 Drop Flows         : On    \n"
                                                      "   L3 Drop Flows         : Off   \n"
                                                      "   L3 Inactive Flows     : On    \n"
                                                      "   L3 Active Flows       : Off   \n"
                                                      "   All Flows             : On    \n"
                                                      "   Global override       : On    \n");
  EXPECT_EQ(printed(webFilter().flowFlags(0x2a)), std::string(kWebText) +
                                                      "Flow Collection Flags   \n"
                                                      "   L2 Pass Flows         : On    \n"
                                                      "   L2 Drop Flows         : Off   \n"
                                                      "   L3 Drop Flows         : On    \n"
                                                      "   L3 Inactive Flows     : Off   \n"
                                                      "   L3 Active Flows       : On    \n"
                                                      "   All Flows             : Off   \n"
                                                      "   Global override       : Off   \n");
}

TEST(PrintFilter, AFlagThatIsNotKnownStillBringsTheBlock) {
  EXPECT_NE(printed(webFilter().flowFlags(0x80)).find("   All Flows             : On    \n"),
            std::string::npos);
}

TEST(PrintFilter, WithoutFlagsHasNoBlockThoughEveryKindIsOn) {
  EXPECT_EQ(printed(webFilter().flowFlags(0)).find("Flow Collection"), std::string::npos);
}

TEST(PrintFilter, ShowsStatisticsInTheirOrder) {
  Record record = webFilter();
  for (int i = 0; i < 32; ++i) record.counter(i, 100 + i);
  record.counter(0, 1000).counter(1, 2000).counter(2, 10).counter(3, 40);
  record.counter(4, 900).counter(5, 4).counter(6, 3).counter(7, 2);
  for (int i = 0; i < 6; ++i) record.rate(i, 7 - 2 * i);
  FilterView view;
  view.withStats = true;
  EXPECT_EQ(printed(record, view), std::string(kWebText) +
                                       "Basic Stats: From Switch  To Switch\n"
                                       "   Total rx from weirgate : 108 109\n"
                                       "   Total packets         : 10 40\n"
                                       "   Total time (us)       : 1000 2000\n"
                                       "   Rate (us/pkt)         : 100 50\n"
                                       "   Rate (pkt/s)          : 10000 20000\n"
                                       "   Total punted to slowpath : 110 111\n"
                                       "   Total copied to slowpath : 112 113\n"
                                       "   Total hitting failurepolicy : 114 115\n"
                                       "   Total back from Slowpath : 3 2\n"
                                       "   Total Slow time (us)  : 900 4\n"
                                       "   Slow Rate (us/pkt)    : 300 2\n"
                                       "   Slow Rate (pkt/s)     : 3333 500000\n"
                                       "Reject Failure Stats\n"
                                       "   Bad L2                : 116\n"
                                       "   Bad Ethernet          : 117\n"
                                       "   Non IP                : 118\n"
                                       "   Short IP              : 119\n"
                                       "   Bad IPv4              : 120\n"
                                       "   Bad IPv6              : 121\n"
                                       "   Bad TCP               : 122\n"
                                       "   Bad ICMP              : 123\n"
                                       "   Rst for TCP Rst       : 124\n"
                                       "   Rate Limited          : 125\n"
                                       "   Failed Alloc          : 126\n"
                                       "   Failed Other          : 127\n"
                                       "CPS Stats\n"
                                       "   Current               : 7\n"
                                       "   Max (in window)       : 5\n"
                                       "   Avg (in window)       : 3\n"
                                       "   High Water Mark       : 1\n"
                                       "   Active Conn           : -1\n"
                                       "   High Water Mark Conn  : -3\n"
                                       "RBE Filter Stats\n"
                                       "   RBE In Pkt            : 128\n"
                                       "   RBE Out Pkt           : 129\n"
                                       "   RBE In Drop           : 130\n"
                                       "   RBE Out Drop          : 131\n");
}

TEST(PrintFilter, ADivisionByZeroIsZero) {
  FilterView view;
  view.withStats = true;
  const std::string text = printed(webFilter().counter(0, 5).counter(3, 5), view);
  EXPECT_NE(text.find("   Rate (us/pkt)         : 0 0\n"
                      "   Rate (pkt/s)          : 0 0\n"),
            std::string::npos);
  EXPECT_NE(text.find("   Slow Rate (us/pkt)    : 0 0\n"
                      "   Slow Rate (pkt/s)     : 0 0\n"),
            std::string::npos);
}

TEST(PrintFilter, CountersOfAllOnesPrintAsSigned) {
  FilterView view;
  view.withStats = true;
  EXPECT_NE(printed(webFilter().counter(16, -1), view).find("   Bad L2                : -1\n"),
            std::string::npos);
}

TEST(PrintFilter, DistributionIsOneLineForAFilterOnASlowPath) {
  FilterView view;
  view.distribution = true;
  view.withStats = true;
  EXPECT_EQ(printed(webFilter(), view), "");
  EXPECT_EQ(printed(webFilter().slowPath(3), view),
            "50 19 4b 2a 00 01 02 03-04 05 06 07 08 09 0a ff        "
            "1            "
            "nic-1002672-eth0-kelpco-sfw.2              "
            "3\n");
}

TEST(PrintFilter, ASlowPathShowsItsFiltersOnlyAndNoneIsZero) {
  FilterView view;
  view.slowPathOnly = true;
  view.slowPathId = 3;
  EXPECT_EQ(printed(webFilter().slowPath(3), view), kWebText);
  EXPECT_EQ(printed(webFilter().slowPath(4), view), "");
  view.slowPathId = 0;
  EXPECT_EQ(printed(webFilter(), view), "");
}

TEST(PrintFilter, TheHeaderStandsEvenInFrontOfAFilterThatIsNotShown) {
  FilterView view;
  view.header = true;
  view.distribution = true;
  EXPECT_EQ(printed(webFilter(), view), kHeader);
}

TEST(PrintFilter, WithoutAVifNotEvenTheHeaderIsShown) {
  FilterView view;
  view.header = true;
  view.vifOnly = true;
  EXPECT_EQ(printed(webFilter(), view), "");
  EXPECT_EQ(printed(webFilter().vif("v"), view).substr(0, kHeader.size()), kHeader);
}

TEST(PrintFilter, TextsThatFillTheirFieldsEndWithThem) {
  Record record;
  std::fill(record.begin(), record.end(), std::uint8_t{'x'});
  const std::string text = printed(record);
  EXPECT_EQ(text.substr(0, text.find("Flow")),
            "\n"
            "Filter Name              : " +
                std::string(99, 'x') +
                "\n"
                "VM UUID                  : " +
                std::string(128, 'x') +
                "\n"
                "VNIC Index               : 2021161080\n"
                "VNIC UUID                : bad vnic uuid\n"
                "VIF ID                   : " +
                std::string(48, 'x') +
                "\n"
                "LSP ID                   : " +
                std::string(48, 'x') +
                "\n"
                "Service Profile          : " +
                std::string(32, 'x') +
                "\n"
                "Filter Rule Config       : configured\n"
                "Filter Hash              : 30840\n");
}

TEST(PrintFilter, AnIndexOfAllOnesIsMinusOne) {
  const std::string text = printed(webFilter().vnicIndex(-1));
  EXPECT_NE(text.find("VNIC Index               : -1\n"), std::string::npos);
  EXPECT_NE(text.find("VNIC UUID                : 50194b2a-0001-0203-0405-060708090aff.-01\n"),
            std::string::npos);
}
