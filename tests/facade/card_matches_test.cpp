#include "soak/card_samples.h"
#include "tests/support.h"
#include <vardel/core/hex.h>
#include <vardel/facade/card_matches.h>

#include <gtest/gtest.h>

namespace vardel {
namespace {

/// The formats, best first: of how many reads parity holds, how many have unused bits set, how many
/// are beyond the limits.
std::string Listed(const CCardMatches& matches) {
  std::string text;
  for (const CCardMatch& match : matches.Matches()) {
    const std::string holds = match.HasParity ? ValueText(match.ParityHolds) : "-";
    text += TextOf(match.ClassName.substr(11), holds, match.UnusedSet, match.BeyondLimits) + "; ";
  }
  return text;
}

TEST(CardMatchesTest, TellParityThatHoldsFromBrokenOneAndTenCardsFromThoseOfOtherLayouts) {
  std::string holding, listed;
  for (const NumberLayout& layout : kNumberLayouts) {
    Random random(20260104);
    CCardMatches ten;
    for (int i = 0; i < 400 && !layout.parities.empty(); ++i) {
      CardDataStruct record = DrawCard(layout.name, random).record;
      const std::size_t bit = random() % (layout.ruler.size() + 1);  // at the end an unused one
      const char* const turned = bit == layout.ruler.size() ? "1 1 " : "0 0 ";
      for (const bool isTurned : {false, true}) {
        const CCardFrame frame(0, 0, HexText(record.Bytes));
        const std::string text = Listed(MatchCardData(frame));
        const auto own = text.find(TextOf(layout.name, isTurned ? turned : "1 0 0;"));
        ASSERT_NE(own, text.npos) << layout.name << " bit " << bit << ": " << text;
        if (i < 10 && !isTurned) ten.Add(frame), ten.Add(CCardFrame());
        record.Bytes[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
      }
    }
    holding += TextOf(";", ten.ReadCount(), ten.BlankCount());
    for (const CCardMatch& match : ten.Matches()) {
      if (match.ParityHolds == 10) holding.append(" ") += match.ClassName.substr(11);
    }
    if (layout.name == "EM") listed = Listed(ten);
  }
  EXPECT_EQ(holding,
            "; 20 10 EM HIDStandard; 20 10 EM HIDStandard; 20 10 37Bits; "
            "20 10 HIDCorp1000; 20 10 34Bits; 0 0");
  EXPECT_EQ(listed,
            "EM 10 0 0; HIDStandard 10 0 0; Binary26 - 0 0; UID32BIts - 0 0; DongSeo - 0 10; "
            "LG - 0 10; Woori - 0 10; 34Bits 6 0 0; 37Bits 5 0 0; HIDCorp1000 4 0 6; ");
}

TEST(CardMatchesTest, GoByWhatEachFormatReads) {
  const std::vector<std::uint8_t> em = {0x73, 0x60, 0xC8, 2, 0}, sevens(16, '7'), blank(10);
  const std::pair<FrameData, const char*> rows[] = {
      {{sevens, "30303030313230303030303334353037"},
       "LG - 0 0; Binary26 - 0 1; Woori - 0 1; UID32BIts - 1 0; DongSeo - 1 0; EM 0 1 0; "
       "HIDStandard 0 1 0; 37Bits 0 1 0; 34Bits 0 1 0; HIDCorp1000 0 1 1; "},
      {{em, "7360C80200"}, "34Bits 1 0 0; "},  // too short for the others
      {{sevens, "3X303030313230303030303334353037"}, "DongSeo - 1 0; 34Bits 0 1 0; "},
      {{sevens, std::string(32, '0')}, "DongSeo - 1 0; 34Bits 0 1 0; "},
      {{blank, "7360C802000000000001"},
       "EM 1 1 0; HIDStandard 1 1 0; 37Bits 1 1 0; Binary26 - 0 1; HIDCorp1000 0 1 0; "},
      {{blank, "ffffffffffffffffffff0123456789"}, "blank"},
      {{{}, "7360C8020000"}, ""},
      {{{}, ""}, "blank"}};
  for (const auto& [frame, answer] : rows) {
    const CCardMatches matches = MatchCardData(TestFrame(frame));
    EXPECT_EQ(Listed(matches) + (matches.BlankCount() == 0 ? "" : "blank"), answer) << frame.hex;
  }
}

TEST(CardMatchesTest, StayWhenAFrameFailsAndWhereTheyAreHeld) {
  struct FailingFrame : TestFrame {
    using TestFrame::TestFrame;
    std::string_view RawCardHex() const override { throw HostFault(Fault::Overflow); }
  };
  const FailingFrame failing({{{1, 2, 3, 4, 5, 6}}, ""});
  const CCardFrame frame(0, 0, "7360C8020000");
  const ICardFrame* const both[] = {&frame, &frame};
  CCardMatches matches = MatchCardData(both);
  const auto first = matches.Item(0);
  EXPECT_EQ(FaultOf([&] { matches.Add(failing); }), 6);
  EXPECT_EQ(FaultOf([&] { matches.Add(nullptr); }), 91);
  EXPECT_EQ(matches.Item(0), first);
  EXPECT_EQ(FaultOf([&] { matches.Item(matches.Count()); }), 9);
  EXPECT_EQ(FaultOf([&] { first->CardData(-1); }), 9);
  matches.Add(frame);
  EXPECT_EQ(TextOf(matches.Item(0)->CardCount(), first->CardCount()), "3 2");
  matches.Clear();
  EXPECT_EQ(matches.ReadCount() + matches.Count(), 0);
  EXPECT_EQ(first->CardData(0).CardID, "12345");
}

}  // namespace
}  // namespace vardel
